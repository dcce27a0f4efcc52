#pragma once

#include <cerrno>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <utility>

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
  // value telling why no chip could be had or locked (ETIMEDOUT: another
  // process held the lock too long), or EUCLEAN when the chip is damaged:
  // its header before the call, or what the call found on its way (whose
  // changes are then taken back). lastFault() then says what.
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
      lastFault() = lock.fault();
      return lock.error();
    }
    if (std::optional<std::string> fault = chip_->headerFault()) {
      lock.leaveUntouched();
      return damaged(*fault);
    }
    f(*chip_);
    if (chip_->damage().fault()) {
      chip_->journal().rollback();
      const std::string fault = *chip_->damage().fault();
      chip_->damage().clear();
      return damaged(fault);
    }
    return 0;
  }

  // As use(), once the chip's segment is found whole (Segment::cutShort()):
  // for the calls that start a walk over the chip's tables. EUCLEAN when it
  // was cut short.
  template <class F>
  int useWhole(F&& f) {
    if (int error = checkSegment()) {
      return error;
    }
    return use(std::forward<F>(f));
  }

  // What the calling thread's last failed use() found.
  static std::string& lastFault();

 private:
  Attachment();

  int ensureChip();
  // 0, or EUCLEAN with the fault when the chip's segment was cut short.
  int checkSegment();
  // Records `fault` as the last fault; EUCLEAN.
  int damaged(const std::string& fault);
  // Replaces the chip by that of `segment`; the caller holds mutex_ exclusively.
  void adopt(std::unique_ptr<Segment> segment);

  std::shared_mutex mutex_;
  chipsim_config config_;
  std::unique_ptr<Segment> segment_;
  std::unique_ptr<Chip> chip_;
};

}  // namespace chipsim
