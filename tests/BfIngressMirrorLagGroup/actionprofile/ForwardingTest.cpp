#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "ActionProfileFixture.h"
#include "Vel/Allocate.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;

constexpr std::uint16_t kSession = 5;
constexpr std::uint32_t kHashes = 4096;

// From configuration to forwarding on the software chip: members, a selector
// group of them, and a match entry of a mirror session pointing at the group.
class ForwardingTest : public ActionProfileFixture {
 protected:
  void SetUp() override {
    ActionProfileFixture::SetUp();
    makeSm();
    table = Vel::allocate<IngressMirrorLagGroupTable>(helper, keyManager, statusManager);
    for (std::uint32_t id = 1; id <= 4; ++id)
      memberIs(id, static_cast<std::uint16_t>(100 + id));
    group = groupIs(10, 8, 1);
    for (std::uint32_t id = 2; id <= 4; ++id)
      group->memberIs(BfnTable::BfnMemberId(id));
    match = Vel::allocate<IngressMirrorLagGroupMatchSpec>();
    match->ingMirrorMdMirrorSessionIs(kSession);
    table->entryIs(IngressMirrorLagGroupTableEntry(match, {10, false}));
  }
  void TearDown() override {
    if (table != nullptr && registry().entry(match) != 0)
      table->entryDel(match);
    table = nullptr;
    group = nullptr;
    match = nullptr;
    ActionProfileFixture::TearDown();
  }

  // How often each selector is picked for the session over many packet hashes.
  std::map<std::uint16_t, std::uint32_t> picks() const {
    std::map<std::uint16_t, std::uint32_t> counts;
    for (std::uint32_t hash = 0; hash < kHashes; ++hash) {
      std::uint16_t selector = 0;
      EXPECT_EQ(chip.lookupOnPipe(kPipe, kSession, hash * 2654435761u, &selector), 0) << hash;
      ++counts[selector];
    }
    return counts;
  }

  static std::set<std::uint16_t> selectors(const std::map<std::uint16_t, std::uint32_t>& counts) {
    std::set<std::uint16_t> result;
    for (const auto& [selector, count] : counts) {
      result.insert(selector);
      EXPECT_GT(count, kHashes / 16) << "selector " << selector << " is hardly ever picked";
    }
    return result;
  }

  Vel::Ptr<IngressMirrorLagGroupTable> table;
  Vel::Ptr<IngressMirrorLagGroupGroup> group;
  Vel::Ptr<IngressMirrorLagGroupMatchSpec> match;
};

TEST_F(ForwardingTest, TheSessionIsSpreadOverEveryActiveMember) {
  EXPECT_THAT(selectors(picks()), ElementsAre(101, 102, 103, 104));
}

TEST_F(ForwardingTest, AnInactiveMemberIsNoLongerPicked) {
  group->member(BfnTable::BfnMemberId(3))->activeIs(false);
  EXPECT_THAT(selectors(picks()), ElementsAre(101, 102, 104));
  group->member(BfnTable::BfnMemberId(3))->activeIs(true);
  EXPECT_THAT(selectors(picks()), ElementsAre(101, 102, 103, 104));
}

TEST_F(ForwardingTest, AMemberThatLeavesTheGroupIsNoLongerPicked) {
  group->memberDel(BfnTable::BfnMemberId(2));
  EXPECT_THAT(selectors(picks()), ElementsAre(101, 103, 104));
}

TEST_F(ForwardingTest, AChangedSelectorIsPickedAtOnce) {
  profile->entry(BfnTable::BfnMemberId(4))->actionIs(selectorAction(400));
  EXPECT_THAT(selectors(picks()), ElementsAre(101, 102, 103, 400));
}

TEST_F(ForwardingTest, AnEntryOnAMemberForwardsToItAlone) {
  table->entryIs(IngressMirrorLagGroupTableEntry(match, {2, true}));
  EXPECT_THAT(selectors(picks()), ElementsAre(102));
}

TEST_F(ForwardingTest, DeletingEntryGroupAndMembersLeavesTheChipEmpty) {
  table->entryDel(match);
  std::uint16_t selector = 0;
  EXPECT_NE(chip.lookupOnPipe(kPipe, kSession, 1, &selector), 0);
  profile->groupDel(BfnTable::BfnGroupId(10));
  profile->entryDelAll();
  EXPECT_EQ(chip.entries(), 0u);
  EXPECT_EQ(chip.members(), 0u);
  EXPECT_EQ(chip.groups(), 0u);
  EXPECT_EQ(chipFault(), "");
  EXPECT_TRUE(registryMembers().empty());
  EXPECT_TRUE(registryGroups().empty());
  EXPECT_EQ(sm->actionProfiles(), 0u);
  EXPECT_EQ(sm->groups(), 0u);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
