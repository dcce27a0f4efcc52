#pragma once

#include <sys/types.h>

#include <string>

namespace chipsim {

// How long the chip's calls wait for a lock that another process holds: the
// chip's mutex, or the file lock under which a segment is made and checked.
// CHIPSIM_LOCK_WAIT_MS sets it (tests shorten it).
struct LockWait {
  static constexpr unsigned kDefaultMilliseconds = 5000;

  static unsigned milliseconds();
  // "process N" for the process holding a file lock on `fd`, as the kernel's
  // lock list tells; "another process" when it cannot be told.
  static std::string fileLockHolder(int fd);
};

}  // namespace chipsim
