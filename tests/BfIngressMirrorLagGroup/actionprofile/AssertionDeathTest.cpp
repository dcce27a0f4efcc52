#include <gtest/gtest.h>

#include <dlfcn.h>

#include <string>

#include "ActionProfileFixture.h"
#include "BfIngressMirrorLagGroup/hw/TableSourcePath.h"
#include "Vel/Allocate.h"
#include "support/AssertionReport.h"

namespace BfIngressMirrorLagGroup {
namespace {

const std::string kSm = "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::";
const std::string kHandleActionProfileDel =
    "void " + kSm + "VelActionProfile::handleActionProfileDel()";
const std::string kHandleGroupDel = "void " + kSm + "VelGroup::handleGroupDel()";
const std::string kHandleMemberAdd = "void " + kSm + "VelGroup::VelGroupMember::handleMemberAdd()";
const std::string kHandleMemberDel = "void " + kSm + "VelGroup::VelGroupMember::handleMemberDel()";
const std::string kHandleActive = "void " + kSm + "VelGroup::VelGroupMember::handleActive()";
const std::string kFactory =
    "Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfile> "
    "ingressMirrorLagGroupActionProfileFactory(Vel::Ptr<BfIngressMirrorLagGroup::"
    "IngressMirrorLagGroupTable>)";

const std::string kMemberHandle =
    "actionProfileSm->helper()->sdkHandles()->member( groupMember()->memberId() )";
const std::string kGroupHandle =
    "actionProfileSm->helper()->sdkHandles()->group( velGroup()->groupId() )";

// An action type that the chip has no action for.
constexpr auto kOtherActionType = static_cast<IngressMirrorLagGroupActionProfileType>(1);

// The report of a failed assertion at a line of the table description.
std::string report(unsigned line, const std::string& function, const std::string& text) {
  return test_support::assertionReport(tableSourcePath, line, function, text);
}

// Faults of the caller's order stop the process with the asserted text, the
// line of the table description and the handler.
class AssertionDeathTest : public ActionProfileFixture {
 protected:
  void SetUp() override {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    ActionProfileFixture::SetUp();
    makeSm();
  }

  // Member 1 and 2 configured, group 10 holding both.
  Vel::Ptr<IngressMirrorLagGroupGroup> groupOfTwo() {
    memberIs(1, 100);
    memberIs(2, 200);
    auto group = groupIs(10, 4, 1);
    group->memberIs(BfnTable::BfnMemberId(2));
    return group;
  }
};

TEST_F(AssertionDeathTest, DeletingAMemberWithoutHandleStops) {
  memberIs(5, 500);
  registry().memberDel(BfnTable::BfnMemberId(5));
  EXPECT_DEATH(profile->entryDel(BfnTable::BfnMemberId(5)),
               report(392, kHandleActionProfileDel,
                      "ingressMirrorLagGroupActionProfileSm()->helper()->sdkHandles()->member( "
                      "actionProfile()->memberId() )"));
  memberIs(5, 500);
}

TEST_F(AssertionDeathTest, DeletingAGroupWithoutHandleStops) {
  memberIs(1, 100);
  groupIs(10, 4, 1);
  const std::uint32_t handle = groupHandle(10);
  registry().groupDel(BfnTable::BfnGroupId(10));
  EXPECT_DEATH(profile->groupDel(BfnTable::BfnGroupId(10)),
               report(437, kHandleGroupDel,
                      "ingressMirrorLagGroupActionProfileSm()->helper()->sdkHandles()->group( "
                      "group()->groupId() )"));
  registry().groupIs(BfnTable::BfnGroupId(10), handle);
}

TEST_F(AssertionDeathTest, AMemberNotInTheChipCannotJoinAGroup) {
  memberIs(1, 100);
  memberIs(2, 200);
  const auto group = groupIs(10, 4, 1);
  const std::uint32_t handle = memberHandle(2);
  registry().memberDel(BfnTable::BfnMemberId(2));
  EXPECT_DEATH(group->memberIs(BfnTable::BfnMemberId(2)),
               report(456, kHandleMemberAdd, kMemberHandle));
  registry().memberIs(BfnTable::BfnMemberId(2), handle);
}

TEST_F(AssertionDeathTest, AMemberCannotJoinAGroupNotInTheChip) {
  memberIs(1, 100);
  memberIs(2, 200);
  const auto group = groupIs(10, 4, 1);
  const std::uint32_t handle = groupHandle(10);
  registry().groupDel(BfnTable::BfnGroupId(10));
  EXPECT_DEATH(group->memberIs(BfnTable::BfnMemberId(2)),
               report(457, kHandleMemberAdd, kGroupHandle));
  registry().groupIs(BfnTable::BfnGroupId(10), handle);
}

TEST_F(AssertionDeathTest, AGroupThatArrivesWithMembersStopsOnTheMissingGroup) {
  memberIs(1, 100);
  memberIs(2, 200);
  // The group already holds a member when the state machine first sees it.
  sm->hasNotificationActiveIs(false);
  const auto group = groupIs(10, 4, 1);
  group->memberIs(BfnTable::BfnMemberId(2));
  sm->hasNotificationActiveIs(true);
  EXPECT_DEATH(sm->groupIs(group), report(457, kHandleMemberAdd, kGroupHandle));
  profile->groupDel(BfnTable::BfnGroupId(10));
}

TEST_F(AssertionDeathTest, AMemberWithoutReactorCannotJoinAGroup) {
  memberIs(1, 100);
  const auto group = groupIs(10, 4, 1);
  // A handle in the registry, but no member configured.
  registry().memberIs(BfnTable::BfnMemberId(7), memberHandle(1));
  EXPECT_DEATH(group->memberIs(BfnTable::BfnMemberId(7)), report(459, kHandleMemberAdd, "tap"));
  registry().memberDel(BfnTable::BfnMemberId(7));
}

TEST_F(AssertionDeathTest, AMemberOfAnotherActionTypeCannotJoinAGroup) {
  memberIs(1, 100);
  EXPECT_DEATH(profile->groupIs(BfnTable::BfnGroupId(10), 4, 1, kOtherActionType),
               report(460, kHandleMemberAdd,
                      "tap->actionProfile()->action()->actionType() == "
                      "velGroup()->group()->actionType()"));
}

TEST_F(AssertionDeathTest, AMemberNotInTheChipCannotLeaveAGroup) {
  const auto group = groupOfTwo();
  const std::uint32_t handle = memberHandle(2);
  registry().memberDel(BfnTable::BfnMemberId(2));
  EXPECT_DEATH(group->memberDel(BfnTable::BfnMemberId(2)),
               report(476, kHandleMemberDel, kMemberHandle));
  registry().memberIs(BfnTable::BfnMemberId(2), handle);
}

TEST_F(AssertionDeathTest, TheLastMemberOfAGroupCannotLeaveIt) {
  memberIs(1, 100);
  const auto group = groupIs(10, 4, 1);
  EXPECT_DEATH(group->memberDel(BfnTable::BfnMemberId(1)),
               report(480, kHandleMemberDel,
                      "actionProfileSm->group( velGroup()->groupId() )->members() > 0 && "
                      "\"deleting the last member is not allowed\""));
}

TEST_F(AssertionDeathTest, RemovingTheSecondOfTwoMembersAndThenTheLastStops) {
  const auto group = groupOfTwo();
  startLog();
  group->memberDel(BfnTable::BfnMemberId(2));
  EXPECT_EQ(logLines(),
            std::vector<std::string>{delMemberFromGroupLine(groupHandle(10), memberHandle(2))});
  EXPECT_DEATH(group->memberDel(BfnTable::BfnMemberId(1)),
               report(480, kHandleMemberDel,
                      "actionProfileSm->group( velGroup()->groupId() )->members() > 0 && "
                      "\"deleting the last member is not allowed\""));
}

TEST_F(AssertionDeathTest, SettingAMemberInactiveNeedsItsHandles) {
  const auto group = groupOfTwo();
  const auto member = group->member(BfnTable::BfnMemberId(2));
  const std::uint32_t mbr = memberHandle(2);
  const std::uint32_t grp = groupHandle(10);
  registry().memberDel(BfnTable::BfnMemberId(2));
  EXPECT_DEATH(member->activeIs(false), report(498, kHandleActive, kMemberHandle));
  registry().memberIs(BfnTable::BfnMemberId(2), mbr);
  registry().groupDel(BfnTable::BfnGroupId(10));
  EXPECT_DEATH(member->activeIs(false), report(499, kHandleActive, kGroupHandle));
  registry().groupIs(BfnTable::BfnGroupId(10), grp);
}

TEST_F(AssertionDeathTest, SettingAMemberActiveNeedsItsHandles) {
  const auto group = groupOfTwo();
  const auto member = group->member(BfnTable::BfnMemberId(2));
  member->activeIs(false);
  const std::uint32_t mbr = memberHandle(2);
  const std::uint32_t grp = groupHandle(10);
  registry().memberDel(BfnTable::BfnMemberId(2));
  EXPECT_DEATH(member->activeIs(true), report(509, kHandleActive, kMemberHandle));
  registry().memberIs(BfnTable::BfnMemberId(2), mbr);
  registry().groupDel(BfnTable::BfnGroupId(10));
  EXPECT_DEATH(member->activeIs(true), report(510, kHandleActive, kGroupHandle));
  registry().groupIs(BfnTable::BfnGroupId(10), grp);
}

TEST_F(AssertionDeathTest, TheFactoryNeedsTheActionDataShadowTableOfItsKeyManager) {
  // An in-process key manager has no shadow tables.
  const auto table = Vel::allocate<IngressMirrorLagGroupTable>(helper, keyManager, nullptr);
  void* plugin = dlopen(PLUGIN_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(plugin, nullptr) << dlerror();
  using Factory = decltype(&ingressMirrorLagGroupActionProfileFactory);
  const auto factory =
      reinterpret_cast<Factory>(dlsym(plugin, "ingressMirrorLagGroupActionProfileFactory"));
  ASSERT_NE(factory, nullptr);
  EXPECT_DEATH(factory(table),
               report(79, kFactory, "matTable->vaultKeyManager()->adtVaultTableConfig()"));
  dlclose(plugin);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
