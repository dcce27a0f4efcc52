#include <gmock/gmock.h>
#include <signal.h>
#include <unistd.h>

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "RestartFixture.h"
#include "support/PdFunctionNames.h"

namespace BfIngressMirrorLagGroup {
namespace {

using chipsim_test::kAddMemberToGroup;
using chipsim_test::kCreateGroup;
using chipsim_test::kGroupMemberStateSet;
using chipsim_test::kModifyEntry;
using chipsim_test::kModifyEntryWithSelector;
using chipsim_test::kModifyMember;
using chipsim_test::kSetDefaultEntry;

using HandlePairs = std::vector<std::pair<std::uint16_t, std::uint32_t>>;

class FactoryRestartTest : public RestartFixture {
 protected:
  // A call that creates a group or changes its members.
  static bool isGroupCall(const std::string& line) {
    for (const std::string* function : {&kCreateGroup, &kAddMemberToGroup, &kGroupMemberStateSet}) {
      if (line.rfind(*function + "(", 0) == 0)
        return true;
    }
    return false;
  }
};

// The first instance makes the named chip and the shadow tables, programs
// 3000 entries, members, groups and the default entry, tells its registry's
// entry handles through a pipe and dies by SIGKILL. The second settles the
// tables, makes the table with the factory and holds the first's handles;
// writing the same configuration again only modifies.
TEST_F(FactoryRestartTest, ASecondProcessAdoptsTheFirstsEntriesAndOnlyModifiesThem) {
  const WantedConfig config = WantedConfig::make(3000, 40, 10);
  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  const pid_t first = fork([&]() {
    close(fds[0]);
    if (chip.attach(chipName.c_str()) != 0)
      return 2;
    auto instance = start();
    instance->apply(config);
    for (const auto& [session, handle] : instance->handlesBySession()) {
      // Two whole words: a pair of 16 and 32 bits would send its padding too.
      const std::uint32_t words[2] = {session, handle};
      if (write(fds[1], words, sizeof words) != static_cast<ssize_t>(sizeof words))
        return 3;
    }
    raise(SIGKILL);
    return 4;
  });
  close(fds[1]);
  HandlePairs firstHandles;
  std::uint32_t words[2];
  while (read(fds[0], words, sizeof words) == static_cast<ssize_t>(sizeof words))
    firstHandles.emplace_back(static_cast<std::uint16_t>(words[0]), words[1]);
  close(fds[0]);
  ASSERT_EQ(wait(first), -SIGKILL);
  ASSERT_EQ(firstHandles.size(), config.entries.size());

  ASSERT_EQ(chip.attachExisting(chipName.c_str()), 0);
  auto second = start();
  EXPECT_EQ(second->settled().total(), 0u);
  const std::map<std::uint16_t, std::uint32_t> adopted = second->handlesBySession();
  EXPECT_EQ(HandlePairs(adopted.begin(), adopted.end()), firstHandles);
  expectProgrammed(config, *second);
  EXPECT_EQ(second->keys()->latestKey().value(), config.entries.size() + 1);

  const std::size_t groupsBefore = chip.groups();
  chip.logClear();
  second->apply(config);
  std::vector<std::string> lines = logLines();
  // The members are modified, the groups created anew with their members;
  // then come the entries.
  std::size_t memberModifies = 0;
  while (!lines.empty() && lines.front().rfind(kModifyMember + "(", 0) == 0) {
    ++memberModifies;
    lines.erase(lines.begin());
  }
  EXPECT_EQ(memberModifies, config.members.size());
  while (!lines.empty() && isGroupCall(lines.front()))
    lines.erase(lines.begin());
  EXPECT_EQ(chip.groups(), groupsBefore + config.groups.size());
  ASSERT_EQ(lines.size(), config.entries.size() + 1);
  std::size_t modifies = 0;
  for (const std::string& line : lines) {
    const bool modify = line.rfind(kModifyEntry + "(", 0) == 0 ||
                        line.rfind(kModifyEntryWithSelector + "(", 0) == 0;
    modifies += modify ? 1 : 0;
    EXPECT_TRUE(modify || line.rfind(kSetDefaultEntry + "(", 0) == 0) << line;
    EXPECT_NE(line.find(") = 0"), std::string::npos) << line;
  }
  EXPECT_EQ(modifies, config.entries.size());
  EXPECT_EQ(chip.entries(), config.entries.size());
  expectProgrammed(config, *second);
  expectActionProfileProgrammed(config, *second);
  // No entry or member was added, so nothing new was recorded; each group's
  // record now holds its new group.
  EXPECT_EQ(second->keys()->entryShadow()->records().size(), config.entries.size() + 1);
  EXPECT_EQ(second->keys()->memberShadow()->records().size(), config.members.size());
  EXPECT_EQ(second->keys()->groupShadow()->records().size(), config.groups.size());
}

// The first instance configures members through the action-profile entity,
// tells their handles through a pipe and dies by SIGKILL. The second gets the
// same member handles from the factory; configuring the same members again
// only modifies them, with the state machine's session, and the chip holds no
// other member.
TEST_F(FactoryRestartTest, ASecondProcessGetsTheFirstsMembersAndOnlyModifiesThem) {
  WantedConfig config;
  for (std::uint32_t id = 1; id <= 40; ++id)
    config.members[id] = static_cast<std::uint16_t>(2000 + id);
  config.defaultTarget = {1, true};
  attachNamedChip();
  int fds[2];
  ASSERT_EQ(pipe(fds), 0);
  const pid_t first = fork([&]() {
    close(fds[0]);
    auto instance = start();
    instance->apply(config);
    for (const auto& [id, selector] : config.members) {
      const std::pair<std::uint32_t, std::uint32_t> pair(
          id, instance->registry().member(BfnTable::BfnMemberId(id)));
      if (write(fds[1], &pair, sizeof pair) != static_cast<ssize_t>(sizeof pair))
        return 3;
    }
    raise(SIGKILL);
    return 4;
  });
  close(fds[1]);
  std::map<std::uint32_t, std::uint32_t> firstHandles;
  std::pair<std::uint32_t, std::uint32_t> pair;
  while (read(fds[0], &pair, sizeof pair) == static_cast<ssize_t>(sizeof pair))
    firstHandles.insert(pair);
  close(fds[0]);
  ASSERT_EQ(wait(first), -SIGKILL);
  ASSERT_EQ(firstHandles.size(), config.members.size());
  ASSERT_EQ(chip.members(), config.members.size());

  auto second = start();
  std::map<std::uint32_t, std::uint32_t> refilled;
  for (auto slot = second->registry().members().begin(); slot; ++slot)
    refilled.emplace(slot.key().value(), slot.value());
  EXPECT_EQ(refilled, firstHandles);

  chip.logClear();
  config.members[7] = 7;  // one member's selector changes meanwhile
  second->apply(config);
  std::vector<std::string> expected;
  for (const auto& [id, selector] : config.members) {
    expected.push_back(kModifyMember + "(sess=1, dev=0, mbr=" + std::to_string(firstHandles[id]) +
                       ", selector=" + std::to_string(selector) + ") = 0");
  }
  std::vector<std::string> lines = logLines();
  // The default entry is set last.
  ASSERT_FALSE(lines.empty());
  lines.pop_back();
  EXPECT_EQ(lines, expected);
  EXPECT_EQ(chip.members(), config.members.size());
  expectActionProfileProgrammed(config, *second);
}

// Entries of the first instance that the second does not write again stay
// adopted, and can be deleted through their adopted match specs.
TEST_F(FactoryRestartTest, AnAdoptedEntryIsDeletedThroughItsAdoptedMatchSpec) {
  const WantedConfig config = WantedConfig::make(20, 4, 2);
  attachNamedChip();
  ASSERT_EQ(wait(fork([&]() {
              start()->apply(config);
              raise(SIGKILL);
              return 0;
            })),
            -SIGKILL);
  auto second = start();
  const auto matches = second->matchesBySession();
  ASSERT_EQ(matches.size(), config.entries.size());
  const std::uint32_t handle = second->registry().entry(matches.begin()->second);
  second->table()->entryDel(matches.begin()->second);
  EXPECT_EQ(chip.entries(), config.entries.size() - 1);
  EXPECT_EQ(second->registry().entry(matches.begin()->second), 0u);
  EXPECT_FALSE(second->keys()->entryShadow()->keyOfHandle(handle).has_value());
  EXPECT_EQ(second->keys()->entryShadow()->records().size(), config.entries.size());
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
