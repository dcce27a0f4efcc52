#pragma once

#include <cerrno>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>

#include "Chip.h"
#include "ChipLock.h"
#include "Segment.h"
#include "chipsim/chipsim.h"

namespace chipsim {

// The chip this process works on: a private chip made on first use, or the
// chip of a named segment after attach(). Threads may call PD functions
// concurrently; attach() and reset() wait until no call is running.
class Attachment {
 public:
  static Attachment& instance();

  int configure(const chipsim_config& config);
  int attach(const char* name, bool create);
  int reset();
  std::string name();

  // Runs f(chip) on the process's chip under the chip's lock. 0, or the errno
  // value telling why no chip could be had or locked.
  template <class F>
  int use(F&& f) {
    if (int error = ensureChip()) {
      return error;
    }
    std::shared_lock<std::shared_mutex> guard(mutex_);
    if (!chip_) {
      return ENODEV;
    }
    ChipLock lock(*chip_);
    if (lock.error() != 0) {
      return lock.error();
    }
    f(*chip_);
    return 0;
  }

 private:
  Attachment();

  int ensureChip();
  // Replaces the chip by that of `segment`; the caller holds mutex_ exclusively.
  void adopt(std::unique_ptr<Segment> segment);

  std::shared_mutex mutex_;
  chipsim_config config_;
  std::unique_ptr<Segment> segment_;
  std::unique_ptr<Chip> chip_;
};

}  // namespace chipsim
