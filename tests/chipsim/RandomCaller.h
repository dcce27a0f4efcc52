#pragma once

#include <cstdint>
#include <random>
#include <vector>

#include "support/ChipsimLibrary.h"

namespace chipsim_test {

// Makes PD calls chosen at random, with random arguments: mostly handles the
// chip gave before (live or deleted), sometimes any number, now and then NULL
// pointers, bad devices, pipes, sizes and states. For tests that nothing the
// chip is handed can break it.
class RandomCaller {
 public:
  explicit RandomCaller(uint32_t seed);

  // One PD call or look-up; the status of the call (0 for a look-up).
  pipe_status callOne();

  // PD calls made so far (look-ups are not PD calls).
  int64_t pdCalls() const { return pdCalls_; }

 private:
  bool chance(unsigned percent);
  uint32_t below(uint32_t bound);
  uint32_t handle(const std::vector<uint32_t>& known);
  int32_t device();
  p4_pd_device_target_t target();
  uint32_t pipe();
  void remember(std::vector<uint32_t>& known, pipe_status status, uint32_t handle);
  template <class T>
  T* maybeNull(T* pointer) {
    return chance(3) ? nullptr : pointer;
  }

  pipe_status callEntryFunction(uint32_t which);
  pipe_status callProfileFunction(uint32_t which);

  const ChipsimLibrary& pd_;
  std::mt19937 random_;
  std::vector<uint32_t> entries_;
  std::vector<uint32_t> members_;
  std::vector<uint32_t> groups_;
  int64_t pdCalls_ = 0;
};

}  // namespace chipsim_test
