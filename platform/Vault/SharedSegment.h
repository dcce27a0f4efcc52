#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>

namespace Vault {

// A named POSIX shared-memory segment in this process: for the table's writer
// mapped read-write, for readers a private copy that is read-only (PROT_READ).
// Segments are made with mode 0600, opened without following a link, and used
// only when they are regular files of this user with that mode.
class SharedSegment {
 public:
  ~SharedSegment();
  SharedSegment(const SharedSegment&) = delete;
  SharedSegment& operator=(const SharedSegment&) = delete;

  // "/name" for a name with or without its leading slash; throws
  // Vel::RangeException for a name that is not one path component.
  static std::string fullName(const std::string& name);

  // A read-only copy of the whole of an existing segment, as large as it is
  // now; null when there is no such segment. Throws Vel::RangeException when it
  // exists but cannot be opened or read. The bytes are read, not mapped: a
  // segment that another process cuts short meanwhile gives a shorter copy
  // (size() is what could be read), which a reader finds shorter than its
  // header says, never a SIGBUS in the middle of a walk.
  static std::unique_ptr<SharedSegment> openReadOnly(const std::string& name);

  // Removes the name; true when it existed.
  static bool unlink(const std::string& name);

  // Throws Vel::RangeException unless the open segment `fd` is a regular file
  // of this user with mode 0600: a segment made by anyone else is not trusted.
  static void checkOwnership(int fd, const std::string& fullName);

  const std::byte* bytes() const noexcept { return base_; }
  std::byte* writableBytes() const noexcept { return writable_ ? base_ : nullptr; }
  std::uint64_t size() const noexcept { return size_; }
  const std::string& name() const noexcept { return name_; }

 private:
  friend class SegmentFile;
  SharedSegment(std::byte* base, std::uint64_t size, std::string name, bool writable,
                std::uint64_t mappedSize) noexcept;
  SharedSegment(std::byte* base, std::uint64_t size, std::string name, bool writable) noexcept
      : SharedSegment(base, size, std::move(name), writable, size) {}

  std::byte* base_;
  std::uint64_t size_;
  std::uint64_t mappedSize_;  // what was mapped at base_, at least size_
  std::string name_;
  bool writable_;
};

}  // namespace Vault
