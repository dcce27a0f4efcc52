#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ActionProfileFixture.h"
#include "Vel/Allocate.h"
#include "Vel/BulkChange.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The members of a selector group: joining, leaving, and switching between
// active and inactive in the hardware group.
class GroupMemberProgrammingTest : public ActionProfileFixture {
 protected:
  void SetUp() override {
    ActionProfileFixture::SetUp();
    makeSm();
    memberIs(1, 100);
    memberIs(2, 200);
    group = groupIs(10, 4, 1);
    group->memberIs(BfnTable::BfnMemberId(2));
  }
  void TearDown() override {
    group = nullptr;
    ActionProfileFixture::TearDown();
  }

  Vel::Ptr<IngressMirrorLagGroupMember> member(std::uint32_t id) const {
    return group->member(BfnTable::BfnMemberId(id));
  }

  Vel::Ptr<IngressMirrorLagGroupGroup> group;
};

TEST_F(GroupMemberProgrammingTest, SwitchingActiveSetsTheMembersStateInTheHardwareGroup) {
  startLog();
  member(2)->activeIs(false);
  member(2)->activeIs(false);  // no change: nothing
  member(2)->activeIs(true);
  EXPECT_THAT(logLines(), ElementsAre(memberStateLine(groupHandle(10), memberHandle(2), 1),
                                      memberStateLine(groupHandle(10), memberHandle(2), 0)));
  EXPECT_THAT(events, ElementsAre("initSelGroupStatus 10 @0", "initSelGroupStatus 10 @1"));
}

TEST_F(GroupMemberProgrammingTest, AMemberThatJoinsActiveGetsNoStateCall) {
  memberIs(3, 300);
  startLog();
  group->memberIs(BfnTable::BfnMemberId(3));
  EXPECT_THAT(logLines(), ElementsAre(addMemberToGroupLine(groupHandle(10), memberHandle(3))));
}

TEST_F(GroupMemberProgrammingTest, AMemberThatJoinsInactiveIsSetInactiveRightAfter) {
  memberIs(3, 300);
  startLog();
  {
    // Within a bulk change the member is made and switched off before the
    // group's reactor hears of it.
    Vel::BulkChange bulk(group, IngressMirrorLagGroupGroup::memberAttribute);
    group->memberIs(BfnTable::BfnMemberId(3))->activeIs(false);
  }
  EXPECT_THAT(logLines(), ElementsAre(addMemberToGroupLine(groupHandle(10), memberHandle(3)),
                                      memberStateLine(groupHandle(10), memberHandle(3), 1)));
}

TEST_F(GroupMemberProgrammingTest, RemovingOneOfTwoMembersTakesItOutOfTheHardwareGroup) {
  startLog();
  group->memberDel(BfnTable::BfnMemberId(2));
  EXPECT_THAT(logLines(), ElementsAre(delMemberFromGroupLine(groupHandle(10), memberHandle(2))));
  EXPECT_THAT(events, ElementsAre("initSelGroupStatus 10 @0"));
  EXPECT_EQ(sm->group(BfnTable::BfnGroupId(10))->groupMember(BfnTable::BfnMemberId(2)), nullptr);
}

TEST_F(GroupMemberProgrammingTest, AChangeOfActiveAfterTheRemovalIsNotProgrammed) {
  const auto removed = group->memberDel(BfnTable::BfnMemberId(2));
  startLog();
  removed->activeIs(false);
  removed->activeIs(true);
  EXPECT_THAT(logLines(), IsEmpty());
}

TEST_F(GroupMemberProgrammingTest, AReactorMarkedForDeletionIgnoresActive) {
  const auto reactor = sm->group(BfnTable::BfnGroupId(10))->groupMember(BfnTable::BfnMemberId(2));
  reactor->velMarkedForDeletionIs(true);
  startLog();
  member(2)->activeIs(false);
  reactor->notifierIs(Vel::allocate<IngressMirrorLagGroupMember>(BfnTable::BfnMemberId(2)));
  EXPECT_THAT(logLines(), IsEmpty());
  reactor->notifierIs(member(2));
  reactor->velMarkedForDeletionIs(false);
}

TEST_F(GroupMemberProgrammingTest, TheReactorKnowsItsMemberAndGroup) {
  const auto groupReactor = sm->group(BfnTable::BfnGroupId(10));
  const auto reactor = groupReactor->groupMember(BfnTable::BfnMemberId(2));
  EXPECT_EQ(reactor->groupMember(), member(2));
  EXPECT_EQ(reactor->fwkKey(), BfnTable::BfnMemberId(2));
  EXPECT_EQ(reactor->velGroup(), groupReactor.get());
  EXPECT_EQ(reactor->actsm(), sm.get());
  EXPECT_TRUE(reactor->velReactor());
  EXPECT_TRUE(reactor->isRegisteredNotifiee());
  EXPECT_FALSE(reactor->initialized());
  reactor->initializedIs(true);
  EXPECT_TRUE(reactor->initialized());
}

TEST_F(GroupMemberProgrammingTest, DeletingTheGroupRemovesBothMembersBeforeTheGroup) {
  const std::uint32_t handle = groupHandle(10);
  startLog();
  profile->groupDel(BfnTable::BfnGroupId(10));
  const auto lines = logLines();
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_THAT(std::vector<std::string>(lines.begin(), lines.begin() + 2),
              testing::UnorderedElementsAre(delMemberFromGroupLine(handle, memberHandle(1)),
                                            delMemberFromGroupLine(handle, memberHandle(2))));
  EXPECT_EQ(lines[2], delGroupLine(handle));
  group = nullptr;
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
