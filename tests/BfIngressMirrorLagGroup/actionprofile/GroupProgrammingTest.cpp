#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ActionProfileFixture.h"
#include "Vel/Allocate.h"
#include "Vel/BulkChange.h"
#include "Vel/RangeException.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Selector groups configured through the entity: each group reactor creates
// its group in the chip, gives it its initial member, follows its members and
// deletes the group when it goes.
class GroupProgrammingTest : public ActionProfileFixture {
 protected:
  void SetUp() override {
    ActionProfileFixture::SetUp();
    makeSm();
    memberIs(1, 100);
    memberIs(2, 200);
    memberIs(3, 300);
  }
};

TEST_F(GroupProgrammingTest, AGroupIsCreatedAndGivenItsInitialMember) {
  startLog();
  const auto group = groupIs(10, 8, 1);
  const std::uint32_t handle = groupHandle(10);
  ASSERT_NE(handle, 0u);
  EXPECT_THAT(logLines(), ElementsAre(createGroupLine(8, handle),
                                      addMemberToGroupLine(handle, memberHandle(1))));
  EXPECT_THAT(events, ElementsAre("allocAnon 10 @0", "initSelGroupStatus 10 @0",
                                  "initSelGroupStatus 10 @1"));
  EXPECT_THAT(registryGroups(), ElementsAre(std::pair{10u, handle}));
  EXPECT_EQ(group->members(), 1u);
  EXPECT_NE(group->member(BfnTable::BfnMemberId(1)), nullptr);
  const auto reactor = sm->group(BfnTable::BfnGroupId(10));
  ASSERT_NE(reactor, nullptr);
  EXPECT_EQ(reactor->group(), group);
  EXPECT_EQ(reactor->groupId(), BfnTable::BfnGroupId(10));
  EXPECT_EQ(reactor->fwkKey(), BfnTable::BfnGroupId(10));
  EXPECT_EQ(reactor->ingressMirrorLagGroupActionProfileSm(), sm.get());
  EXPECT_EQ(reactor->groupMembers(), 1u);
  EXPECT_NE(reactor->groupMember(BfnTable::BfnMemberId(1)), nullptr);
  EXPECT_FALSE(reactor->initialized());
}

TEST_F(GroupProgrammingTest, AGroupLargerThan120IsCreatedWith120) {
  groupIs(10, 500, 1);
  groupIs(11, 121, 1);
  groupIs(12, 120, 1);
  groupIs(13, 119, 1);
  const std::vector<std::string> lines = logLines();
  std::vector<std::string> creates;
  for (const std::string& line : lines) {
    if (line.rfind(chipsim_test::kCreateGroup + "(", 0) == 0)
      creates.push_back(line);
  }
  EXPECT_THAT(
      creates,
      ElementsAre(createGroupLine(120, groupHandle(10)), createGroupLine(120, groupHandle(11)),
                  createGroupLine(120, groupHandle(12)), createGroupLine(119, groupHandle(13))));
  // The configuration keeps the size it was given.
  EXPECT_EQ(profile->group(BfnTable::BfnGroupId(10))->groupSize(), 500u);
}

TEST_F(GroupProgrammingTest, AGroupWhoseIdHasAHandleIsCreatedAnewAndTheHandleOverwritten) {
  // A handle refilled after a restart.
  registry().groupIs(BfnTable::BfnGroupId(10), 4242);
  groupIs(10, 4, 1);
  ASSERT_EQ(registryGroups().size(), 1u);
  EXPECT_NE(groupHandle(10), 4242u);
  EXPECT_EQ(chip.groups(), 1u);
}

TEST_F(GroupProgrammingTest, WithoutManagersAGroupIsStillProgrammed) {
  sm = nullptr;
  profile->groupDelAll();
  profile->entryDelAll();
  sm = Sm::IngressMirrorLagGroupActionProfileSmIs(profile, helper, nullptr, nullptr);
  memberIs(1, 100);
  startLog();
  groupIs(10, 4, 1);
  EXPECT_THAT(logLines(), ElementsAre(chipsim_test::kCreateGroup +
                                          "(sess=0, dev=3, pipe=0x2, size=4) = 0 grp=" +
                                          std::to_string(groupHandle(10)),
                                      chipsim_test::kAddMemberToGroup +
                                          "(sess=0, dev=3, grp=" + std::to_string(groupHandle(10)) +
                                          ", mbr=" + std::to_string(memberHandle(1)) + ") = 0"));
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(GroupProgrammingTest, DeletingAGroupTakesEveryMemberOutOfItFirst) {
  const auto group = groupIs(10, 4, 1);
  group->memberIs(BfnTable::BfnMemberId(2));
  group->memberIs(BfnTable::BfnMemberId(3));
  const std::uint32_t handle = groupHandle(10);
  startLog();
  const auto removed = profile->groupDel(BfnTable::BfnGroupId(10));
  const std::vector<std::string> lines = logLines();
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_THAT(std::vector<std::string>(lines.begin(), lines.begin() + 3),
              testing::UnorderedElementsAre(delMemberFromGroupLine(handle, memberHandle(1)),
                                            delMemberFromGroupLine(handle, memberHandle(2)),
                                            delMemberFromGroupLine(handle, memberHandle(3))));
  EXPECT_EQ(lines[3], delGroupLine(handle));
  EXPECT_THAT(registryGroups(), IsEmpty());
  EXPECT_EQ(sm->group(BfnTable::BfnGroupId(10)), nullptr);
  EXPECT_EQ(chip.groups(), 0u);
  // The status manager heard of the group before each call.
  EXPECT_EQ(events.front(), "initSelGroupStatus 10 @0");
  // The removed group still holds its members; they no longer reach the chip.
  startLog();
  removed->member(BfnTable::BfnMemberId(2))->activeIs(false);
  EXPECT_THAT(logLines(), IsEmpty());
}

TEST_F(GroupProgrammingTest, MembersJoinAndLeaveTheHardwareGroup) {
  const auto group = groupIs(10, 4, 1);
  const std::uint32_t handle = groupHandle(10);
  startLog();
  group->memberIs(BfnTable::BfnMemberId(2));
  group->memberIs(BfnTable::BfnMemberId(2));  // present already: nothing
  group->memberDel(BfnTable::BfnMemberId(2));
  group->memberDel(BfnTable::BfnMemberId(2));  // absent: nothing
  EXPECT_THAT(logLines(), ElementsAre(addMemberToGroupLine(handle, memberHandle(2)),
                                      delMemberFromGroupLine(handle, memberHandle(2))));
  EXPECT_EQ(sm->group(BfnTable::BfnGroupId(10))->groupMembers(), 1u);
}

TEST_F(GroupProgrammingTest, ABulkChangeOfMembersIsProgrammedWhenItEnds) {
  const auto group = groupIs(10, 4, 1);
  const auto reactor = sm->group(BfnTable::BfnGroupId(10));
  startLog();
  {
    Vel::BulkChange bulk(group, IngressMirrorLagGroupGroup::memberAttribute);
    group->memberIs(BfnTable::BfnMemberId(2));
    group->memberIs(BfnTable::BfnMemberId(3));
    EXPECT_THAT(logLines(), IsEmpty());
  }
  EXPECT_EQ(reactor->groupMembers(), 3u);
  EXPECT_EQ(logLines().size(), 2u);
  startLog();
  {
    Vel::BulkChange bulk(group, IngressMirrorLagGroupGroup::memberAttribute);
    group->memberDel(BfnTable::BfnMemberId(3));
  }
  EXPECT_THAT(logLines(), ElementsAre(delMemberFromGroupLine(groupHandle(10), memberHandle(3))));
  EXPECT_EQ(reactor->groupMembers(), 2u);
}

TEST_F(GroupProgrammingTest, GroupMemberIsKeepsOrRePointsTheReactorOfAnId) {
  const auto group = groupIs(10, 4, 1);
  group->memberIs(BfnTable::BfnMemberId(2));
  const auto reactor = sm->group(BfnTable::BfnGroupId(10));
  const auto existing = reactor->groupMember(BfnTable::BfnMemberId(2));
  startLog();
  EXPECT_EQ(reactor->groupMemberIs(group->member(BfnTable::BfnMemberId(2))), existing);
  EXPECT_THAT(logLines(), IsEmpty());
  // Another member entity of the same id: the reactor follows it and takes its state.
  auto other = Vel::allocate<IngressMirrorLagGroupMember>(BfnTable::BfnMemberId(2));
  other->activeIs(false);
  EXPECT_EQ(reactor->groupMemberIs(other), existing);
  EXPECT_EQ(existing->groupMember(), other);
  EXPECT_THAT(logLines(), ElementsAre(memberStateLine(groupHandle(10), memberHandle(2), 1)));
  // Back to the configured one, active.
  startLog();
  reactor->groupMemberIs(group->member(BfnTable::BfnMemberId(2)));
  EXPECT_THAT(logLines(), ElementsAre(memberStateLine(groupHandle(10), memberHandle(2), 0)));
}

TEST_F(GroupProgrammingTest, ANullMemberIsRefusedWithTheMutatorsMessage) {
  groupIs(10, 4, 1);
  const auto reactor = sm->group(BfnTable::BfnGroupId(10));
  try {
    reactor->groupMemberIs(nullptr);
    ADD_FAILURE() << "no exception";
  } catch (const Vel::RangeException& e) {
    EXPECT_EQ(std::string(e.what()),
              "null _groupMember parameter to mutator for "
              "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::VelGroup::"
              "groupMember not allowed\"");
  }
  EXPECT_EQ(reactor->groupMembers(), 1u);
}

TEST_F(GroupProgrammingTest, GroupMemberDelAndDelAllDropReactors) {
  const auto group = groupIs(10, 4, 1);
  group->memberIs(BfnTable::BfnMemberId(2));
  group->memberIs(BfnTable::BfnMemberId(3));
  const auto reactor = sm->group(BfnTable::BfnGroupId(10));
  startLog();
  EXPECT_EQ(reactor->groupMemberDel(BfnTable::BfnMemberId(7)), nullptr);
  const auto dropped = reactor->groupMemberDel(BfnTable::BfnMemberId(3));
  ASSERT_NE(dropped, nullptr);
  EXPECT_TRUE(dropped->velMarkedForDeletion());
  EXPECT_FALSE(dropped->hasNotificationActive());
  EXPECT_EQ(dropped->velGroup(), nullptr);
  EXPECT_THAT(logLines(), ElementsAre(delMemberFromGroupLine(groupHandle(10), memberHandle(3))));
  startLog();
  reactor->groupMemberDelAll();
  EXPECT_EQ(reactor->groupMembers(), 0u);
  EXPECT_EQ(logLines().size(), 2u);
  // The hardware group is empty now; the reactors come back from the configuration.
  reactor->onMembervelImmediate();
  EXPECT_EQ(reactor->groupMembers(), 3u);
}

TEST_F(GroupProgrammingTest, NotificationIsPassedToEveryMemberReactor) {
  const auto group = groupIs(10, 4, 1);
  group->memberIs(BfnTable::BfnMemberId(2));
  const auto reactor = sm->group(BfnTable::BfnGroupId(10));
  reactor->hasNotificationActiveIs(false);
  EXPECT_FALSE(reactor->hasNotificationActive());
  EXPECT_FALSE(reactor->groupMember(BfnTable::BfnMemberId(1))->hasNotificationActive());
  EXPECT_FALSE(reactor->groupMember(BfnTable::BfnMemberId(2))->hasNotificationActive());
  startLog();
  group->member(BfnTable::BfnMemberId(2))->activeIs(false);
  group->memberIs(BfnTable::BfnMemberId(3));
  EXPECT_THAT(logLines(), IsEmpty());
  reactor->hasNotificationActiveIs(true);
  EXPECT_TRUE(reactor->groupMember(BfnTable::BfnMemberId(2))->hasNotificationActive());
  group->memberDel(BfnTable::BfnMemberId(3));
}

TEST_F(GroupProgrammingTest, AGroupReactorFollowsAnotherGroupOfTheSameId) {
  const auto group = groupIs(10, 4, 1);
  const auto reactor = sm->group(BfnTable::BfnGroupId(10));
  const auto other = Vel::allocate<IngressMirrorLagGroupGroup>(
      BfnTable::BfnGroupId(10), 4, 1, setLagMemberSelectorActionProfileSpec);
  other->memberIs(BfnTable::BfnMemberId(1));
  other->memberIs(BfnTable::BfnMemberId(2));
  startLog();
  EXPECT_EQ(sm->groupIs(other), reactor);
  EXPECT_EQ(reactor->group(), other);
  // Member 1's reactor follows the new entity (same state), member 2 joins.
  EXPECT_THAT(logLines(), testing::UnorderedElementsAre(
                              memberStateLine(groupHandle(10), memberHandle(1), 0),
                              addMemberToGroupLine(groupHandle(10), memberHandle(2))));
  sm->groupIs(group);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
