#pragma once

#include <atomic>

namespace chipsim {

// For tests of a process that dies in the middle of a call: once armed with
// n, the process kills itself (SIGKILL) at the n-th change it makes to the
// chip's state from then on. Each journaled write is a change, and so is the
// midst of a reset.
class KillSwitch {
 public:
  static void arm(unsigned changes) noexcept { left_.store(changes, std::memory_order_relaxed); }

  // Called at every change, before it is made.
  static void change() noexcept {
    if (left_.load(std::memory_order_relaxed) != 0) {
      countDown();
    }
  }

 private:
  static void countDown() noexcept;

  static std::atomic<unsigned> left_;
};

}  // namespace chipsim
