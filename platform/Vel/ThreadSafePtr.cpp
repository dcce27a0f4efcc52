#include "Vel/ThreadSafePtr.h"

namespace Vel {

namespace detail {

std::atomic<bool> threadSafePtrOn{false};

}  // namespace detail

void threadSafePtrIs(bool on) noexcept {
  detail::threadSafePtrOn.store(on, std::memory_order_seq_cst);
}

}  // namespace Vel
