#pragma once

#include <string>

#include "Chip.h"

namespace chipsim {

// Holds the chip's lock for one call. The lock is a process-shared robust
// mutex: when its last holder died, the chip is first brought back to a
// coherent state. Leaving commits the call's changes. The wait is bounded
// (LockWait): a holder that keeps the lock longer, such as a stopped
// process, makes the call fail with ETIMEDOUT.
class ChipLock {
 public:
  explicit ChipLock(Chip& chip) noexcept;
  ~ChipLock();
  ChipLock(const ChipLock&) = delete;
  ChipLock& operator=(const ChipLock&) = delete;

  // 0 when the lock is held, otherwise the errno value of the failure.
  int error() const noexcept { return error_; }
  // What the failure was, in words.
  std::string fault() const;
  // Lets the lock go without committing anything: the chip was found damaged
  // before the call, and its journal is left as it was found.
  void leaveUntouched() noexcept { untouched_ = true; }

 private:
  // Who holds the lock: "process N", as far as can be told.
  std::string holder() const;

  Chip& chip_;
  int error_;
  unsigned waited_ = 0;
  bool untouched_ = false;
};

}  // namespace chipsim
