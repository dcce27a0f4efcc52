#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "ActionProfileFixture.h"
#include "Vel/Allocate.h"
#include "Vel/BulkChange.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

BfnTable::BfnGroupId gid(std::uint32_t id) {
  return BfnTable::BfnGroupId(id);
}
BfnTable::BfnMemberId mid(std::uint32_t id) {
  return BfnTable::BfnMemberId(id);
}

// The reactor of one member of a selector group: it adds the member to the
// hardware group, sets its state there on every change of `active`, and
// takes it out again.
class VelGroupMemberTest : public ActionProfileFixture {
 protected:
  void SetUp() override {
    ActionProfileFixture::SetUp();
    makeSm();
    for (std::uint32_t id = 1; id <= 4; ++id)
      memberIs(id, static_cast<std::uint16_t>(100 * id));
    group = groupIs(10, 8, 1);
  }
  void TearDown() override {
    group = nullptr;
    ActionProfileFixture::TearDown();
  }

  Vel::Ptr<IngressMirrorLagGroupMember> member(std::uint32_t id) const {
    return group->member(mid(id));
  }
  Vel::Ptr<Sm::VelGroup> groupReactor() const { return sm->group(gid(10)); }
  std::uint32_t grp() const { return groupHandle(10); }

  Vel::Ptr<IngressMirrorLagGroupGroup> group;
};

TEST_F(VelGroupMemberTest, AMemberAddedToTheConfiguredGroupJoinsTheHardwareGroup) {
  startLog();
  const auto added = group->memberIs(mid(2));
  EXPECT_THAT(logLines(), ElementsAre(addMemberToGroupLine(grp(), memberHandle(2))));
  EXPECT_THAT(events, ElementsAre("initSelGroupStatus 10 @0"));
  const auto reactor = groupReactor()->groupMember(mid(2));
  ASSERT_NE(reactor, nullptr);
  EXPECT_EQ(reactor->groupMember(), added);
  EXPECT_EQ(reactor->fwkKey(), mid(2));
  EXPECT_EQ(reactor->velGroup(), groupReactor().get());
  EXPECT_EQ(reactor->actsm(), sm.get());
  EXPECT_TRUE(reactor->hasNotificationActive());
  EXPECT_FALSE(reactor->velMarkedForDeletion());
}

TEST_F(VelGroupMemberTest, ActiveSwitchedOffAndOnSetsTheStateInTheHardwareGroup) {
  group->memberIs(mid(2));
  startLog();
  member(2)->activeIs(false);
  EXPECT_THAT(logLines(), ElementsAre(memberStateLine(grp(), memberHandle(2), 1)));
  member(2)->activeIs(false);  // unchanged: nothing
  EXPECT_EQ(logLines().size(), 1u);
  member(2)->activeIs(true);
  EXPECT_THAT(logLines(), ElementsAre(memberStateLine(grp(), memberHandle(2), 1),
                                      memberStateLine(grp(), memberHandle(2), 0)));
  EXPECT_THAT(events, ElementsAre("initSelGroupStatus 10 @0", "initSelGroupStatus 10 @1"));
  // The initial member too.
  startLog();
  member(1)->activeIs(false);
  EXPECT_THAT(logLines(), ElementsAre(memberStateLine(grp(), memberHandle(1), 1)));
}

TEST_F(VelGroupMemberTest, AMemberThatJoinsActiveGetsNoStateCall) {
  startLog();
  group->memberIs(mid(3));
  {
    Vel::BulkChange bulk(group, IngressMirrorLagGroupGroup::memberAttribute);
    group->memberIs(mid(4));
  }
  EXPECT_THAT(logLines(), ElementsAre(addMemberToGroupLine(grp(), memberHandle(3)),
                                      addMemberToGroupLine(grp(), memberHandle(4))));
}

TEST_F(VelGroupMemberTest, AMemberThatJoinsInsideABulkChangeAlreadyInactiveIsSetInactiveOnce) {
  startLog();
  {
    Vel::BulkChange bulk(group, IngressMirrorLagGroupGroup::memberAttribute);
    group->memberIs(mid(2))->activeIs(false);
    EXPECT_THAT(logLines(), IsEmpty());
  }
  EXPECT_THAT(logLines(), ElementsAre(addMemberToGroupLine(grp(), memberHandle(2)),
                                      memberStateLine(grp(), memberHandle(2), 1)));
  // From then on it follows its flag as any other.
  startLog();
  member(2)->activeIs(true);
  EXPECT_THAT(logLines(), ElementsAre(memberStateLine(grp(), memberHandle(2), 0)));
}

TEST_F(VelGroupMemberTest, AMemberMadeInactiveForTheGroupReactorJoinsAndIsSetInactiveOnce) {
  const auto inactive = Vel::allocate<IngressMirrorLagGroupMember>(mid(3));
  inactive->activeIs(false);
  startLog();
  groupReactor()->newGroupMember(inactive);
  EXPECT_THAT(logLines(), ElementsAre(addMemberToGroupLine(grp(), memberHandle(3)),
                                      memberStateLine(grp(), memberHandle(3), 1)));
  startLog();
  groupReactor()->groupMemberDel(mid(3));
  EXPECT_THAT(logLines(), ElementsAre(delMemberFromGroupLine(grp(), memberHandle(3))));
}

TEST_F(VelGroupMemberTest, AMemberThatJoinsByRePointingTheGroupInactiveIsSetInactiveOnce) {
  // Another group entity of the same id: member 1 as before, member 2 new and inactive.
  const auto other = Vel::allocate<IngressMirrorLagGroupGroup>(
      gid(10), 8, 1, setLagMemberSelectorActionProfileSpec);
  other->memberIs(mid(1));
  other->memberIs(mid(2))->activeIs(false);
  startLog();
  EXPECT_EQ(sm->groupIs(other), groupReactor());
  const auto lines = logLines();
  // Member 1's reactor follows the other entity and applies its (active) state.
  ASSERT_EQ(lines.size(), 3u);
  const auto add =
      std::find(lines.begin(), lines.end(), addMemberToGroupLine(grp(), memberHandle(2)));
  ASSERT_NE(add, lines.end());
  ASSERT_NE(add + 1, lines.end());
  EXPECT_EQ(*(add + 1), memberStateLine(grp(), memberHandle(2), 1));
  EXPECT_NE(std::find(lines.begin(), lines.end(), memberStateLine(grp(), memberHandle(1), 0)),
            lines.end());
  // And back to the configured group, which does not hold member 2.
  startLog();
  sm->groupIs(group);
  EXPECT_THAT(logLines(),
              testing::UnorderedElementsAre(memberStateLine(grp(), memberHandle(1), 0),
                                            delMemberFromGroupLine(grp(), memberHandle(2))));
}

TEST_F(VelGroupMemberTest, ARePointedMemberTakesTheStateOfItsNewEntity) {
  group->memberIs(mid(2));
  const auto reactor = groupReactor()->groupMember(mid(2));
  const auto inactive = Vel::allocate<IngressMirrorLagGroupMember>(mid(2));
  inactive->activeIs(false);
  startLog();
  reactor->notifierIs(inactive);
  EXPECT_EQ(reactor->groupMember(), inactive);
  EXPECT_THAT(logLines(), ElementsAre(memberStateLine(grp(), memberHandle(2), 1)));
  // The same entity again: nothing.
  reactor->notifierIs(inactive);
  EXPECT_EQ(logLines().size(), 1u);
  startLog();
  reactor->notifierIs(member(2));
  EXPECT_THAT(logLines(), ElementsAre(memberStateLine(grp(), memberHandle(2), 0)));
}

TEST_F(VelGroupMemberTest, AChangeOfActiveAfterTheReactorLeftItsGroupIsNotProgrammed) {
  group->memberIs(mid(2));
  group->memberIs(mid(3));
  const auto reactor = groupReactor()->groupMember(mid(2));
  const auto removed = group->memberDel(mid(2));
  EXPECT_EQ(reactor->velGroup(), nullptr);
  startLog();
  removed->activeIs(false);
  removed->activeIs(true);
  EXPECT_THAT(logLines(), IsEmpty());
  // Nor after the whole group went.
  const auto three = member(3);
  profile->groupDel(gid(10));
  startLog();
  three->activeIs(false);
  EXPECT_THAT(logLines(), IsEmpty());
}

TEST_F(VelGroupMemberTest, RemovingOneOfTwoMembersTakesOnlyThatOneOut) {
  group->memberIs(mid(2));
  startLog();
  group->memberDel(mid(2));
  EXPECT_THAT(logLines(), ElementsAre(delMemberFromGroupLine(grp(), memberHandle(2))));
  EXPECT_THAT(events, ElementsAre("initSelGroupStatus 10 @0"));
  EXPECT_EQ(groupReactor()->groupMember(mid(2)), nullptr);
  EXPECT_NE(groupReactor()->groupMember(mid(1)), nullptr);
  EXPECT_EQ(groupReactor()->groupMembers(), 1u);
}

TEST_F(VelGroupMemberTest, ARemovedMemberCanJoinAgain) {
  group->memberIs(mid(2));
  group->memberDel(mid(2));
  startLog();
  group->memberIs(mid(2));
  EXPECT_THAT(logLines(), ElementsAre(addMemberToGroupLine(grp(), memberHandle(2))));
  EXPECT_EQ(groupReactor()->groupMember(mid(2))->groupMember(), member(2));
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
