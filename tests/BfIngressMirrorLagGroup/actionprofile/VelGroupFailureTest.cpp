#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <typeinfo>
#include <vector>

#include "ActionProfileFixture.h"
#include "Vel/Expect.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

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

// The chip refuses the creation or the deletion of a selector group: the edit
// throws by status, and the registry, the reactors and the configured member
// set stay as they were; the group can be programmed again afterwards.
class VelGroupFailureTest : public ActionProfileFixture,
                            public testing::WithParamInterface<pipe_status> {
 protected:
  void SetUp() override {
    ActionProfileFixture::SetUp();
    makeSm();
    memberIs(1, 100);
    memberIs(2, 200);
    memberIs(3, 300);
  }
};

TEST_P(VelGroupFailureTest, ARefusedCreationLeavesNoHandleNoReactorAndNoMember) {
  const pipe_status status = GetParam();
  groupIs(11, 4, 2);  // another group, untouched
  const auto groupsBefore = registryGroups();
  const auto membersBefore = registryMembers();
  ASSERT_EQ(chip.failNext(chipsim_test::kCreateGroup.c_str(), status, 1), 0);
  startLog();
  expectPdFailure([&] { groupIs(10, 500, 1); }, chipsim_test::kCreateGroup, status);
  EXPECT_THAT(logLines(),
              ElementsAre(chipsim_test::kCreateGroup + "(sess=9, dev=3, pipe=0x2, size=120) = " +
                          std::to_string(status) + " (injected)"));
  EXPECT_EQ(registryGroups(), groupsBefore);
  EXPECT_EQ(registryMembers(), membersBefore);
  EXPECT_EQ(groupHandle(10), 0u);
  EXPECT_EQ(sm->group(gid(10)), nullptr);
  EXPECT_EQ(sm->groups(), 1u);
  // The configuration holds the group, with no member given to it.
  const auto group = profile->group(gid(10));
  ASSERT_NE(group, nullptr);
  EXPECT_EQ(group->members(), 0u);
  EXPECT_EQ(chip.groups(), 1u);
  // The same group programmed again goes through.
  startLog();
  sm->groupIs(group);
  const std::uint32_t handle = groupHandle(10);
  ASSERT_NE(handle, 0u);
  EXPECT_THAT(logLines(), ElementsAre(createGroupLine(120, handle),
                                      addMemberToGroupLine(handle, memberHandle(1))));
  EXPECT_EQ(group->members(), 1u);
  ASSERT_NE(sm->group(gid(10)), nullptr);
  EXPECT_EQ(sm->group(gid(10))->groupMembers(), 1u);
}

TEST_P(VelGroupFailureTest, ARefusedInitialMemberUndoesTheGroupSoThatItCanBeProgrammedAgain) {
  const pipe_status status = GetParam();
  const auto groupsBefore = registryGroups();
  ASSERT_EQ(chip.failNext(chipsim_test::kAddMemberToGroup.c_str(), status, 1), 0);
  startLog();
  expectPdFailure([&] { groupIs(10, 4, 1); }, chipsim_test::kAddMemberToGroup, status);
  const auto lines = logLines();
  ASSERT_EQ(lines.size(), 3u);
  const std::string created = lines[0];
  const std::string handle = created.substr(created.rfind("grp=") + 4);
  EXPECT_EQ(created, createGroupLine(4, std::stoul(handle)));
  EXPECT_EQ(lines[1], chipsim_test::kAddMemberToGroup + "(sess=9, dev=3, grp=" + handle +
                          ", mbr=" + std::to_string(memberHandle(1)) +
                          ") = " + std::to_string(status) + " (injected)");
  EXPECT_EQ(lines[2], delGroupLine(std::stoul(handle)));
  EXPECT_EQ(registryGroups(), groupsBefore);
  EXPECT_EQ(sm->group(gid(10)), nullptr);
  EXPECT_EQ(chip.groups(), 0u);
  const auto group = profile->group(gid(10));
  ASSERT_NE(group, nullptr);
  EXPECT_EQ(group->members(), 0u);
  // The same group programmed again goes through.
  startLog();
  sm->groupIs(group);
  const std::uint32_t again = groupHandle(10);
  EXPECT_THAT(logLines(),
              ElementsAre(createGroupLine(4, again), addMemberToGroupLine(again, memberHandle(1))));
  EXPECT_EQ(chip.groups(), 1u);
  EXPECT_EQ(group->members(), 1u);
  ASSERT_NE(sm->group(gid(10)), nullptr);
  EXPECT_EQ(sm->group(gid(10))->groupMembers(), 1u);
}

TEST_P(VelGroupFailureTest, ARefusedDeletionKeepsHandleAndReactorAndCanBeRetried) {
  const pipe_status status = GetParam();
  const auto group = groupIs(10, 4, 1);
  group->memberIs(mid(2));
  group->member(mid(2))->activeIs(false);
  const std::uint32_t handle = groupHandle(10);
  const auto reactor = sm->group(gid(10));
  const auto groupsBefore = registryGroups();
  const auto membersBefore = registryMembers();
  ASSERT_EQ(chip.failNext(chipsim_test::kDelGroup.c_str(), status, 1), 0);
  startLog();
  expectPdFailure([&] { profile->groupDel(gid(10)); }, chipsim_test::kDelGroup, status);
  // Both members were taken out, the delete refused, and the members put back
  // as the chip had them (member 2 inactive).
  const auto lines = logLines();
  ASSERT_EQ(lines.size(), 6u);
  EXPECT_THAT(std::vector<std::string>(lines.begin(), lines.begin() + 2),
              testing::UnorderedElementsAre(delMemberFromGroupLine(handle, memberHandle(1)),
                                            delMemberFromGroupLine(handle, memberHandle(2))));
  EXPECT_EQ(lines[2], chipsim_test::kDelGroup + "(sess=9, dev=3, grp=" + std::to_string(handle) +
                          ") = " + std::to_string(status) + " (injected)");
  EXPECT_THAT(std::vector<std::string>(lines.begin() + 3, lines.end()),
              testing::UnorderedElementsAre(addMemberToGroupLine(handle, memberHandle(1)),
                                            addMemberToGroupLine(handle, memberHandle(2)),
                                            memberStateLine(handle, memberHandle(2), 1)));
  const auto add2 =
      std::find(lines.begin(), lines.end(), addMemberToGroupLine(handle, memberHandle(2)));
  const auto state2 =
      std::find(lines.begin(), lines.end(), memberStateLine(handle, memberHandle(2), 1));
  EXPECT_LT(add2, state2);
  EXPECT_EQ(registryGroups(), groupsBefore);
  EXPECT_EQ(registryMembers(), membersBefore);
  EXPECT_EQ(sm->group(gid(10)), reactor);
  EXPECT_FALSE(reactor->velMarkedForDeletion());
  EXPECT_TRUE(reactor->hasNotificationActive());
  EXPECT_EQ(reactor->ingressMirrorLagGroupActionProfileSm(), sm.get());
  EXPECT_EQ(reactor->groupMembers(), 2u);
  EXPECT_EQ(chip.groups(), 1u);
  EXPECT_EQ(chipFault(), "");
  // Asked again, the state machine deletes the group, with no call refused.
  startLog();
  EXPECT_EQ(sm->groupDel(gid(10)), group);
  const auto retry = logLines();
  ASSERT_EQ(retry.size(), 3u);
  EXPECT_THAT(std::vector<std::string>(retry.begin(), retry.begin() + 2),
              testing::UnorderedElementsAre(delMemberFromGroupLine(handle, memberHandle(1)),
                                            delMemberFromGroupLine(handle, memberHandle(2))));
  EXPECT_EQ(retry[2], delGroupLine(handle));
  EXPECT_THAT(registryGroups(), IsEmpty());
  EXPECT_EQ(sm->group(gid(10)), nullptr);
  EXPECT_EQ(chip.groups(), 0u);
  EXPECT_EQ(chipFault(), "");
  // The members are free to go.
  profile->entryDel(mid(1));
  profile->entryDel(mid(2));
  EXPECT_EQ(chip.members(), 1u);
}

TEST_P(VelGroupFailureTest, ARefusedMemberRemovalStopsTheDeletionAndCanBeRetried) {
  const pipe_status status = GetParam();
  const auto group = groupIs(10, 4, 1);
  group->memberIs(mid(2));
  const std::uint32_t handle = groupHandle(10);
  const auto reactor = sm->group(gid(10));
  const auto groupsBefore = registryGroups();
  ASSERT_EQ(chip.failNext(chipsim_test::kDelMemberFromGroup.c_str(), status, 1), 0);
  startLog();
  expectPdFailure([&] { profile->groupDel(gid(10)); }, chipsim_test::kDelMemberFromGroup, status);
  const auto lines = logLines();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].rfind(chipsim_test::kDelMemberFromGroup +
                               "(sess=9, dev=3, grp=" + std::to_string(handle) + ", mbr=",
                           0),
            0u)
      << lines[0];
  EXPECT_NE(lines[0].find(") = " + std::to_string(status) + " (injected)"), std::string::npos);
  EXPECT_EQ(registryGroups(), groupsBefore);
  EXPECT_EQ(sm->group(gid(10)), reactor);
  EXPECT_EQ(reactor->groupMembers(), 2u);
  EXPECT_FALSE(reactor->velMarkedForDeletion());
  startLog();
  sm->groupDel(gid(10));
  const auto retry = logLines();
  ASSERT_EQ(retry.size(), 3u);
  EXPECT_EQ(retry[2], delGroupLine(handle));
  EXPECT_EQ(chip.groups(), 0u);
  EXPECT_THAT(registryGroups(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(VelGroupFailure, VelGroupFailureTest, testing::Values(2, 3, 9, 16, 17),
                         [](const testing::TestParamInfo<pipe_status>& info) {
                           return "Status" + std::to_string(info.param);
                         });

}  // namespace
}  // namespace BfIngressMirrorLagGroup
