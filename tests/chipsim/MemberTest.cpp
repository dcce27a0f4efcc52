#include "ChipFixture.h"

#include "Pd/PipeStatus.h"

namespace chipsim_test {
namespace {

class MemberTest : public ChipFixture {};

TEST_F(MemberTest, AddMemberGivesAHandleAndLogsTheCall) {
  ActionSpec spec{7};
  uint32_t member = 0;
  EXPECT_EQ(pd.addMember(2, {0, 3}, &spec, &member), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(member, 1u);
  EXPECT_EQ(pd.members(), 1u);
  EXPECT_EQ(lastLine(), kAddMember + "(sess=2, dev=0, pipe=0x3, selector=7) = 0 mbr=1");
}

TEST_F(MemberTest, AddMemberRefusesBadArguments) {
  ActionSpec spec{7};
  uint32_t member = 0;
  EXPECT_EQ(pd.addMember(1, kAllPipes, nullptr, &member), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kAddMember + "(sess=1, dev=0, pipe=0xffff, selector=NULL) = 3");
  EXPECT_EQ(pd.addMember(1, kAllPipes, &spec, nullptr), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kAddMember + "(sess=1, dev=0, pipe=0xffff, selector=7) = 3 mbr=NULL");
  EXPECT_EQ(pd.addMember(1, {5, 0}, &spec, &member), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kAddMember + "(sess=1, dev=5, pipe=0x0, selector=7) = 3");
  EXPECT_EQ(pd.addMember(1, {0, 0xfffe}, &spec, &member), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kAddMember + "(sess=1, dev=0, pipe=0xfffe, selector=7) = 3");
  EXPECT_EQ(pd.members(), 0u);
}

TEST_F(MemberTest, AddMemberToAFullProfileHasNoSpace) {
  for (uint16_t selector = 1; selector <= 4; ++selector) {
    addMember(selector);
  }
  ActionSpec spec{65535};
  uint32_t member = 0;
  EXPECT_EQ(pd.addMember(1, kAllPipes, &spec, &member), PIPE_STATUS_NO_SPACE);
  EXPECT_EQ(lastLine(), kAddMember + "(sess=1, dev=0, pipe=0xffff, selector=65535) = 9");
  EXPECT_EQ(pd.members(), 4u);
}

TEST_F(MemberTest, ModifyMemberChangesTheSelector) {
  uint32_t member = addMember(7);
  addEntry(5, member);
  ActionSpec spec{8};
  EXPECT_EQ(pd.modifyMember(3, 0, member, &spec), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(lastLine(), kModifyMember + "(sess=3, dev=0, mbr=1, selector=8) = 0");
  uint16_t selector = 0;
  EXPECT_EQ(pd.lookup(5, 0, &selector), 0);
  EXPECT_EQ(selector, 8);
}

TEST_F(MemberTest, ModifyMemberGivesEveryFailure) {
  uint32_t member = addMember(7);
  ActionSpec spec{8};
  EXPECT_EQ(pd.modifyMember(1, 0, member, nullptr), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kModifyMember + "(sess=1, dev=0, mbr=1, selector=NULL) = 3");
  EXPECT_EQ(pd.modifyMember(1, 1, member, &spec), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kModifyMember + "(sess=1, dev=1, mbr=1, selector=8) = 3");
  EXPECT_EQ(pd.modifyMember(1, 0, 4294967295u, &spec), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kModifyMember + "(sess=1, dev=0, mbr=4294967295, selector=8) = 6");
}

TEST_F(MemberTest, DelMemberRemovesAnUnusedMember) {
  uint32_t member = addMember(7);
  EXPECT_EQ(pd.delMember(5, 0, member), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(lastLine(), kDelMember + "(sess=5, dev=0, mbr=1) = 0");
  EXPECT_EQ(pd.members(), 0u);
}

TEST_F(MemberTest, DelMemberGivesEveryFailure) {
  uint32_t member = addMember(7);
  EXPECT_EQ(pd.delMember(1, 2, member), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kDelMember + "(sess=1, dev=2, mbr=1) = 3");
  EXPECT_EQ(pd.delMember(1, 0, 2), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kDelMember + "(sess=1, dev=0, mbr=2) = 6");
}

TEST_F(MemberTest, DelMemberUsedByAnEntryIsInUse) {
  uint32_t member = addMember(7);
  uint32_t entry = addEntry(5, member);
  EXPECT_EQ(pd.delMember(1, 0, member), PIPE_STATUS_IN_USE);
  EXPECT_EQ(lastLine(), kDelMember + "(sess=1, dev=0, mbr=1) = 16");
  EXPECT_EQ(pd.tableDelete(1, 0, entry), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(pd.delMember(1, 0, member), PIPE_STATUS_SUCCESS);
}

TEST_F(MemberTest, DelMemberUsedByTheDefaultEntryIsInUse) {
  uint32_t member = addMember(7);
  uint32_t entry = 0;
  EXPECT_EQ(pd.setDefaultEntry(1, kAllPipes, member, &entry), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(pd.delMember(1, 0, member), PIPE_STATUS_IN_USE);
  EXPECT_EQ(pd.tableResetDefaultEntry(1, kAllPipes), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(pd.delMember(1, 0, member), PIPE_STATUS_SUCCESS);
}

TEST_F(MemberTest, DelMemberHeldByAGroupIsInUse) {
  uint32_t member = addMember(7);
  uint32_t group = createGroup(3);
  addToGroup(group, member);
  EXPECT_EQ(pd.delMember(1, 0, member), PIPE_STATUS_IN_USE);
  EXPECT_EQ(pd.delMemberFromGroup(1, 0, group, member), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(pd.delMember(1, 0, member), PIPE_STATUS_SUCCESS);
}

TEST_F(MemberTest, HandlesOfDeletedMembersAreNotGivenAgainSoon) {
  std::vector<uint32_t> handles;
  for (int round = 0; round < 6; ++round) {
    uint32_t member = addMember(7);
    handles.push_back(member);
    EXPECT_EQ(pd.delMember(1, 0, member), PIPE_STATUS_SUCCESS);
  }
  EXPECT_EQ(handles, (std::vector<uint32_t>{1, 2, 3, 4, 5, 6}));
}

}  // namespace
}  // namespace chipsim_test
