#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <typeinfo>
#include <vector>

#include "ActionProfileFixture.h"
#include "Vel/BulkChange.h"
#include "Vel/Expect.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;

BfnTable::BfnGroupId gid(std::uint32_t id) {
  return BfnTable::BfnGroupId(id);
}
BfnTable::BfnMemberId mid(std::uint32_t id) {
  return BfnTable::BfnMemberId(id);
}

// Runs `edit`, which must throw the exception of a failed `pdFunction` call
// with `status`: BfTable::BfNoSysResources for 2, BfTable::BfTableFull for 9,
// BfTable::BfNotSupported (privately derived, so caught by its own name) for
// 17, a plain BfTable::BfTableException carrying the status for any other;
// the message names the function and the status text.
void expectPdFailure(const std::function<void()>& edit, const std::string& pdFunction,
                     pipe_status status) {
  const std::string message = pdFunction + "() failed: " + statusText(status);
  try {
    edit();
    ADD_FAILURE() << "no exception for status " << status;
  } catch (const BfTable::BfNotSupported& e) {
    EXPECT_EQ(status, 17);
    EXPECT_EQ(e.status(), 17);
    EXPECT_EQ(e.message(), message);
  } catch (const BfTable::BfNoSysResources& e) {
    EXPECT_EQ(status, 2);
    EXPECT_EQ(e.status(), 2);
    EXPECT_EQ(e.message(), message);
  } catch (const BfTable::BfTableFull& e) {
    EXPECT_EQ(status, 9);
    EXPECT_EQ(e.status(), 9);
    EXPECT_EQ(e.message(), message);
  } catch (const BfTable::BfTableException& e) {
    EXPECT_NE(status, 2);
    EXPECT_NE(status, 9);
    EXPECT_NE(status, 17);
    EXPECT_EQ(typeid(e), typeid(BfTable::BfTableException));
    EXPECT_EQ(e.status(), status);
    EXPECT_EQ(e.message(), message);
  }
  EXPECT_EQ(Vel::Expect::depth(), 0u);
}

// The refused line of `pdFunction` with `arguments`.
std::string refusedLine(const std::string& pdFunction, const std::string& arguments,
                        pipe_status status) {
  return pdFunction + "(" + arguments + ") = " + std::to_string(status) + " (injected)";
}

// The chip refuses a group member's addition, removal or state: the edit
// throws by status, the registry stays as it was, the member reactor is made
// only when its member joined, and the same change goes through afterwards.
class VelGroupMemberFailureTest : public ActionProfileFixture,
                                  public testing::WithParamInterface<pipe_status> {
 protected:
  void SetUp() override {
    ActionProfileFixture::SetUp();
    makeSm();
    memberIs(1, 100);
    memberIs(2, 200);
    memberIs(3, 300);
    group = groupIs(10, 4, 1);
    group->memberIs(mid(2));
    registryMembersBefore = registryMembers();
    registryGroupsBefore = registryGroups();
  }
  void TearDown() override {
    EXPECT_EQ(registryMembers(), registryMembersBefore);
    EXPECT_EQ(registryGroups(), registryGroupsBefore);
    group = nullptr;
    ActionProfileFixture::TearDown();
  }

  Vel::Ptr<Sm::VelGroup> groupReactor() const { return sm->group(gid(10)); }
  // "sess=9, dev=3, grp=G, mbr=M" of member `memberId` in group 10.
  std::string groupMemberArgs(std::uint32_t memberId) const {
    return "sess=9, dev=3, grp=" + std::to_string(groupHandle(10)) +
           ", mbr=" + std::to_string(memberHandle(memberId));
  }

  // Sets member 2's flag to `active`, which the chip refuses: the edit throws
  // by status, the chip logs the one refused call of that state (0 active, 1
  // inactive), the reactor stays, and the flag's next two changes are programmed.
  void expectRefusedStateOfMember2(bool active) {
    const pipe_status status = GetParam();
    const int state = active ? 0 : 1;
    const auto reactor = groupReactor()->groupMember(mid(2));
    ASSERT_EQ(chip.failNext(chipsim_test::kGroupMemberStateSet.c_str(), status, 1), 0);
    startLog();
    expectPdFailure([&] { group->member(mid(2))->activeIs(active); },
                    chipsim_test::kGroupMemberStateSet, status);
    EXPECT_THAT(logLines(), ElementsAre(refusedLine(
                                chipsim_test::kGroupMemberStateSet,
                                groupMemberArgs(2) + ", state=" + std::to_string(state), status)));
    EXPECT_EQ(groupReactor()->groupMember(mid(2)), reactor);
    EXPECT_TRUE(reactor->hasNotificationActive());
    startLog();
    group->member(mid(2))->activeIs(!active);
    group->member(mid(2))->activeIs(active);
    EXPECT_THAT(logLines(),
                ElementsAre(memberStateLine(groupHandle(10), memberHandle(2), 1 - state),
                            memberStateLine(groupHandle(10), memberHandle(2), state)));
  }

  Vel::Ptr<IngressMirrorLagGroupGroup> group;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> registryMembersBefore;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> registryGroupsBefore;
};

TEST_P(VelGroupMemberFailureTest, ARefusedAdditionLeavesNoReactor) {
  const pipe_status status = GetParam();
  ASSERT_EQ(chip.failNext(chipsim_test::kAddMemberToGroup.c_str(), status, 1), 0);
  startLog();
  expectPdFailure([&] { group->memberIs(mid(3)); }, chipsim_test::kAddMemberToGroup, status);
  EXPECT_THAT(logLines(), ElementsAre(refusedLine(chipsim_test::kAddMemberToGroup,
                                                  groupMemberArgs(3), status)));
  EXPECT_EQ(groupReactor()->groupMember(mid(3)), nullptr);
  EXPECT_EQ(groupReactor()->groupMembers(), 2u);
  // The configuration holds the member; brought in line again, it joins.
  EXPECT_NE(group->member(mid(3)), nullptr);
  startLog();
  groupReactor()->onMembervelImmediate();
  EXPECT_THAT(logLines(), ElementsAre(addMemberToGroupLine(groupHandle(10), memberHandle(3))));
  EXPECT_NE(groupReactor()->groupMember(mid(3)), nullptr);
}

TEST_P(VelGroupMemberFailureTest, ARefusedAdditionOfAnInactiveMemberSetsNoState) {
  const pipe_status status = GetParam();
  ASSERT_EQ(chip.failNext(chipsim_test::kAddMemberToGroup.c_str(), status, 1), 0);
  startLog();
  expectPdFailure(
      [&] {
        Vel::BulkChange bulk(group, IngressMirrorLagGroupGroup::memberAttribute);
        group->memberIs(mid(3))->activeIs(false);
      },
      chipsim_test::kAddMemberToGroup, status);
  EXPECT_THAT(logLines(), ElementsAre(refusedLine(chipsim_test::kAddMemberToGroup,
                                                  groupMemberArgs(3), status)));
  EXPECT_EQ(groupReactor()->groupMember(mid(3)), nullptr);
}

TEST_P(VelGroupMemberFailureTest, ARefusedRemovalKeepsTheReactor) {
  const pipe_status status = GetParam();
  const auto reactor = groupReactor()->groupMember(mid(2));
  ASSERT_EQ(chip.failNext(chipsim_test::kDelMemberFromGroup.c_str(), status, 1), 0);
  startLog();
  expectPdFailure([&] { group->memberDel(mid(2)); }, chipsim_test::kDelMemberFromGroup, status);
  EXPECT_THAT(logLines(), ElementsAre(refusedLine(chipsim_test::kDelMemberFromGroup,
                                                  groupMemberArgs(2), status)));
  EXPECT_EQ(groupReactor()->groupMember(mid(2)), reactor);
  EXPECT_EQ(reactor->velGroup(), groupReactor().get());
  EXPECT_FALSE(reactor->velMarkedForDeletion());
  EXPECT_TRUE(reactor->hasNotificationActive());
  // Brought in line with the configuration, the member leaves.
  startLog();
  groupReactor()->onMembervelImmediate();
  EXPECT_THAT(logLines(), ElementsAre(delMemberFromGroupLine(groupHandle(10), memberHandle(2))));
  EXPECT_EQ(groupReactor()->groupMember(mid(2)), nullptr);
}

TEST_P(VelGroupMemberFailureTest, ARefusedStateKeepsTheReactor) {
  expectRefusedStateOfMember2(false);
}

TEST_P(VelGroupMemberFailureTest, ARefusedActivationKeepsTheReactor) {
  group->member(mid(2))->activeIs(false);
  expectRefusedStateOfMember2(true);
}

TEST_P(VelGroupMemberFailureTest, ARefusedStateOfAMemberJoiningInactiveLeavesNoReactor) {
  const pipe_status status = GetParam();
  ASSERT_EQ(chip.failNext(chipsim_test::kGroupMemberStateSet.c_str(), status, 1), 0);
  startLog();
  expectPdFailure(
      [&] {
        Vel::BulkChange bulk(group, IngressMirrorLagGroupGroup::memberAttribute);
        group->memberIs(mid(3))->activeIs(false);
      },
      chipsim_test::kGroupMemberStateSet, status);
  // The member is taken out again: with no reactor, it must not stay selectable.
  EXPECT_THAT(logLines(), ElementsAre(addMemberToGroupLine(groupHandle(10), memberHandle(3)),
                                      refusedLine(chipsim_test::kGroupMemberStateSet,
                                                  groupMemberArgs(3) + ", state=1", status),
                                      delMemberFromGroupLine(groupHandle(10), memberHandle(3))));
  EXPECT_EQ(groupReactor()->groupMember(mid(3)), nullptr);
  // Brought in line with the configuration, it joins inactive.
  startLog();
  groupReactor()->onMembervelImmediate();
  EXPECT_THAT(logLines(), ElementsAre(addMemberToGroupLine(groupHandle(10), memberHandle(3)),
                                      memberStateLine(groupHandle(10), memberHandle(3), 1)));
  EXPECT_NE(groupReactor()->groupMember(mid(3)), nullptr);
}

INSTANTIATE_TEST_SUITE_P(VelGroupMemberFailure, VelGroupMemberFailureTest,
                         testing::Values(2, 3, 9, 16, 17),
                         [](const testing::TestParamInfo<pipe_status>& info) {
                           return "Status" + std::to_string(info.param);
                         });

}  // namespace
}  // namespace BfIngressMirrorLagGroup
