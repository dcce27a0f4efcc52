#pragma once

#include <atomic>

namespace Vel {

// Turns atomic reference counting on or off for the whole process (off by
// default). Switch it on before objects are shared between threads.
void threadSafePtrIs(bool on) noexcept;

namespace detail {
// The switch itself, read inline by every count change.
extern std::atomic<bool> threadSafePtrOn;
}  // namespace detail

inline bool threadSafePtr() noexcept {
  return detail::threadSafePtrOn.load(std::memory_order_relaxed);
}

// Adds `delta` to a per-object framework counter: one atomic step when threads
// share objects, a plain load and store otherwise.
template <class Counter>
void countBy(std::atomic<Counter>& counter, Counter delta) noexcept {
  if (threadSafePtr()) {
    counter.fetch_add(delta, std::memory_order_relaxed);
  } else {
    counter.store(counter.load(std::memory_order_relaxed) + delta, std::memory_order_relaxed);
  }
}

}  // namespace Vel
