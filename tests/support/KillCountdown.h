#pragma once

#include <signal.h>

#include "BfPdIngressMirrorLagGroup/ShadowCallStep.h"
#include "Vault/WriteStep.h"

namespace shadow_test {

// A process that kills itself with SIGKILL at the n-th point it passes: the
// probes below count the points of recorded PD calls and of shadow-table
// writes. One countdown per process (a forked child sets its own).
class KillCountdown {
 public:
  // Dies at the `points`-th point from now on (0: never).
  static void arm(unsigned points) noexcept { remaining() = points; }

  static void pass() noexcept {
    unsigned& left = remaining();
    if (left != 0 && --left == 0) {
      raise(SIGKILL);
    }
  }
  // Probes for BfPdIngressMirrorLagGroupIntf::shadowProbeIs and for a Vault
  // table writer's writeProbeIs.
  static void passCallStep(BfPdIngressMirrorLagGroup::ShadowCallStep) noexcept { pass(); }
  static void passWriteStep(Vault::WriteStep) noexcept { pass(); }

 private:
  static unsigned& remaining() noexcept {
    static unsigned left = 0;
    return left;
  }
};

}  // namespace shadow_test
