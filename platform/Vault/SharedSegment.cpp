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

// Reads up to `size` bytes of `fd` from its start into `bytes`; gives how
// many it could read (fewer when the file is cut short meanwhile).
std::uint64_t readAll(int fd, std::byte* bytes, std::uint64_t size) {
  std::uint64_t done = 0;
  while (done < size) {
    const ssize_t got = pread(fd, bytes + done, size - done, static_cast<off_t>(done));
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got <= 0) {
      break;
    }
    done += static_cast<std::uint64_t>(got);
  }
  return done;
}

// A private copy of the first `size` bytes of `fd`, in memory of its own that
// is made read-only once filled; `size` becomes what could be read. Null for
// no bytes, or when the memory cannot be had.
std::byte* copyFile(int fd, std::uint64_t& size) {
  if (size == 0) {
    return nullptr;
  }
  void* base = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (base == MAP_FAILED) {
    return nullptr;
  }
  size = readAll(fd, static_cast<std::byte*>(base), size);
  mprotect(base, size == 0 ? 1 : size, PROT_READ);
  return static_cast<std::byte*>(base);
}

}  // namespace

SharedSegment::SharedSegment(std::byte* base, std::uint64_t size, std::string name, bool writable,
                             std::uint64_t mappedSize) noexcept
    : base_(base),
      size_(size),
      mappedSize_(mappedSize),
      name_(std::move(name)),
      writable_(writable) {}

SharedSegment::~SharedSegment() {
  if (base_ != nullptr) {
    munmap(base_, mappedSize_);
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
  std::uint64_t mapped = 0;
  std::uint64_t size = 0;
  if (fstat(fd, &status) == 0) {
    mapped = size = static_cast<std::uint64_t>(status.st_size);
    base = copyFile(fd, size);
  }
  int error = errno;
  close(fd);
  if (base == nullptr && mapped != 0) {
    Vel::throwRangeException(
        Vel::format("cannot read Vault table %s: %s", full.c_str(), std::strerror(error)));
  }
  return std::unique_ptr<SharedSegment>(new SharedSegment(base, size, full, false, mapped));
}

bool SharedSegment::unlink(const std::string& name) {
  return shm_unlink(fullName(name).c_str()) == 0;
}

}  // namespace Vault
