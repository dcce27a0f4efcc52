#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Vault/SharedSegment.h"

namespace Vault {

// A segment opened for writing (made with mode 0600 when missing) and held
// under an exclusive file lock for as long as the object lives: its table has
// one writer at a time. The segment must be a regular file of this user with
// mode 0600; anything else is refused, not adopted.
class SegmentFile {
 public:
  // Throws TableInUseException at once when another writer holds the segment
  // (naming its process), Vel::RangeException when the segment cannot be
  // opened or is not one this user made.
  explicit SegmentFile(const std::string& name);
  ~SegmentFile();
  SegmentFile(const SegmentFile&) = delete;
  SegmentFile& operator=(const SegmentFile&) = delete;

  std::uint64_t size() const;
  // Gives the file `size` bytes, all zero, and mode 0600.
  void resetTo(std::uint64_t size) const;
  // Maps the file as it is now, read-write.
  std::unique_ptr<SharedSegment> map() const;

 private:
  [[noreturn]] void fail(const char* what) const;
  void open();
  void lock();

  std::string name_;
  int fd_;
};

}  // namespace Vault
