#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <typeinfo>
#include <vector>

#include "ActionProfileFixture.h"
#include "Vel/Expect.h"

namespace BfIngressMirrorLagGroup {
namespace {

// The edit of the configuration whose PD call is made to fail.
enum class Operation {
  addMember,
  modifyMember,
  delMember,
  createGroup,
  delGroup,
  addMemberToGroup,
  delMemberFromGroup,
  memberStateSet,
};

struct FailureCase {
  Operation operation;
  const std::string* pdFunction;
  const char* label;
  pipe_status status;
};

// What the state machine keeps: the registry, and the reactors it holds.
struct Kept {
  std::vector<std::pair<std::uint32_t, std::uint32_t>> members;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> groups;
  std::size_t memberReactors = 0;
  std::size_t groupReactors = 0;
  std::size_t groupMemberReactors = 0;

  bool operator==(const Kept&) const = default;
};

void PrintTo(const Kept& kept, std::ostream* out) {
  *out << kept.members.size() << " members, " << kept.groups.size() << " groups, "
       << kept.memberReactors << "/" << kept.groupReactors << "/" << kept.groupMemberReactors
       << " reactors";
}

// Every PD call of the action profile fails once with a status: the edit
// throws the exception of the status, with the function's name and the
// status text, and the registry and the reactors stay as they were.
class PdFailureTest : public ActionProfileFixture, public testing::WithParamInterface<FailureCase> {
 protected:
  static constexpr std::uint32_t kGroup = 10;

  void SetUp() override {
    ActionProfileFixture::SetUp();
    makeSm();
  }

  void prepare(Operation operation) {
    memberIs(1, 100);
    memberIs(2, 200);
    switch (operation) {
      case Operation::addMember:
      case Operation::modifyMember:
      case Operation::delMember:
      case Operation::createGroup:
        return;
      case Operation::delGroup:
      case Operation::addMemberToGroup:
        groupIs(kGroup, 4, 1);
        return;
      case Operation::delMemberFromGroup:
      case Operation::memberStateSet:
        groupIs(kGroup, 4, 1)->memberIs(BfnTable::BfnMemberId(2));
        return;
    }
  }

  void run(Operation operation) {
    const auto group = profile->group(BfnTable::BfnGroupId(kGroup));
    switch (operation) {
      case Operation::addMember:
        memberIs(3, 300);
        return;
      case Operation::modifyMember:
        profile->entry(BfnTable::BfnMemberId(1))->actionIs(selectorAction(101));
        return;
      case Operation::delMember:
        profile->entryDel(BfnTable::BfnMemberId(1));
        return;
      case Operation::createGroup:
        groupIs(kGroup, 4, 1);
        return;
      case Operation::delGroup:
        profile->groupDel(BfnTable::BfnGroupId(kGroup));
        return;
      case Operation::addMemberToGroup:
        group->memberIs(BfnTable::BfnMemberId(2));
        return;
      case Operation::delMemberFromGroup:
        group->memberDel(BfnTable::BfnMemberId(2));
        return;
      case Operation::memberStateSet:
        group->member(BfnTable::BfnMemberId(2))->activeIs(false);
        return;
    }
  }

  Kept kept() const {
    Kept result{registryMembers(), registryGroups(), sm->actionProfiles(), sm->groups(), 0};
    if (const auto group = sm->group(BfnTable::BfnGroupId(kGroup)))
      result.groupMemberReactors = group->groupMembers();
    return result;
  }
};

TEST_P(PdFailureTest, ThrowsByStatusAndKeepsWhatTheStateMachineHeld) {
  const FailureCase& c = GetParam();
  prepare(c.operation);
  const Kept before = kept();
  const std::uint32_t chipMembers = chip.members();
  const std::uint32_t chipGroups = chip.groups();
  ASSERT_EQ(chip.failNext(c.pdFunction->c_str(), c.status, 1), 0);
  startLog();

  const std::string expected = *c.pdFunction + "() failed: " + statusText(c.status);
  bool thrown = false;
  try {
    run(c.operation);
  } catch (const BfTable::BfTableFull& e) {
    thrown = true;
    EXPECT_EQ(c.status, 9);
    EXPECT_EQ(e.message(), expected);
  } catch (const BfTable::BfNoSysResources& e) {
    thrown = true;
    EXPECT_EQ(c.status, 2);
    EXPECT_EQ(e.message(), expected);
  } catch (const BfTable::BfNotSupported& e) {
    thrown = true;
    EXPECT_EQ(c.status, 17);
    EXPECT_EQ(e.status(), 17);
    EXPECT_EQ(e.message(), expected);
  } catch (const BfTable::BfTableException& e) {
    thrown = true;
    EXPECT_TRUE(c.status == 16 || c.status == 3) << c.status;
    EXPECT_EQ(typeid(e), typeid(BfTable::BfTableException));
    EXPECT_EQ(e.status(), c.status);
    EXPECT_EQ(e.message(), expected);
  }
  EXPECT_TRUE(thrown);

  EXPECT_EQ(kept(), before);
  EXPECT_EQ(chip.members(), chipMembers);
  EXPECT_EQ(chip.groups(), chipGroups);
  std::vector<std::string> lines = logLines();
  // A refused group delete puts back the member it had taken out first.
  if (c.operation == Operation::delGroup) {
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back(), addMemberToGroupLine(groupHandle(kGroup), memberHandle(1)));
    lines.pop_back();
  }
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines.back().rfind(*c.pdFunction + "(", 0), 0u) << lines.back();
  EXPECT_NE(lines.back().find(") = " + std::to_string(c.status) + " (injected)"), std::string::npos)
      << lines.back();
  EXPECT_EQ(Vel::Expect::depth(), 0u);
}

const FailureCase kCalls[] = {
    {Operation::addMember, &chipsim_test::kAddMember, "AddMember", 0},
    {Operation::modifyMember, &chipsim_test::kModifyMember, "ModifyMember", 0},
    {Operation::delMember, &chipsim_test::kDelMember, "DelMember", 0},
    {Operation::createGroup, &chipsim_test::kCreateGroup, "CreateGroup", 0},
    {Operation::delGroup, &chipsim_test::kDelGroup, "DelGroup", 0},
    {Operation::addMemberToGroup, &chipsim_test::kAddMemberToGroup, "AddMemberToGroup", 0},
    {Operation::delMemberFromGroup, &chipsim_test::kDelMemberFromGroup, "DelMemberFromGroup", 0},
    {Operation::memberStateSet, &chipsim_test::kGroupMemberStateSet, "GroupMemberStateSet", 0},
};

std::vector<FailureCase> everyCallAndStatus() {
  std::vector<FailureCase> cases;
  for (const FailureCase& call : kCalls) {
    for (pipe_status status : {2, 3, 9, 16, 17}) {
      FailureCase c = call;
      c.status = status;
      cases.push_back(c);
    }
  }
  return cases;
}

std::string caseName(const testing::TestParamInfo<FailureCase>& info) {
  return std::string(info.param.label) + "Status" + std::to_string(info.param.status);
}

void PrintTo(const FailureCase& c, std::ostream* out) {
  *out << c.label << " status " << c.status;
}

INSTANTIATE_TEST_SUITE_P(EveryCall, PdFailureTest, testing::ValuesIn(everyCallAndStatus()),
                         caseName);

// After a refused call, the same edit, or the next one, goes through.
class PdFailureRetryTest : public PdFailureTest {};

TEST_F(PdFailureRetryTest, AFailedAddLeavesNoReactorAndTheEntryCanBeProgrammedAgain) {
  ASSERT_EQ(chip.failNext(chipsim_test::kAddMember.c_str(), 9, 1), 0);
  const auto entry = entryOf(5, 500);
  EXPECT_THROW(profile->entryIs(entry), BfTable::BfTableFull);
  EXPECT_EQ(profile->entry(BfnTable::BfnMemberId(5)), entry);
  EXPECT_EQ(sm->actionProfile(BfnTable::BfnMemberId(5)), nullptr);
  EXPECT_EQ(memberHandle(5), 0u);
  startLog();
  sm->actionProfileIs(entry);
  EXPECT_THAT(logLines(), testing::ElementsAre(addMemberLine(500, memberHandle(5))));
}

TEST_F(PdFailureRetryTest, AFailedDeleteKeepsTheReactorAndTheHandleSoThatItCanBeDeletedAgain) {
  memberIs(5, 500);
  const std::uint32_t handle = memberHandle(5);
  const auto reactor = sm->actionProfile(BfnTable::BfnMemberId(5));
  ASSERT_EQ(chip.failNext(chipsim_test::kDelMember.c_str(), 3, 1), 0);
  EXPECT_THROW(profile->entryDel(BfnTable::BfnMemberId(5)), BfTable::BfTableException);
  EXPECT_EQ(sm->actionProfile(BfnTable::BfnMemberId(5)), reactor);
  EXPECT_FALSE(reactor->velMarkedForDeletion());
  EXPECT_TRUE(reactor->hasNotificationActive());
  EXPECT_EQ(memberHandle(5), handle);
  startLog();
  sm->actionProfileDel(BfnTable::BfnMemberId(5));
  EXPECT_THAT(logLines(), testing::ElementsAre(delMemberLine(handle)));
  EXPECT_EQ(memberHandle(5), 0u);
}

TEST_F(PdFailureRetryTest, AMemberThatAGroupStillUsesIsRefusedByTheChip) {
  memberIs(1, 100);
  groupIs(10, 4, 1);
  try {
    profile->entryDel(BfnTable::BfnMemberId(1));
    ADD_FAILURE() << "no exception";
  } catch (const BfTable::BfTableException& e) {
    EXPECT_EQ(e.status(), 16);
    EXPECT_EQ(e.message(), chipsim_test::kDelMember + "() failed: " + statusText(16));
  }
  EXPECT_NE(memberHandle(1), 0u);
  EXPECT_NE(sm->actionProfile(BfnTable::BfnMemberId(1)), nullptr);
  // Put back in the configuration, the member is the reactor's again.
  profile->entryIs(entryOf(1, 100));
}

TEST_F(PdFailureRetryTest, AFailedGroupDeleteKeepsTheGroupReactorAndItsHandle) {
  memberIs(1, 100);
  groupIs(10, 4, 1);
  const std::uint32_t group = groupHandle(10);
  const std::uint32_t member = memberHandle(1);
  ASSERT_EQ(chip.failNext(chipsim_test::kDelGroup.c_str(), 3, 1), 0);
  startLog();
  EXPECT_THROW(profile->groupDel(BfnTable::BfnGroupId(10)), BfTable::BfTableException);
  // The member left the hardware group before the group's delete was refused,
  // and was put back after.
  EXPECT_EQ(logLines().front(), delMemberFromGroupLine(group, member));
  EXPECT_EQ(logLines().back(), addMemberToGroupLine(group, member));
  EXPECT_NE(sm->group(BfnTable::BfnGroupId(10)), nullptr);
  EXPECT_EQ(groupHandle(10), group);
  startLog();
  sm->groupDel(BfnTable::BfnGroupId(10));
  EXPECT_THAT(logLines(),
              testing::ElementsAre(delMemberFromGroupLine(group, member), delGroupLine(group)));
  EXPECT_EQ(groupHandle(10), 0u);
}

TEST_F(PdFailureRetryTest, AFailedGroupCreationAddsNoInitialMember) {
  memberIs(1, 100);
  ASSERT_EQ(chip.failNext(chipsim_test::kCreateGroup.c_str(), 9, 1), 0);
  EXPECT_THROW(groupIs(10, 4, 1), BfTable::BfTableFull);
  const auto group = profile->group(BfnTable::BfnGroupId(10));
  ASSERT_NE(group, nullptr);
  EXPECT_EQ(group->members(), 0u);
  EXPECT_EQ(sm->group(BfnTable::BfnGroupId(10)), nullptr);
  EXPECT_EQ(groupHandle(10), 0u);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
