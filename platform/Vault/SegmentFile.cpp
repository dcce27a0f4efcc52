#include "Vault/SegmentFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include "Vault/TableInUseException.h"
#include "Vel/Format.h"
#include "Vel/RangeException.h"

namespace Vault {

namespace {

constexpr mode_t kSegmentMode = 0600;

// The process that holds a lock on the file of `status`, as the kernel's lock
// list tells it; 0 when it cannot be told.
pid_t lockHolder(const struct stat& status) {
  std::ifstream locks("/proc/locks");
  const std::string inode = ":" + std::to_string(status.st_ino);
  for (std::string line; std::getline(locks, line);) {
    std::istringstream fields(line);
    std::string number, kind, mode, access, pid, file;
    fields >> number >> kind >> mode >> access >> pid >> file;
    if (kind == "FLOCK" && file.size() > inode.size() &&
        file.compare(file.size() - inode.size(), inode.size(), inode) == 0)
      return static_cast<pid_t>(std::strtol(pid.c_str(), nullptr, 10));
  }
  return 0;
}

}  // namespace

SegmentFile::SegmentFile(const std::string& name) : name_(SharedSegment::fullName(name)), fd_(-1) {
  open();
  try {
    SharedSegment::checkOwnership(fd_, name_);
    lock();
  } catch (...) {
    close(fd_);
    throw;
  }
}

void SegmentFile::open() {
  // Made here, or else opened as it is; never through a link.
  fd_ = shm_open(name_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW, kSegmentMode);
  if (fd_ < 0 && errno == EEXIST)
    fd_ = shm_open(name_.c_str(), O_RDWR | O_NOFOLLOW, 0);
  if (fd_ < 0)
    fail("open");
}

void SegmentFile::lock() {
  while (flock(fd_, LOCK_EX | LOCK_NB) != 0) {
    if (errno == EWOULDBLOCK) {
      struct stat status;
      const pid_t holder = fstat(fd_, &status) == 0 ? lockHolder(status) : 0;
      throw TableInUseException(
          Vel::format("Vault table %s is in use by process %d", name_.c_str(), int{holder}),
          holder);
    }
    if (errno != EINTR)
      fail("lock");
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
