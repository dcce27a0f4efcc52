#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <cstdint>
#include <string>
#include <vector>

#include "AgentFixture.h"
#include "support/ChipContents.h"
#include "support/ChipsimLibrary.h"

namespace mirrorlag_agent {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// Two groups, each with its own entry; the default entry on the second.
const char* const kTwoGroups = R"({
  "members": [ {"id": 1, "selector": 10}, {"id": 2, "selector": 11},
               {"id": 3, "selector": 12}, {"id": 4, "selector": 13} ],
  "groups":  [ {"id": 100, "size": 2, "members": [ {"id": 1}, {"id": 2} ]},
               {"id": 200, "size": 2, "members": [ {"id": 3, "active": false}, {"id": 4} ]} ],
  "entries": [ {"session": 5, "group": 100}, {"session": 6, "group": 200},
               {"session": 7, "member": 1} ],
  "default": {"group": 200}
})";

// Restarts of an agent whose groups fill the chip, or leave room for one
// more. The plug-in makes every group anew after a restart, so the agent
// moves the groups one at a time.
class AgentFullChipRestartTest : public AgentFixture {
 protected:
  void SetUp() override {
    AgentFixture::SetUp();
    writeConfig(kTwoGroups);
  }

  // Makes the chip before the agent does, with room for `groups` groups.
  void makeChip(std::uint32_t groups) const {
    const chipsim_test::ChipsimLibrary& chip = chipsim_test::chipsim();
    chipsim_config config{};
    chip.configDefault(&config);
    config.groups = groups;
    ASSERT_EQ(chip.configure(&config), 0);
    ASSERT_EQ(chip.attach(chipName.c_str()), 0);
    ASSERT_EQ(chip.attach(nullptr), 0);
    chip.configDefault(&config);
    ASSERT_EQ(chip.configure(&config), 0);
  }

  // Starts the agent on the configuration, kills it and starts it again;
  // gives the chip's log lines of the restart.
  std::vector<std::string> restartAfterKill() {
    startAgent();
    EXPECT_EQ(ctl("check").status, 0);
    stopAgent(SIGKILL);
    const std::size_t before = chipLog().size();
    startAgent();
    const std::vector<std::string> lines = chipLog();
    return {lines.begin() + static_cast<std::ptrdiff_t>(before), lines.end()};
  }

  // The calls of `lines` that make, fill, delete or point at groups, up to
  // the first that points an entry at a group: the move of the first group.
  // Each as its function's short name and status ("del_group = 0").
  static std::vector<std::string> firstGroupMove(const std::vector<std::string>& lines) {
    std::vector<std::string> calls;
    for (const std::string& line : lines) {
      const std::string name = shortName(line);
      if (name != "create_group" && name != "del_group" && name != "add_member_to_group" &&
          name != "modify_entry" && name != "modify_entry_with_selector")
        continue;
      calls.push_back(name + " = " + statusOf(line));
      if (name == "modify_entry_with_selector")
        break;
    }
    return calls;
  }

  static std::string shortName(const std::string& line) {
    const std::string name = line.substr(0, line.find('('));
    for (const std::string prefix : {"ActionProfile_", "ingressMirrorLagGroup_"}) {
      if (const std::size_t at = name.find(prefix); at != std::string::npos)
        return name.substr(at + prefix.size());
    }
    return name;
  }

  static std::string statusOf(const std::string& line) {
    const std::size_t at = line.find(") = ");
    const std::size_t end = line.find(' ', at + 4);
    return line.substr(at + 4, end == std::string::npos ? std::string::npos : end - at - 4);
  }
};

TEST_F(AgentFullChipRestartTest, AChipFullOfGroupsRestartsByMakingRoomForEachGroup) {
  makeChip(2);
  const std::vector<std::string> restart = restartAfterKill();
  EXPECT_THAT(
      agentLog(),
      HasSubstr("groups created anew, 2 replaced groups deleted (2 first, to make room)\n"));
  EXPECT_EQ(ctl("check").status, 0);
  const shadow_test::ChipContents chip = shadow_test::ChipContents::parse(chipDump());
  EXPECT_EQ(chip.groups.size(), 2u);
  EXPECT_EQ(chip.entries.size(), 3u);
  // No room for a new group 100: its entry goes to member 1 while the old
  // group is deleted (which the chip refuses while an entry points at it),
  // then the new group is made, filled and given the entry back.
  EXPECT_THAT(firstGroupMove(restart),
              ElementsAre("create_group = 9", "modify_entry = 0", "del_group = 0",
                          "create_group = 0", "add_member_to_group = 0", "add_member_to_group = 0",
                          "modify_entry_with_selector = 0"));
}

TEST_F(AgentFullChipRestartTest, RoomForOneMoreGroupIsEnoughToMakeEachGroupBeforeBreakingTheOld) {
  makeChip(3);
  const std::vector<std::string> restart = restartAfterKill();
  EXPECT_THAT(
      agentLog(),
      HasSubstr("groups created anew, 2 replaced groups deleted (0 first, to make room)\n"));
  EXPECT_EQ(ctl("check").status, 0);
  EXPECT_EQ(shadow_test::ChipContents::parse(chipDump()).groups.size(), 2u);
  // The entry never leaves a group: the new one is made and filled, the
  // entry moves to it, and only then does the old one go.
  std::vector<std::string> move = firstGroupMove(restart);
  const std::size_t moved = move.size();
  for (const std::string& line : restart) {
    if (shortName(line) == "del_group") {
      move.push_back("del_group = " + statusOf(line));
      break;
    }
  }
  EXPECT_EQ(moved, 4u);
  EXPECT_THAT(move,
              ElementsAre("create_group = 0", "add_member_to_group = 0", "add_member_to_group = 0",
                          "modify_entry_with_selector = 0", "del_group = 0"));
}

TEST_F(AgentFullChipRestartTest, AChipFullOfGroupsKeepsRestarting) {
  makeChip(2);
  startAgent();
  for (int round = 0; round < 3; ++round) {
    stopAgent(SIGKILL);
    startAgent();
    ASSERT_EQ(ctl("check").status, 0) << "round " << round;
  }
  EXPECT_EQ(shadow_test::ChipContents::parse(chipDump()).groups.size(), 2u);
}

}  // namespace
}  // namespace mirrorlag_agent
