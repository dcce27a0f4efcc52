#include "Vault/SegmentFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "Vel/Format.h"
#include "Vel/RangeException.h"

namespace Vault {

SegmentFile::SegmentFile(const std::string& name)
    : name_(SharedSegment::fullName(name)), fd_(shm_open(name_.c_str(), O_RDWR | O_CREAT, 0600)) {
  if (fd_ < 0) {
    fail("open");
  }
  while (flock(fd_, LOCK_EX) != 0) {
    if (errno != EINTR) {
      int error = errno;
      close(fd_);
      errno = error;
      fail("lock");
    }
  }
}

SegmentFile::~SegmentFile() {
  flock(fd_, LOCK_UN);
  close(fd_);
}

std::uint64_t SegmentFile::size() const {
  struct stat status;
  if (fstat(fd_, &status) != 0) {
    fail("inspect");
  }
  return static_cast<std::uint64_t>(status.st_size);
}

void SegmentFile::resetTo(std::uint64_t size) const {
  if (fchmod(fd_, 0600) != 0 || ftruncate(fd_, 0) != 0 ||
      ftruncate(fd_, static_cast<off_t>(size)) != 0) {
    fail("size");
  }
}

std::unique_ptr<SharedSegment> SegmentFile::map() const {
  std::uint64_t bytes = size();
  void* base =
      bytes == 0 ? nullptr : mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED, fd_, 0);
  if (base == MAP_FAILED) {
    fail("map");
  }
  return std::unique_ptr<SharedSegment>(
      new SharedSegment(static_cast<std::byte*>(base), bytes, name_, true));
}

void SegmentFile::fail(const char* what) const {
  Vel::throwRangeException(
      Vel::format("cannot %s Vault table %s: %s", what, name_.c_str(), std::strerror(errno)));
}

}  // namespace Vault
