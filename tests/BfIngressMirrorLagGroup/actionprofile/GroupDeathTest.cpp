#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ActionProfileFixture.h"
#include "BfIngressMirrorLagGroup/hw/TableSourcePath.h"
#include "support/AssertionReport.h"

namespace BfIngressMirrorLagGroup {
namespace {

BfnTable::BfnGroupId gid(std::uint32_t id) {
  return BfnTable::BfnGroupId(id);
}
BfnTable::BfnMemberId mid(std::uint32_t id) {
  return BfnTable::BfnMemberId(id);
}

// The handlers' signatures as the compiler writes them in an assertion
// report; without parameters, both compilers write them alike.
const std::string kSm = "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::";
const std::string kHandleGroupDel = "void " + kSm + "VelGroup::handleGroupDel()";
const std::string kHandleMemberAdd = "void " + kSm + "VelGroup::VelGroupMember::handleMemberAdd()";
const std::string kHandleMemberDel = "void " + kSm + "VelGroup::VelGroupMember::handleMemberDel()";
const std::string kHandleActive = "void " + kSm + "VelGroup::VelGroupMember::handleActive()";

const std::string kMemberHandle =
    "actionProfileSm->helper()->sdkHandles()->member( groupMember()->memberId() )";
const std::string kGroupHandle =
    "actionProfileSm->helper()->sdkHandles()->group( velGroup()->groupId() )";
const std::string kLastMember =
    "actionProfileSm->group( velGroup()->groupId() )->members() > 0 && \"deleting the last "
    "member is not allowed\"";

// A value of the action type that no member's action carries.
constexpr auto kOtherActionType = static_cast<IngressMirrorLagGroupActionProfileType>(1);

// The report of a failed assertion at a line of the table description.
std::string report(unsigned line, const std::string& function, const std::string& text) {
  return test_support::assertionReport(tableSourcePath, line, function, text);
}

// Group and group-member programming out of order stops the process with
// the asserted text, the line of the table description and the handler.
class GroupDeathTest : public ActionProfileFixture {
 protected:
  void SetUp() override {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    ActionProfileFixture::SetUp();
    makeSm();
    memberIs(1, 100);
    memberIs(2, 200);
    memberIs(3, 300);
  }

  // Group 10 holding members 1 and 2.
  Vel::Ptr<IngressMirrorLagGroupGroup> groupOfTwo() {
    auto group = groupIs(10, 4, 1);
    group->memberIs(mid(2));
    return group;
  }
};

TEST_F(GroupDeathTest, AMemberNotProgrammedCannotJoin) {
  const auto group = groupIs(10, 4, 1);
  const std::uint32_t handle = memberHandle(3);
  registry().memberDel(mid(3));
  EXPECT_DEATH(group->memberIs(mid(3)), report(456, kHandleMemberAdd, kMemberHandle));
  registry().memberIs(mid(3), handle);
}

TEST_F(GroupDeathTest, AGroupArrivingWithMembersHasNoHandleForThem) {
  // The state machine does not hear of the group until it already holds a member.
  sm->hasNotificationActiveIs(false);
  const auto group = groupIs(10, 4, 1);
  group->memberIs(mid(2));
  sm->hasNotificationActiveIs(true);
  EXPECT_EQ(groupHandle(10), 0u);
  EXPECT_DEATH(sm->groupIs(group), report(457, kHandleMemberAdd, kGroupHandle));
  profile->groupDel(gid(10));
}

TEST_F(GroupDeathTest, AMemberHandleWithoutMemberReactorCannotJoin) {
  const auto group = groupIs(10, 4, 1);
  // Member 7 has a handle, but no member of that id is configured.
  registry().memberIs(mid(7), memberHandle(3));
  EXPECT_DEATH(group->memberIs(mid(7)), report(459, kHandleMemberAdd, "tap"));
  registry().memberDel(mid(7));
}

TEST_F(GroupDeathTest, AMemberCannotJoinAGroupOfAnotherActionType) {
  // Had the handler programmed the member before its check, the refused
  // calls would throw instead of stopping.
  ASSERT_EQ(chip.failNext(chipsim_test::kAddMemberToGroup.c_str(), 3, 1), 0);
  ASSERT_EQ(chip.failNext(chipsim_test::kGroupMemberStateSet.c_str(), 3, 1), 0);
  EXPECT_DEATH(profile->groupIs(gid(10), 4, 1, kOtherActionType),
               report(460, kHandleMemberAdd,
                      "tap->actionProfile()->action()->actionType() == "
                      "velGroup()->group()->actionType()"));
  ASSERT_EQ(chip.failNext(chipsim_test::kAddMemberToGroup.c_str(), 0, 0), 0);
  ASSERT_EQ(chip.failNext(chipsim_test::kGroupMemberStateSet.c_str(), 0, 0), 0);
}

TEST_F(GroupDeathTest, AGroupWithoutHandleCannotBeDeleted) {
  groupOfTwo();
  const std::uint32_t handle = groupHandle(10);
  registry().groupDel(gid(10));
  EXPECT_DEATH(profile->groupDel(gid(10)),
               report(437, kHandleGroupDel,
                      "ingressMirrorLagGroupActionProfileSm()->helper()->sdkHandles()->group( "
                      "group()->groupId() )"));
  registry().groupIs(gid(10), handle);
}

TEST_F(GroupDeathTest, AMemberWithoutHandleCannotLeave) {
  const auto group = groupOfTwo();
  const std::uint32_t handle = memberHandle(2);
  registry().memberDel(mid(2));
  EXPECT_DEATH(group->memberDel(mid(2)), report(476, kHandleMemberDel, kMemberHandle));
  registry().memberIs(mid(2), handle);
}

TEST_F(GroupDeathTest, TheLastMemberCannotLeaveAfterTheOtherDid) {
  const auto group = groupOfTwo();
  startLog();
  group->memberDel(mid(2));
  EXPECT_EQ(logLines(),
            std::vector<std::string>{delMemberFromGroupLine(groupHandle(10), memberHandle(2))});
  EXPECT_DEATH(group->memberDel(mid(1)), report(480, kHandleMemberDel, kLastMember));
}

TEST_F(GroupDeathTest, SettingAMemberInactiveNeedsTheMemberAndGroupHandles) {
  const auto member = groupOfTwo()->member(mid(2));
  const std::uint32_t mbr = memberHandle(2);
  const std::uint32_t grp = groupHandle(10);
  registry().memberDel(mid(2));
  EXPECT_DEATH(member->activeIs(false), report(498, kHandleActive, kMemberHandle));
  registry().memberIs(mid(2), mbr);
  registry().groupDel(gid(10));
  EXPECT_DEATH(member->activeIs(false), report(499, kHandleActive, kGroupHandle));
  registry().groupIs(gid(10), grp);
}

TEST_F(GroupDeathTest, SettingAMemberActiveNeedsTheMemberAndGroupHandles) {
  const auto member = groupOfTwo()->member(mid(2));
  member->activeIs(false);
  const std::uint32_t mbr = memberHandle(2);
  const std::uint32_t grp = groupHandle(10);
  registry().memberDel(mid(2));
  EXPECT_DEATH(member->activeIs(true), report(509, kHandleActive, kMemberHandle));
  registry().memberIs(mid(2), mbr);
  registry().groupDel(gid(10));
  EXPECT_DEATH(member->activeIs(true), report(510, kHandleActive, kGroupHandle));
  registry().groupIs(gid(10), grp);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
