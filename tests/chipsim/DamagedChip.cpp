#include "DamagedChip.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <stdexcept>

namespace chipsim_test {

DamagedChip::DamagedChip(const std::string& name) : name_(name), base_(nullptr), size_(0) {
  const int fd = shm_open(name.c_str(), O_RDWR, 0);
  struct stat status {};
  if (fd < 0 || fstat(fd, &status) != 0)
    throw std::runtime_error("cannot open chip " + name);
  size_ = static_cast<std::uint64_t>(status.st_size);
  void* base = mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  close(fd);
  if (base == MAP_FAILED)
    throw std::runtime_error("cannot map chip " + name);
  base_ = static_cast<std::byte*>(base);
  layout_ = *chipsim::SegmentLayout::of(header().config);
}

DamagedChip::~DamagedChip() {
  munmap(base_, size_);
}

chipsim::EntryRecord& DamagedChip::entry(std::uint32_t slot) const {
  return at<chipsim::EntryRecord>(layout_.entries + slot * sizeof(chipsim::EntryRecord));
}

chipsim::GroupRecord& DamagedChip::group(std::uint32_t slot) const {
  return at<chipsim::GroupRecord>(layout_.groups + slot * sizeof(chipsim::GroupRecord));
}

chipsim::MemberRecord& DamagedChip::member(std::uint32_t slot) const {
  return at<chipsim::MemberRecord>(layout_.members + slot * sizeof(chipsim::MemberRecord));
}

chipsim::JournalRecord& DamagedChip::journal(std::uint32_t index) const {
  return at<chipsim::JournalRecord>(layout_.journal + index * sizeof(chipsim::JournalRecord));
}

std::uint32_t& DamagedChip::keyChain(std::uint16_t key) const {
  return at<std::uint32_t>(layout_.keyIndex + key * sizeof(std::uint32_t));
}

void DamagedChip::truncateTo(std::uint64_t size) const {
  const int fd = shm_open(name_.c_str(), O_RDWR, 0);
  if (fd < 0 || ftruncate(fd, static_cast<off_t>(size)) != 0)
    throw std::runtime_error("cannot truncate chip " + name_);
  close(fd);
}

}  // namespace chipsim_test
