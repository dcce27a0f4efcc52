#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <random>
#include <string>

#include "BfPdIngressMirrorLagGroup/ShadowReconciler.h"
#include "Pd/PipeStatus.h"
#include "ShadowChipFixture.h"
#include "ShadowWorkload.h"
#include "Vault/WriteStep.h"
#include "support/ChipContents.h"
#include "support/EnvironmentNumber.h"
#include "support/KillCountdown.h"
#include "support/Killer.h"

namespace shadow_test {
namespace {

using BfPdIngressMirrorLagGroup::ShadowReconciler;
using BfPdIngressMirrorLagGroup::ShadowReconciliation;
using chipsim_test::chipsim;

// Processes that program entries, members and groups at random are killed,
// one after the other, at random points; after each death the shadow tables
// are re-attached and reconciled, and then every record names an object in
// the chip, every match entry of the chip has a record, and the death left at
// most one member or group without a record. MIRRORLAG_SHADOW_KILLS sets how
// many processes die (at least 60 by default) and MIRRORLAG_SHADOW_SEED the
// random seed.
class ShadowKillLoopTest : public ShadowChipFixture {
 protected:
  ShadowKillLoopTest() { capacity = {32, 32, 16}; }

  void SetUp() override {
    ShadowChipFixture::SetUp();
    useNamedChip();
    reattachManager();
  }

  // A child that programs at random until it is killed (or has made its calls).
  pid_t startChild(Killer killer, unsigned countdown, std::uint32_t seed) {
    pid_t child = fork();
    if (child != 0) {
      return child;
    }
    auto keys = attachManager();
    auto intf = pdFor(keys);
    KillCountdown::arm(countdown);
    switch (killer) {
      case Killer::chipChange:
        chipsim().killAfterChangesForTest(countdown);
        break;
      case Killer::recordedCall:
        intf->shadowProbeIs(KillCountdown::passCallStep);
        break;
      case Killer::shadowWrite:
        keys->entryShadow()->table().writer().writeProbeIs(KillCountdown::passWriteStep);
        keys->memberShadow()->table().writer().writeProbeIs(KillCountdown::passWriteStep);
        keys->groupShadow()->table().writer().writeProbeIs(KillCountdown::passWriteStep);
        break;
      case Killer::timer:
        break;
    }
    ShadowWorkload work(*keys, *intf, seed);
    for (int call = 0; call < 20000; ++call) {
      work.step();
    }
    _exit(0);
  }

  static bool killed(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
  }

  // Deletes the members and groups that deaths left in the chip without a
  // record, so that the chip does not fill up with them.
  void removeUnrecorded() {
    const ChipContents chip = ChipContents::read();
    for (std::uint32_t group : chip.groups) {
      if (!manager->groupShadow()->keyOfHandle(group)) {
        EXPECT_EQ(chipsim().delGroup(1, 0, group), PIPE_STATUS_SUCCESS);
      }
    }
    for (std::uint32_t member : chip.members) {
      if (!manager->memberShadow()->keyOfHandle(member)) {
        EXPECT_EQ(chipsim().delMember(1, 0, member), PIPE_STATUS_SUCCESS);
      }
    }
  }
};

TEST_F(ShadowKillLoopTest, EveryDeathIsReconciledAgainstTheChip) {
  const std::uint32_t wanted = environmentNumber("MIRRORLAG_SHADOW_KILLS", 60);
  const std::uint32_t seed = environmentNumber("MIRRORLAG_SHADOW_SEED", 20240607);
  SCOPED_TRACE("MIRRORLAG_SHADOW_SEED=" + std::to_string(seed));
  std::mt19937 random(seed);
  std::uint32_t kills = 0;
  ShadowReconciliation settled;
  for (std::uint32_t round = 0; kills < wanted && round < 4 * wanted && !HasFailure(); ++round) {
    const auto killer = static_cast<Killer>(random() % 4);
    const unsigned countdown = 1 + random() % 200;
    releaseManager();
    pid_t child = startChild(killer, countdown, random());
    if (killer == Killer::timer) {
      usleep(random() % 20000);
      kill(child, SIGKILL);
    }
    kills += killed(child) ? 1 : 0;

    reattachManager();
    const ShadowReconciliation done = ShadowReconciler(*manager, *pd, 0).reconcile();
    EXPECT_EQ(done.unsettled, 0u) << "round " << round;
    settled.completed += done.completed;
    settled.restored += done.restored;
    settled.removed += done.removed;
    EXPECT_LE(expectRecordsMatchChip(*manager), 1u) << "round " << round;
    removeUnrecorded();
  }
  EXPECT_GE(kills, wanted);
  // The deaths did come in the midst of recorded calls.
  EXPECT_GT(settled.total(), 0u);
  RecordProperty("kills", static_cast<int>(kills));
  RecordProperty("intentsSettled", static_cast<int>(settled.total()));
}

}  // namespace
}  // namespace shadow_test
