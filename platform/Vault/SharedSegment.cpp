#include "Vault/SharedSegment.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>

#include "Vel/Format.h"
#include "Vel/RangeException.h"

namespace Vault {

namespace {

// Maps `size` bytes of `fd`; a segment of no bytes maps nothing.
std::byte* mapFile(int fd, std::uint64_t size, int protection) {
  if (size == 0) {
    return nullptr;
  }
  void* base = mmap(nullptr, size, protection, MAP_SHARED, fd, 0);
  return base == MAP_FAILED ? nullptr : static_cast<std::byte*>(base);
}

}  // namespace

SharedSegment::SharedSegment(std::byte* base, std::uint64_t size, std::string name,
                             bool writable) noexcept
    : base_(base), size_(size), name_(std::move(name)), writable_(writable) {}

SharedSegment::~SharedSegment() {
  if (base_ != nullptr) {
    munmap(base_, size_);
  }
}

std::string SharedSegment::fullName(const std::string& name) {
  std::string full = !name.empty() && name[0] == '/' ? name : "/" + name;
  if (full.size() < 2 || full.size() > NAME_MAX || full.find('/', 1) != std::string::npos) {
    Vel::throwRangeException("bad Vault table name \"" + name + "\"");
  }
  return full;
}

void SharedSegment::checkOwnership(int fd, const std::string& fullName) {
  constexpr mode_t kSegmentMode = 0600;
  constexpr mode_t kPermissionBits = 07777;
  struct stat status;
  if (fstat(fd, &status) != 0) {
    Vel::throwRangeException(
        Vel::format("cannot inspect Vault table %s: %s", fullName.c_str(), std::strerror(errno)));
  }
  if (!S_ISREG(status.st_mode) || status.st_uid != geteuid() ||
      (status.st_mode & kPermissionBits) != kSegmentMode) {
    Vel::throwRangeException(Vel::format(
        "Vault table %s is not a segment of this user with mode 0600 (owner %u, mode %04o): "
        "refused",
        fullName.c_str(), static_cast<unsigned>(status.st_uid),
        static_cast<unsigned>(status.st_mode & kPermissionBits)));
  }
}

std::unique_ptr<SharedSegment> SharedSegment::openReadOnly(const std::string& name) {
  std::string full = fullName(name);
  int fd = shm_open(full.c_str(), O_RDONLY | O_NOFOLLOW, 0);
  if (fd < 0) {
    if (errno == ENOENT) {
      return nullptr;
    }
    Vel::throwRangeException(
        Vel::format("cannot open Vault table %s: %s", full.c_str(), std::strerror(errno)));
  }
  try {
    checkOwnership(fd, full);
  } catch (...) {
    close(fd);
    throw;
  }
  struct stat status;
  std::byte* base = nullptr;
  std::uint64_t size = 0;
  if (fstat(fd, &status) == 0) {
    size = static_cast<std::uint64_t>(status.st_size);
    base = mapFile(fd, size, PROT_READ);
  }
  int error = errno;
  close(fd);
  if (base == nullptr && size != 0) {
    Vel::throwRangeException(
        Vel::format("cannot map Vault table %s: %s", full.c_str(), std::strerror(error)));
  }
  return std::unique_ptr<SharedSegment>(new SharedSegment(base, size, full, false));
}

bool SharedSegment::unlink(const std::string& name) {
  return shm_unlink(fullName(name).c_str()) == 0;
}

}  // namespace Vault
