#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "ActionProfileFixture.h"
#include "Vel/Allocate.h"
#include "Vel/BulkChange.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

BfnTable::BfnGroupId gid(std::uint32_t id) {
  return BfnTable::BfnGroupId(id);
}
BfnTable::BfnMemberId mid(std::uint32_t id) {
  return BfnTable::BfnMemberId(id);
}

constexpr std::uint16_t kSession = 6;
constexpr std::uint32_t kGroup = 20;
constexpr std::uint32_t kMembers = 5;
constexpr std::uint32_t kHashes = 5000;

// The selector of member `id`.
std::uint16_t selectorOf(std::uint32_t id) {
  return static_cast<std::uint16_t>(1000 + id);
}

// Configuration to forwarding on the software chip: five members, a selector
// group holding them all, and a match entry of a mirror session pointing at
// the group through the match table. Packets of the session, by their hash,
// go to the group's active members only, spread over all of them.
class EndToEndForwardingTest : public ActionProfileFixture {
 protected:
  void SetUp() override {
    ActionProfileFixture::SetUp();
    makeSm();
    table = Vel::allocate<IngressMirrorLagGroupTable>(helper, keyManager, statusManager);
    for (std::uint32_t id = 1; id <= kMembers; ++id)
      memberIs(id, selectorOf(id));
    group = groupIs(kGroup, 16, 1);
    for (std::uint32_t id = 2; id <= kMembers; ++id)
      group->memberIs(mid(id));
    match = Vel::allocate<IngressMirrorLagGroupMatchSpec>();
    match->ingMirrorMdMirrorSessionIs(kSession);
    startLog();
    table->entryIs(IngressMirrorLagGroupTableEntry(match, {kGroup, false}));
    entryLines = logLines();
  }
  void TearDown() override {
    if (table != nullptr && registry().entry(match) != 0)
      table->entryDel(match);
    table = nullptr;
    group = nullptr;
    match = nullptr;
    ActionProfileFixture::TearDown();
  }

  // How often each selector is picked for the session over many hashes.
  std::map<std::uint16_t, std::uint32_t> picks() const {
    std::map<std::uint16_t, std::uint32_t> counts;
    for (std::uint32_t hash = 0; hash < kHashes; ++hash) {
      std::uint16_t selector = 0;
      EXPECT_EQ(chip.lookupOnPipe(kPipe, kSession, hash * 2654435761u + 12345u, &selector), 0)
          << "hash " << hash;
      ++counts[selector];
    }
    return counts;
  }

  // The selectors picked; each must take a fair share of the hashes.
  static std::set<std::uint16_t> spread(const std::map<std::uint16_t, std::uint32_t>& counts) {
    std::set<std::uint16_t> selectors;
    for (const auto& [selector, count] : counts) {
      selectors.insert(selector);
      EXPECT_GT(count, kHashes / (2 * counts.size()))
          << "selector " << selector << " is picked " << count << " times of " << kHashes;
    }
    return selectors;
  }

  static std::set<std::uint16_t> selectorsOf(std::initializer_list<std::uint32_t> ids) {
    std::set<std::uint16_t> selectors;
    for (std::uint32_t id : ids)
      selectors.insert(selectorOf(id));
    return selectors;
  }

  Vel::Ptr<IngressMirrorLagGroupTable> table;
  Vel::Ptr<IngressMirrorLagGroupGroup> group;
  Vel::Ptr<IngressMirrorLagGroupMatchSpec> match;
  std::vector<std::string> entryLines;
};

TEST_F(EndToEndForwardingTest, TheEntryPointsAtTheGroupsHandle) {
  ASSERT_NE(registry().entry(match), 0u);
  EXPECT_THAT(entryLines, ElementsAre(chipsim_test::kAddEntryWithSelector +
                                      "(sess=7, dev=3, pipe=0x2, mirror_session=6, grp=" +
                                      std::to_string(groupHandle(kGroup)) +
                                      ") = 0 entry=" + std::to_string(registry().entry(match))));
  EXPECT_EQ(chip.entries(), 1u);
  EXPECT_EQ(chip.members(), kMembers);
  EXPECT_EQ(chip.groups(), 1u);
}

TEST_F(EndToEndForwardingTest, TheSessionIsSpreadOverEveryActiveMember) {
  EXPECT_EQ(spread(picks()), selectorsOf({1, 2, 3, 4, 5}));
}

TEST_F(EndToEndForwardingTest, AnotherSessionIsNotForwardedByTheEntry) {
  std::uint16_t selector = 0;
  EXPECT_NE(chip.lookupOnPipe(kPipe, kSession + 1, 1, &selector), 0);
}

TEST_F(EndToEndForwardingTest, InactiveMembersAreNotPickedUntilActiveAgain) {
  startLog();
  group->member(mid(3))->activeIs(false);
  EXPECT_THAT(logLines(), ElementsAre(memberStateLine(groupHandle(kGroup), memberHandle(3), 1)));
  EXPECT_EQ(spread(picks()), selectorsOf({1, 2, 4, 5}));
  group->member(mid(1))->activeIs(false);
  group->member(mid(5))->activeIs(false);
  EXPECT_EQ(spread(picks()), selectorsOf({2, 4}));
  group->member(mid(2))->activeIs(false);
  EXPECT_EQ(spread(picks()), selectorsOf({4}));
  group->member(mid(3))->activeIs(true);
  EXPECT_EQ(spread(picks()), selectorsOf({3, 4}));
  for (std::uint32_t id : {1u, 2u, 5u})
    group->member(mid(id))->activeIs(true);
  EXPECT_EQ(spread(picks()), selectorsOf({1, 2, 3, 4, 5}));
}

TEST_F(EndToEndForwardingTest, WithNoActiveMemberNothingIsPicked) {
  for (std::uint32_t id = 1; id <= kMembers; ++id)
    group->member(mid(id))->activeIs(false);
  std::uint16_t selector = 0;
  EXPECT_EQ(chip.lookupOnPipe(kPipe, kSession, 77, &selector), CHIPSIM_MISS);
  group->member(mid(4))->activeIs(true);
  EXPECT_EQ(spread(picks()), selectorsOf({4}));
}

TEST_F(EndToEndForwardingTest, AMemberJoiningInactiveIsPickedOnlyOnceActive) {
  memberIs(6, selectorOf(6));
  {
    Vel::BulkChange bulk(group, IngressMirrorLagGroupGroup::memberAttribute);
    group->memberIs(mid(6))->activeIs(false);
  }
  EXPECT_EQ(spread(picks()), selectorsOf({1, 2, 3, 4, 5}));
  group->member(mid(6))->activeIs(true);
  EXPECT_EQ(spread(picks()), selectorsOf({1, 2, 3, 4, 5, 6}));
}

TEST_F(EndToEndForwardingTest, MembersThatLeaveTheGroupAreNotPicked) {
  group->memberDel(mid(2));
  group->memberDel(mid(5));
  EXPECT_EQ(spread(picks()), selectorsOf({1, 3, 4}));
  group->memberIs(mid(5));
  EXPECT_EQ(spread(picks()), selectorsOf({1, 3, 4, 5}));
}

TEST_F(EndToEndForwardingTest, AChangedSelectorIsPickedAtOnce) {
  profile->entry(mid(4))->actionIs(selectorAction(400));
  std::set<std::uint16_t> expected = selectorsOf({1, 2, 3, 5});
  expected.insert(400);
  EXPECT_EQ(spread(picks()), expected);
}

TEST_F(EndToEndForwardingTest, AnEntryMovedToAMemberForwardsToItAlone) {
  table->entryIs(IngressMirrorLagGroupTableEntry(match, {2, true}));
  EXPECT_EQ(spread(picks()), selectorsOf({2}));
}

TEST_F(EndToEndForwardingTest, DeletingTheEntryTheGroupAndTheMembersLeavesTheChipEmpty) {
  const std::uint32_t entry = registry().entry(match);
  const std::uint32_t grp = groupHandle(kGroup);
  std::vector<std::uint32_t> mbr;
  for (std::uint32_t id = 1; id <= kMembers; ++id)
    mbr.push_back(memberHandle(id));
  startLog();
  table->entryDel(match);
  EXPECT_THAT(logLines(), ElementsAre(chipsim_test::kTableDelete +
                                      "(sess=7, dev=3, entry=" + std::to_string(entry) + ") = 0"));
  std::uint16_t selector = 0;
  EXPECT_EQ(chip.lookupOnPipe(kPipe, kSession, 1, &selector), CHIPSIM_MISS);
  EXPECT_EQ(chip.entries(), 0u);

  startLog();
  profile->groupDel(gid(kGroup));
  std::vector<std::string> lines = logLines();
  ASSERT_EQ(lines.size(), kMembers + 1);
  std::vector<std::string> removals;
  for (std::uint32_t handle : mbr)
    removals.push_back(delMemberFromGroupLine(grp, handle));
  EXPECT_THAT(std::vector<std::string>(lines.begin(), lines.end() - 1),
              testing::UnorderedElementsAreArray(removals));
  EXPECT_EQ(lines.back(), delGroupLine(grp));
  EXPECT_EQ(chip.groups(), 0u);

  startLog();
  profile->entryDelAll();
  std::vector<std::string> deletes;
  for (std::uint32_t handle : mbr)
    deletes.push_back(delMemberLine(handle));
  EXPECT_THAT(logLines(), testing::UnorderedElementsAreArray(deletes));

  EXPECT_EQ(chip.entries(), 0u);
  EXPECT_EQ(chip.members(), 0u);
  EXPECT_EQ(chip.groups(), 0u);
  EXPECT_EQ(chipFault(), "");
  EXPECT_THAT(registryMembers(), IsEmpty());
  EXPECT_THAT(registryGroups(), IsEmpty());
  EXPECT_EQ(registry().entry(match), 0u);
  EXPECT_EQ(sm->actionProfiles(), 0u);
  EXPECT_EQ(sm->groups(), 0u);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
