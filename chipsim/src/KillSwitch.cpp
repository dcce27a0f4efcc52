#include "KillSwitch.h"

#include <signal.h>

namespace chipsim {

std::atomic<unsigned> KillSwitch::left_{0};

void KillSwitch::countDown() noexcept {
  if (left_.fetch_sub(1, std::memory_order_relaxed) == 1) {
    raise(SIGKILL);
  }
}

}  // namespace chipsim
