#include "BfIngressMirrorLagGroup/hw/IngressMirrorLagGroupTableHandles.h"

#include <gtest/gtest.h>

#include "Vel/Allocate.h"

namespace BfIngressMirrorLagGroup {
namespace {

using MatchSpec = IngressMirrorLagGroupTableHandles::MatchSpec;

MatchSpec matchSpec(std::uint16_t session) {
  auto spec = Vel::allocate<IngressMirrorLagGroupMatchSpec>();
  spec->ingMirrorMdMirrorSessionIs(session);
  return spec;
}

class IngressMirrorLagGroupTableHandlesTest : public testing::Test {
 protected:
  void TearDown() override {
    registry = nullptr;
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupTableHandles>().liveObjects(), 0u);
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupMatchSpec>().liveObjects(), 0u);
  }

  Vel::Ptr<IngressMirrorLagGroupTableHandles> registry = ingressMirrorLagGroupTableHandlesFactory();
};

TEST_F(IngressMirrorLagGroupTableHandlesTest, FactoryMakesAnEmptyUnnamedRegistry) {
  EXPECT_EQ(registry->name(), "");
  EXPECT_EQ(registry->fullName(), "");
  EXPECT_TRUE(registry->entries().empty());
  EXPECT_TRUE(registry->groups().empty());
  EXPECT_TRUE(registry->members().empty());
  EXPECT_EQ(registry->references(), 1u);
}

TEST_F(IngressMirrorLagGroupTableHandlesTest, AbsentKeysGiveZero) {
  EXPECT_EQ(registry->member(7), 0u);
  EXPECT_EQ(registry->group(7), 0u);
  EXPECT_EQ(registry->entry(matchSpec(7)), 0u);
  EXPECT_EQ(registry->entry(nullptr), 0u);
}

TEST_F(IngressMirrorLagGroupTableHandlesTest, TheIdOfAHandleFollowsEveryChange) {
  registry->newMember(BfnTable::BfnMemberId(1), 10);
  registry->memberIs(BfnTable::BfnMemberId(2), 20);
  registry->newGroup(BfnTable::BfnGroupId(5), 50);
  EXPECT_EQ(registry->memberIdOf(10), BfnTable::BfnMemberId(1));
  EXPECT_EQ(registry->memberIdOf(20), BfnTable::BfnMemberId(2));
  EXPECT_EQ(registry->groupIdOf(50), BfnTable::BfnGroupId(5));
  EXPECT_EQ(registry->memberIdOf(30), BfnTable::BfnMemberId());
  // A member given another handle no longer holds the old one.
  registry->memberIs(BfnTable::BfnMemberId(1), 11);
  EXPECT_EQ(registry->memberIdOf(10), BfnTable::BfnMemberId());
  EXPECT_EQ(registry->memberIdOf(11), BfnTable::BfnMemberId(1));
  registry->memberDel(BfnTable::BfnMemberId(2));
  EXPECT_EQ(registry->memberIdOf(20), BfnTable::BfnMemberId());
  registry->groupDelAll();
  EXPECT_EQ(registry->groupIdOf(50), BfnTable::BfnGroupId());
}

TEST_F(IngressMirrorLagGroupTableHandlesTest, AHandleHeldByTwoIdsGivesTheFirstInWalkingOrder) {
  registry->memberIs(BfnTable::BfnMemberId(1), 10);
  registry->memberIs(BfnTable::BfnMemberId(2), 10);
  BfnTable::BfnMemberId first;
  for (auto slot = registry->members().begin(); slot; ++slot) {
    first = slot.key();
    break;
  }
  EXPECT_EQ(registry->memberIdOf(10), first);
  registry->memberDel(first);
  EXPECT_NE(registry->memberIdOf(10), first);
  EXPECT_NE(registry->memberIdOf(10), BfnTable::BfnMemberId());
}

TEST_F(IngressMirrorLagGroupTableHandlesTest, AHandleLeftByItsLastIdHolderGivesTheOtherHolder) {
  registry->memberIs(BfnTable::BfnMemberId(1), 10);
  registry->memberIs(BfnTable::BfnMemberId(2), 10);
  registry->memberDel(BfnTable::BfnMemberId(2));
  EXPECT_EQ(registry->memberIdOf(10), BfnTable::BfnMemberId(1));
  registry->groupIs(BfnTable::BfnGroupId(3), 30);
  registry->groupIs(BfnTable::BfnGroupId(4), 30);
  registry->groupIs(BfnTable::BfnGroupId(4), 31);
  EXPECT_EQ(registry->groupIdOf(30), BfnTable::BfnGroupId(3));
  EXPECT_EQ(registry->groupIdOf(31), BfnTable::BfnGroupId(4));
}

TEST_F(IngressMirrorLagGroupTableHandlesTest, AnIdRegisteredWithHandleZeroIsFoundByIt) {
  registry->memberIs(BfnTable::BfnMemberId(5), 0);
  registry->groupIs(BfnTable::BfnGroupId(6), 0);
  EXPECT_EQ(registry->memberIdOf(0), BfnTable::BfnMemberId(5));
  EXPECT_EQ(registry->groupIdOf(0), BfnTable::BfnGroupId(6));
  registry->memberDelAll();
  EXPECT_EQ(registry->memberIdOf(0), BfnTable::BfnMemberId());
}

TEST_F(IngressMirrorLagGroupTableHandlesTest, EntryIsTwiceKeepsOneNodeWithTheSecondHandle) {
  const MatchSpec match = matchSpec(5);
  registry->entryIs(match, 11);
  registry->entryIs(match, 12);
  EXPECT_EQ(registry->entries().size(), 1u);
  EXPECT_EQ(registry->entry(match), 12u);
}

TEST_F(IngressMirrorLagGroupTableHandlesTest, EqualMatchSpecsInTwoObjectsAreTwoKeys) {
  const MatchSpec first = matchSpec(5);
  const MatchSpec second = matchSpec(5);
  registry->entryIs(first, 11);
  registry->entryIs(second, 12);
  EXPECT_EQ(registry->entries().size(), 2u);
  EXPECT_EQ(registry->entry(first), 11u);
  EXPECT_EQ(registry->entry(second), 12u);
}

TEST_F(IngressMirrorLagGroupTableHandlesTest, EntryDelOfAnAbsentKeyGivesZeroAndChangesNothing) {
  const MatchSpec kept = matchSpec(5);
  registry->entryIs(kept, 11);
  EXPECT_EQ(registry->entryDel(matchSpec(5)), 0u);
  EXPECT_EQ(registry->entries().size(), 1u);
  EXPECT_EQ(registry->entry(kept), 11u);
}

TEST_F(IngressMirrorLagGroupTableHandlesTest, EntryDelGivesTheHandleAndDropsTheKeyReference) {
  const MatchSpec match = matchSpec(5);
  registry->newEntry(match, 11);
  EXPECT_EQ(match->references(), 2u);
  EXPECT_EQ(registry->entryDel(match), 11u);
  EXPECT_EQ(match->references(), 1u);
  EXPECT_EQ(registry->entry(match), 0u);
}

TEST_F(IngressMirrorLagGroupTableHandlesTest, GroupAndMemberHandlesOverwriteInPlace) {
  registry->newGroup(3, 30);
  registry->groupIs(3, 31);
  registry->groupIs(4, 40);
  registry->newMember(7, 70);
  registry->memberIs(7, 71);
  EXPECT_EQ(registry->groups().size(), 2u);
  EXPECT_EQ(registry->group(3), 31u);
  EXPECT_EQ(registry->group(4), 40u);
  EXPECT_EQ(registry->members().size(), 1u);
  EXPECT_EQ(registry->member(7), 71u);
  EXPECT_EQ(registry->memberDel(7), 71u);
  EXPECT_EQ(registry->memberDel(7), 0u);
  EXPECT_EQ(registry->groupDel(3), 31u);
  EXPECT_EQ(registry->group(3), 0u);
}

TEST_F(IngressMirrorLagGroupTableHandlesTest, GroupAndMemberIdsAreSeparateKeySpaces) {
  registry->newGroup(5, 50);
  EXPECT_EQ(registry->member(5), 0u);
  registry->newMember(5, 55);
  EXPECT_EQ(registry->group(5), 50u);
  EXPECT_EQ(registry->member(5), 55u);
}

TEST_F(IngressMirrorLagGroupTableHandlesTest, DelAllEmptiesEachCollectionAlone) {
  for (std::uint32_t i = 1; i <= 20; ++i) {
    registry->newEntry(matchSpec(static_cast<std::uint16_t>(i)), 100 + i);
    registry->newGroup(i, 200 + i);
    registry->newMember(i, 300 + i);
  }
  registry->entryDelAll();
  EXPECT_TRUE(registry->entries().empty());
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupMatchSpec>().liveObjects(), 0u);
  EXPECT_EQ(registry->groups().size(), 20u);
  registry->groupDelAll();
  EXPECT_TRUE(registry->groups().empty());
  EXPECT_EQ(registry->members().size(), 20u);
  registry->memberDelAll();
  EXPECT_TRUE(registry->members().empty());
}

TEST_F(IngressMirrorLagGroupTableHandlesTest, DestroyingTheRegistryReleasesItsKeys) {
  const MatchSpec match = matchSpec(5);
  registry->newEntry(match, 11);
  registry = nullptr;
  EXPECT_EQ(match->references(), 1u);
}

TEST(IngressMirrorLagGroupTableHandlesDeathTest, NewEntryOfAPresentKeyIsAnAssertion) {
  auto registry = ingressMirrorLagGroupTableHandlesFactory();
  const MatchSpec match = matchSpec(5);
  registry->newEntry(match, 11);
  EXPECT_DEATH(registry->newEntry(match, 12), "Assertion 'added' failed\\.");
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
