#pragma once

#include "Chip.h"

namespace chipsim {

// Holds the chip's lock for one call. The lock is a process-shared robust
// mutex: when its last holder died, the chip is first brought back to a
// coherent state. Leaving commits the call's changes.
class ChipLock {
 public:
  explicit ChipLock(Chip& chip) noexcept;
  ~ChipLock();
  ChipLock(const ChipLock&) = delete;
  ChipLock& operator=(const ChipLock&) = delete;

  // 0 when the lock is held, otherwise the errno value of the failure.
  int error() const noexcept { return error_; }

 private:
  Chip& chip_;
  int error_;
};

}  // namespace chipsim
