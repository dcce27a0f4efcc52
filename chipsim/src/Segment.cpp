#include "Segment.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <thread>

#include "Chip.h"
#include "ChipHeader.h"
#include "LockWait.h"
#include "SegmentLayout.h"

namespace chipsim {

namespace {

// Opens the segment file, never through a link; when `create`, makes it if
// there is none, as a file of this user with mode 0600. -1 and errno on
// failure.
int openFile(const std::string& name, bool create) {
  constexpr int kFlags = O_RDWR | O_NOFOLLOW;
  if (create) {
    const int made = shm_open(name.c_str(), kFlags | O_CREAT | O_EXCL, 0600);
    if (made >= 0) {
      // The mode the creator's umask may have narrowed.
      if (fchmod(made, 0600) == 0) {
        return made;
      }
      const int error = errno;
      close(made);
      errno = error;
      return -1;
    }
    if (errno != EEXIST) {
      return -1;
    }
  }
  return shm_open(name.c_str(), kFlags, 0);
}

// Why a segment file is not taken as a chip: anything but a regular file of
// this user with mode 0600 could have been made, or changed, by anyone.
std::optional<std::string> ownershipFault(const struct stat& status) {
  const unsigned mode = status.st_mode & 07777;
  if (S_ISREG(status.st_mode) && status.st_uid == geteuid() && mode == 0600) {
    return std::nullopt;
  }
  char octal[8];
  std::snprintf(octal, sizeof octal, "%04o", mode);
  return "its segment is not a file of this user with mode 0600 (owner " +
         std::to_string(status.st_uid) + ", mode " + octal + ")";
}

// The POSIX name of a segment: "/" and one path component.
std::optional<std::string> segmentName(const char* name) {
  if (name == nullptr) {
    return std::nullopt;
  }
  std::string full = name[0] == '/' ? name : std::string("/") + name;
  if (full.size() < 2 || full.size() > NAME_MAX || full.find('/', 1) != std::string::npos) {
    return std::nullopt;
  }
  return full;
}

std::byte* mapShared(int fd, uint64_t size) noexcept {
  void* base = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  return base == MAP_FAILED ? nullptr : static_cast<std::byte*>(base);
}

// Holds an open segment's file, and the file lock under which chips are made
// and checked, so that two processes never make one chip at once, and one
// that dies while it makes a chip leaves it to the next. The wait for the
// lock is bounded (LockWait); error() is ETIMEDOUT when it ran out.
class LockedFile {
 public:
  explicit LockedFile(int fd) noexcept : fd_(fd) {
    constexpr auto kPause = std::chrono::milliseconds(10);
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(LockWait::milliseconds());
    while (flock(fd_, LOCK_EX | LOCK_NB) != 0) {
      if (errno != EWOULDBLOCK && errno != EINTR) {
        error_ = errno;
        return;
      }
      if (std::chrono::steady_clock::now() >= deadline) {
        error_ = ETIMEDOUT;
        return;
      }
      std::this_thread::sleep_for(kPause);
    }
    locked_ = true;
  }
  // Unlocks by hand: the chip's mapping keeps the file open after close().
  ~LockedFile() {
    if (locked_) {
      flock(fd_, LOCK_UN);
    }
    close(fd_);
  }
  LockedFile(const LockedFile&) = delete;
  LockedFile& operator=(const LockedFile&) = delete;
  int fd() const noexcept { return fd_; }
  int error() const noexcept { return error_; }

 private:
  int fd_;
  int error_ = 0;
  bool locked_ = false;
};

// A mapped chip whose magic is written: made and never to be made again.
bool published(const std::byte* base) noexcept {
  return reinterpret_cast<const ChipHeader*>(base)->magic != 0;
}

}  // namespace

Segment::Segment(std::byte* base, uint64_t size, std::string name, bool isPrivate, int fd) noexcept
    : base_(base), size_(size), name_(std::move(name)), private_(isPrivate), fd_(fd) {}

Segment::~Segment() {
  munmap(base_, size_);
  if (fd_ >= 0) {
    close(fd_);
  }
}

std::optional<std::string> Segment::cutShort() const {
  if (fd_ < 0) {
    return std::nullopt;
  }
  struct stat status;
  if (fstat(fd_, &status) != 0) {
    return std::string("its segment cannot be looked at: ") + std::strerror(errno);
  }
  const auto size = static_cast<uint64_t>(status.st_size);
  if (size >= size_) {
    return std::nullopt;
  }
  return "its segment was cut short to " + std::to_string(size) + " of " + std::to_string(size_) +
         " bytes";
}

int Segment::makePrivate(const chipsim_config& config, std::unique_ptr<Segment>& segment) {
  std::optional<SegmentLayout> layout = SegmentLayout::of(config);
  if (!layout) {
    return EINVAL;
  }
  void* base =
      mmap(nullptr, layout->size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (base == MAP_FAILED) {
    return errno;
  }
  Chip::format(static_cast<std::byte*>(base), config);
  segment.reset(new Segment(static_cast<std::byte*>(base), layout->size, "(private)", true, -1));
  return 0;
}

int Segment::open(const char* name, bool create, const chipsim_config& config,
                  std::unique_ptr<Segment>& segment, std::string& fault) {
  std::optional<std::string> full = segmentName(name);
  std::optional<SegmentLayout> layout = SegmentLayout::of(config);
  if (!full || !layout) {
    return EINVAL;
  }
  int fd = openFile(*full, create);
  if (fd < 0) {
    return errno;
  }
  LockedFile file(fd);
  if (file.error() == ETIMEDOUT) {
    fault = "its segment is locked by " + LockWait::fileLockHolder(fd) + ": waited " +
            std::to_string(LockWait::milliseconds()) + " ms";
  }
  if (file.error() != 0) {
    return file.error();
  }
  struct stat status;
  if (fstat(fd, &status) != 0) {
    return errno;
  }
  if (std::optional<std::string> refusal = ownershipFault(status)) {
    fault = *refusal;
    return EPERM;
  }
  uint64_t size = static_cast<uint64_t>(status.st_size);
  std::byte* base = size >= sizeof(ChipHeader) ? mapShared(fd, size) : nullptr;
  if (base == nullptr || !published(base)) {
    if (base != nullptr) {
      munmap(base, size);
    }
    if (!create) {
      return ENOENT;
    }
    size = layout->size;
    if (fchmod(fd, 0600) != 0 || ftruncate(fd, static_cast<off_t>(size)) != 0 ||
        (base = mapShared(fd, size)) == nullptr) {
      return errno;
    }
    Chip::format(base, config);
  }
  if (!Chip::isChip(base, size)) {
    const bool ours = reinterpret_cast<const ChipHeader*>(base)->magic == ChipHeader::kMagic;
    if (ours) {
      fault = Chip::segmentFault(base, size).value_or("its header is not a chip's");
    }
    munmap(base, size);
    return ours ? EUCLEAN : EINVAL;
  }
  // A file of its own for the size checks: the locked one is closed on return.
  const int kept = fcntl(fd, F_DUPFD_CLOEXEC, 0);
  if (kept < 0) {
    const int error = errno;
    munmap(base, size);
    return error;
  }
  segment.reset(new Segment(base, size, *full, false, kept));
  return 0;
}

int Segment::unlink(const char* name) {
  std::optional<std::string> full = segmentName(name);
  if (!full) {
    return EINVAL;
  }
  return shm_unlink(full->c_str()) == 0 ? 0 : errno;
}

}  // namespace chipsim
