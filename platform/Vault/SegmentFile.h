#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "Vault/SharedSegment.h"

namespace Vault {

// A segment opened for writing (created with mode 0600 when missing) and held
// under an exclusive file lock while its writer makes or checks the table, so
// two processes never make one table at once.
class SegmentFile {
 public:
  // Throws Vel::RangeException when the segment cannot be opened.
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

  std::string name_;
  int fd_;
};

}  // namespace Vault
