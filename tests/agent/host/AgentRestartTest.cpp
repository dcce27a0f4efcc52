#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <random>
#include <string>
#include <thread>

#include <nlohmann/json.hpp>

#include "AgentFixture.h"
#include "Pd/PipeStatus.h"
#include "config/AgentConfig.h"
#include "support/ChipContents.h"
#include "support/ChipsimLibrary.h"
#include "support/EnvironmentNumber.h"

namespace mirrorlag_agent {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

// What the agent starts from: the kept state, the start-up configuration when
// there is none or --discard-state asks for it, and refusals of either when
// it is damaged, before the chip is touched.
using AgentStartTest = AgentFixture;

TEST_F(AgentStartTest, ARestartedAgentAppliesItsKeptStateNotTheStartConfiguration) {
  startAgent();
  ASSERT_EQ(ctl("entry 7 member 2").status, 0);
  stopAgent(SIGTERM);
  startAgent();
  EXPECT_EQ(AgentConfig::fromText(ctl("show config").output).entries.count(7), 1u);
}

TEST_F(AgentStartTest, DiscardStateStartsFromTheStartConfigurationAndRemovesTheRest) {
  startAgent();
  ASSERT_EQ(ctl("entry 7 member 2").status, 0);
  ASSERT_EQ(ctl("member 4 selector 13").status, 0);
  stopAgent(SIGKILL);
  startAgent({"--discard-state"});
  EXPECT_EQ(AgentConfig::fromText(ctl("show config").output), AgentConfig::fromText(kConfig));
  EXPECT_EQ(ctl("check").status, 0);
  const shadow_test::ChipContents chip = shadow_test::ChipContents::parse(chipDump());
  EXPECT_EQ(chip.entries.size(), 2u);
  EXPECT_EQ(chip.members.size(), 3u);
  EXPECT_EQ(chip.groups.size(), 1u);
  // The state now kept is the start configuration.
  stopAgent(SIGTERM);
  startAgent();
  EXPECT_EQ(AgentConfig::fromText(ctl("show config").output), AgentConfig::fromText(kConfig));
}

TEST_F(AgentStartTest, ADamagedStateFileIsRefusedBeforeTheChipIsTouched) {
  startAgent();
  stopAgent(SIGTERM);
  const std::string chipBefore = chipDump() + chipTool("log").output;
  const std::string shadowBefore = shadowBytes();
  std::ofstream(statePath) << R"({"members": [{"id": 1, "selector": 10}], "entries": [)";
  const Outcome refused = runAgentToEnd();
  EXPECT_EQ(refused.status, 1);
  EXPECT_THAT(refused.output, StartsWith("mirrorlag-agent: state file " + statePath +
                                         " is damaged: /: not JSON: "));
  EXPECT_THAT(refused.output, HasSubstr("(start with --discard-state to apply --config instead)"));
  EXPECT_EQ(chipDump() + chipTool("log").output, chipBefore);
  EXPECT_EQ(shadowBytes(), shadowBefore);
  startAgent({"--discard-state"});
  EXPECT_EQ(AgentConfig::fromText(ctl("show config").output), AgentConfig::fromText(kConfig));
}

TEST_F(AgentStartTest, ARestartRemovesMembersAndGroupsThatNoRecordNames) {
  startAgent();
  stopAgent(SIGKILL);
  // What a process killed between the chip's add and its record leaves.
  const chipsim_test::ChipsimLibrary& chip = chipsim_test::chipsim();
  ASSERT_EQ(chip.attach(chipName.c_str()), 0);
  p4_pd_kestro_switch_setLagMemberSelector_action_spec_t spec{99};
  std::uint32_t member = 0;
  std::uint32_t group = 0;
  ASSERT_EQ(chip.addMember(1, {0, P4_PD_ALL_PIPES}, &spec, &member), PIPE_STATUS_SUCCESS);
  ASSERT_EQ(chip.createGroup(1, {0, P4_PD_ALL_PIPES}, 4, &group), PIPE_STATUS_SUCCESS);
  ASSERT_EQ(chip.attach(nullptr), 0);
  startAgent();
  // The old group goes as soon as its replacement took its entries; the
  // unrecorded member and group after the apply.
  EXPECT_THAT(agentLog(),
              HasSubstr("mirrorlag-agent: applied 8 changes, 1 groups created anew, 1 replaced "
                        "groups deleted (0 first, to make room)\n"));
  EXPECT_THAT(agentLog(), HasSubstr("mirrorlag-agent: removed 2 objects left behind\n"));
  EXPECT_EQ(ctl("check").status, 0);
  const shadow_test::ChipContents contents = shadow_test::ChipContents::parse(chipDump());
  EXPECT_EQ(contents.members.count(member), 0u);
  EXPECT_EQ(contents.groups.count(group), 0u);
  EXPECT_EQ(contents.members.size(), 3u);
  EXPECT_EQ(contents.groups.size(), 1u);
}

TEST_F(AgentStartTest, ASecondAgentOnTheSameShadowTablesIsRefusedAtOnce) {
  startAgent();
  const std::string chipBefore = chipDump() + chipTool("log").output;
  // On another chip, refused before it makes its socket: the first agent
  // keeps serving on it.
  const std::string otherChip = chipName + "-2";
  const Outcome refused = runAgentToEnd({"--chip", otherChip});
  chipsim_test::chipsim().unlink(otherChip.c_str());
  shm_unlink(("/" + otherChip + "-agent").c_str());
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.output, "mirrorlag-agent: shadow tables '" + shadowName +
                                "' are in use by process " + std::to_string(agent) + "\n");
  EXPECT_EQ(chipDump() + chipTool("log").output, chipBefore);
  EXPECT_EQ(ctl("check").status, 0);
}

// Writes `bytes` over the shadow table `table` at `offset`.
void damageFile(const std::string& table, std::size_t offset, const std::string& bytes) {
  std::fstream file("/dev/shm" + table, std::ios::in | std::ios::out | std::ios::binary);
  file.seekp(static_cast<std::streamoff>(offset));
  file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

TEST_F(AgentStartTest, AfterShadowDamageTheRestartConvergesAndTheNextIsClean) {
  startAgent();
  ASSERT_EQ(ctl("entry 7 member 2").status, 0);
  stopAgent(SIGKILL);
  // The match-entry table's header and the member table's records.
  damageFile(shadowName + "-mbb", 8, std::string(16, '\xff'));
  damageFile(shadowName + "-adt", 200, std::string(64, '\x5a'));
  const std::size_t before = chipLog().size();
  startAgent();
  EXPECT_THAT(agentLog(), HasSubstr("shadow tables '" + shadowName + "' are damaged ("));
  EXPECT_EQ(ctl("check").status, 0) << ctl("check").output;
  const std::vector<std::string> log = chipLog();
  for (std::size_t i = before; i < log.size(); ++i)
    EXPECT_EQ(log[i].find("_add_entry("), std::string::npos) << log[i];
  const shadow_test::ChipContents chip = shadow_test::ChipContents::parse(chipDump());
  EXPECT_EQ(chip.entries.size(), 3u);
  EXPECT_EQ(chip.members.size(), 3u);
  EXPECT_EQ(chip.groups.size(), 1u);
  // The tables now hold every object again: the next restart finds nothing lost.
  stopAgent(SIGKILL);
  std::remove(logPath.c_str());
  startAgent();
  EXPECT_EQ(ctl("check").status, 0);
  EXPECT_THAT(agentLog(), testing::Not(HasSubstr("damaged")));
  EXPECT_THAT(agentLog(), testing::Not(HasSubstr("that no record names")));
}

TEST_F(AgentStartTest, ASecondAgentOnTheSameChipIsRefusedAtOnce) {
  startAgent();
  const std::string chipBefore = chipDump() + chipTool("log").output;
  const Outcome refused = runAgentToEnd({"--shadow", shadowName + "-other"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.output, "mirrorlag-agent: chip '" + chipName + "' is in use by process " +
                                std::to_string(agent) + "\n");
  EXPECT_EQ(chipDump() + chipTool("log").output, chipBefore);
  EXPECT_EQ(ctl("check").status, 0);
}

TEST_F(AgentStartTest, ABadCommandLineIsRefusedWithStatus2) {
  const Outcome refused = runAgentToEnd({"--device", "300"});
  EXPECT_EQ(refused.status, 2);
  EXPECT_THAT(refused.output, HasSubstr("--device: Value 300 not in range 0 to 255"));
  EXPECT_EQ(runAgentToEnd({"--frobnicate"}).status, 2);
}

TEST_F(AgentStartTest, ABadStartConfigurationIsRefusedWithItsFileAndPath) {
  writeConfig(R"({"members": [{"id": 1, "selector": 70000}]})");
  const Outcome refused = runAgentToEnd();
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.output, "mirrorlag-agent: /members/0/selector: " + configPath +
                                ": /members/0/selector: 70000 is not in 0 to 65535\n");
}

// Random configurations over a fixed universe: members 1..kMembers, groups
// 1..kGroups (group g always of size 2 + g % 6 with member g first, so that
// any two of them can follow each other), entries on sessions 0..kSessions-1.
class RandomConfig {
 public:
  static constexpr std::uint32_t kMembers = 64;
  static constexpr std::uint32_t kGroups = 12;
  static constexpr std::uint32_t kSessions = 400;

  explicit RandomConfig(std::uint32_t seed) : random_(seed) {}

  nlohmann::json next() {
    nlohmann::json config = {{"members", nlohmann::json::array()},
                             {"groups", nlohmann::json::array()},
                             {"entries", nlohmann::json::array()}};
    std::vector<std::uint32_t> groups;
    for (std::uint32_t g = 1; g <= kGroups; ++g) {
      if (chance(2, 3))
        groups.push_back(g);
    }
    std::vector<std::uint32_t> members;
    for (std::uint32_t m = 1; m <= kMembers; ++m) {
      const bool first = std::find(groups.begin(), groups.end(), m) != groups.end();
      if (first || chance(3, 4)) {
        members.push_back(m);
        config["members"].push_back({{"id", m}, {"selector", 100 + random_() % 8}});
      }
    }
    for (std::uint32_t g : groups)
      config["groups"].push_back(groupOf(g, members));
    for (std::uint32_t session = 0; session < kSessions; ++session) {
      if (!chance(3, 4))
        continue;
      if (!groups.empty() && chance(1, 2))
        config["entries"].push_back({{"session", session}, {"group", pick(groups)}});
      else
        config["entries"].push_back({{"session", session}, {"member", pick(members)}});
    }
    if (chance(1, 2))
      config["default"] = {{"member", pick(members)}};
    return config;
  }

 private:
  bool chance(std::uint32_t in, std::uint32_t of) { return random_() % of < in; }
  std::uint32_t pick(const std::vector<std::uint32_t>& ids) { return ids[random_() % ids.size()]; }

  nlohmann::json groupOf(std::uint32_t g, const std::vector<std::uint32_t>& members) {
    const std::uint32_t size = 2 + g % 6;
    nlohmann::json group = {{"id", g}, {"size", size}, {"members", {{{"id", g}}}}};
    for (std::uint32_t tries = 0; tries < size - 1; ++tries) {
      const std::uint32_t m = pick(members);
      bool taken = false;
      for (const auto& member : group["members"])
        taken = taken || member["id"] == m;
      if (!taken)
        group["members"].push_back({{"id", m}, {"active", chance(3, 4)}});
    }
    return group;
  }

  std::mt19937 random_;
};

// SIGKILL of the agent at random points of an apply, then the same command
// line again: the next agent runs the configuration it kept (the one before
// the apply, or the one applied when the kill came after it was kept), and the
// chip holds exactly that configuration's objects: nothing of the cut apply
// or of the instance before is left, and check passes. MIRRORLAG_AGENT_KILLS
// sets how many agents die (50 by default), MIRRORLAG_AGENT_SEED the seed.
class AgentKillLoopTest : public AgentFixture {};

// The kill comes at most twice as long after the apply is sent as a whole
// apply takes, measured once.
constexpr int kKillWindowPerApply = 2;

TEST_F(AgentKillLoopTest, EveryRestartEndsWithExactlyTheKeptConfigurationInTheChip) {
  const std::uint32_t kills = shadow_test::environmentNumber("MIRRORLAG_AGENT_KILLS", 50);
  const std::uint32_t seed = shadow_test::environmentNumber("MIRRORLAG_AGENT_SEED", 2026);
  SCOPED_TRACE("MIRRORLAG_AGENT_SEED=" + std::to_string(seed));
  std::mt19937 random(seed);
  RandomConfig configs(seed);
  const std::string nextPath = configPath + ".next";
  startAgent();
  std::ofstream(nextPath) << configs.next().dump();
  const auto start = std::chrono::steady_clock::now();
  ASSERT_EQ(ctl("apply " + nextPath).status, 0);
  const auto window = static_cast<std::uint32_t>(
      kKillWindowPerApply * std::chrono::duration_cast<std::chrono::microseconds>(
                                std::chrono::steady_clock::now() - start)
                                .count());
  std::uint32_t kept = 0;
  for (std::uint32_t kill = 0; kill < kills && !HasFailure(); ++kill) {
    SCOPED_TRACE("kill " + std::to_string(kill));
    const AgentConfig before = AgentConfig::fromText(ctl("show config").output);
    const nlohmann::json next = configs.next();
    std::ofstream(nextPath) << next.dump();
    std::thread apply([&] { ctl("apply " + nextPath); });
    std::this_thread::sleep_for(std::chrono::microseconds(random() % window));
    stopAgent(SIGKILL);
    apply.join();
    startAgent();
    const AgentConfig running = AgentConfig::fromText(ctl("show config").output);
    EXPECT_TRUE(running == before || running == AgentConfig::fromJson(next));
    kept += running == before ? 0 : 1;
    const Outcome checked = ctl("check");
    EXPECT_EQ(checked.status, 0) << checked.output << ctl("show members").output << chipDump();
    const shadow_test::ChipContents chip = shadow_test::ChipContents::parse(chipDump());
    EXPECT_EQ(chip.entries.size(), running.entries.size());
    EXPECT_EQ(chip.members.size(), running.members.size());
    EXPECT_EQ(chip.groups.size(), running.groups.size());
    EXPECT_EQ(chip.defaultEntry.has_value(), running.defaultTarget.has_value());
  }
  std::remove(nextPath.c_str());
  // Kills came both before and after an apply was kept.
  std::printf("agent kill loop: %u kills, %u after the apply was kept\n", kills, kept);
  EXPECT_GT(kept, 0u);
  EXPECT_LT(kept, kills);
}

}  // namespace
}  // namespace mirrorlag_agent
