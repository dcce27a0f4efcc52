#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

#include "RestartFixture.h"
#include "support/ChipContents.h"
#include "support/EnvironmentNumber.h"
#include "support/KillCountdown.h"
#include "support/Killer.h"
#include "support/PdFunctionNames.h"

namespace BfIngressMirrorLagGroup {
namespace {

using shadow_test::environmentNumber;
using shadow_test::KillCountdown;
using shadow_test::Killer;

// Instances of a host are killed one after the other at random points: while
// they settle the shadow tables, while the factory adopts the entries, while
// they write the configuration again and while they change entries in
// service. After each death the next instance settles, adopts and writes the
// configuration again without an exception, and the chip then holds every
// entry once and nothing else. MIRRORLAG_FACTORY_KILLS sets how many
// instances die (50 by default), MIRRORLAG_FACTORY_SEED the random seed.
class FactoryKillLoopTest : public RestartFixture {
 protected:
  void SetUp() override {
    RestartFixture::SetUp();
    attachNamedChip();
  }

  // An instance that starts, writes the configuration and changes entries
  // until it is killed (or has made its changes).
  pid_t startInstance(Killer killer, unsigned countdown, std::uint32_t seed) {
    return fork([=, this]() {
      KillCountdown::arm(killer == Killer::recordedCall || killer == Killer::shadowWrite ? countdown
                                                                                         : 0);
      if (killer == Killer::chipChange)
        chip.killAfterChangesForTest(countdown);
      auto instance = start([killer](MbbVaultKey::VaultKeyManager& keys) {
        if (killer == Killer::shadowWrite)
          armWriters(keys);
      });
      if (killer == Killer::recordedCall)
        instance->pd().shadowProbeIs(KillCountdown::passCallStep);
      instance->apply(config);
      std::mt19937 random(seed);
      for (int change = 0; change < 2000; ++change)
        instance->change(config, random());
      return 0;
    });
  }

  // Every step of the shadow-table writes of `keys` counts down.
  static void armWriters(MbbVaultKey::VaultKeyManager& keys) {
    keys.entryShadow()->table().writer().writeProbeIs(KillCountdown::passWriteStep);
    keys.memberShadow()->table().writer().writeProbeIs(KillCountdown::passWriteStep);
    keys.groupShadow()->table().writer().writeProbeIs(KillCountdown::passWriteStep);
  }

  // Deletes the chip's groups that `instance`'s registry does not name.
  void removeGroupsLeftBehind(const TableInstance& instance) const {
    std::set<std::uint32_t> current;
    for (auto slot = instance.registry().groups().begin(); slot; ++slot)
      current.insert(slot.value());
    for (std::uint32_t group : shadow_test::ChipContents::read().groups) {
      if (current.count(group) == 0) {
        EXPECT_EQ(chip.delGroup(TableInstance::kSession, TableInstance::kDevice, group), 0)
            << "group " << group;
      }
    }
  }

  // The calls of `function` among `lines`.
  static std::size_t countCalls(const std::vector<std::string>& lines,
                                const std::string& function) {
    return static_cast<std::size_t>(
        std::count_if(lines.begin(), lines.end(),
                      [&](const std::string& line) { return line.rfind(function + "(", 0) == 0; }));
  }

  const WantedConfig config = WantedConfig::make(200, 12, 4);
};

TEST_F(FactoryKillLoopTest, EveryRestartAdoptsAndRewritesTheConfigurationWithoutDuplicates) {
  const std::uint32_t wanted = environmentNumber("MIRRORLAG_FACTORY_KILLS", 50);
  const std::uint32_t seed = environmentNumber("MIRRORLAG_FACTORY_SEED", 20240611);
  SCOPED_TRACE("MIRRORLAG_FACTORY_SEED=" + std::to_string(seed));
  std::mt19937 random(seed);
  std::uint32_t kills = 0;
  std::uint32_t settled = 0;
  std::size_t groupsLeftBehind = 0;
  std::size_t mostGroupsLeftBehind = 0;
  for (std::uint32_t round = 0; kills < wanted && round < 3 * wanted && !HasFailure(); ++round) {
    const auto killer = static_cast<Killer>(random() % 4);
    const unsigned countdown = 1 + random() % (killer == Killer::chipChange ? 6000 : 1200);
    const pid_t child = startInstance(killer, countdown, random());
    if (killer == Killer::timer) {
      // Half of the timers fall in the instance's start, the rest anywhere.
      usleep(random() % (random() % 2 == 0 ? 3000 : 60000));
      kill(child, SIGKILL);
    }
    const int ended = wait(child);
    ASSERT_TRUE(ended == -SIGKILL || ended == 0) << "round " << round << ": " << ended;
    kills += ended == -SIGKILL ? 1 : 0;

    SCOPED_TRACE("round " + std::to_string(round));
    std::unique_ptr<TableInstance> instance;
    ASSERT_NO_THROW(instance = start());
    EXPECT_EQ(instance->settled().unsettled, 0u);
    settled += instance->settled().total();
    const std::set<std::uint16_t> before = chipSessions();
    std::size_t membersToAdd = 0;
    for (const auto& [id, selector] : config.members)
      membersToAdd += instance->registry().member(BfnTable::BfnMemberId(id)) == 0 ? 1 : 0;
    chip.logClear();
    ASSERT_NO_THROW(instance->apply(config));
    // Entries and members that outlived the death are modified, never added again.
    const std::vector<std::string> lines = logLines();
    for (std::uint16_t session : addedSessions(lines))
      EXPECT_EQ(before.count(session), 0u) << "session " << session << " added again";
    EXPECT_EQ(countCalls(lines, chipsim_test::kAddMember), membersToAdd);
    expectProgrammed(config, *instance);
    const std::size_t leftBehind = expectActionProfileProgrammed(config, *instance);
    groupsLeftBehind += leftBehind;
    mostGroupsLeftBehind = std::max(mostGroupsLeftBehind, leftBehind);
    // As a host cleans up after its restart: the groups of the instances
    // before are used by no entry any more.
    removeGroupsLeftBehind(*instance);
  }
  EXPECT_GE(kills, wanted);
  // Some deaths did come in the midst of recorded calls.
  EXPECT_GT(settled, 0u);
  RecordProperty("kills", static_cast<int>(kills));
  RecordProperty("intentsSettled", static_cast<int>(settled));
  // Every restart creates the configured groups anew; the groups of the
  // instances before stay in the chip until a host removes them.
  RecordProperty("groupsLeftBehind", static_cast<int>(groupsLeftBehind));
  RecordProperty("mostGroupsLeftBehind", static_cast<int>(mostGroupsLeftBehind));
  std::printf(
      "kills %u, intents settled %u, groups left behind: %zu in all, at most %zu by one restart\n",
      kills, settled, groupsLeftBehind, mostGroupsLeftBehind);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
