#include "ChipFixture.h"

#include "Pd/PipeStatus.h"

namespace chipsim_test {
namespace {

class GroupTest : public ChipFixture {};

TEST_F(GroupTest, CreateGroupGivesAHandleAndLogsTheCall) {
  uint32_t group = 0;
  EXPECT_EQ(pd.createGroup(6, {0, 1}, 3, &group), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(group, 1u);
  EXPECT_EQ(pd.groups(), 1u);
  EXPECT_EQ(lastLine(), kCreateGroup + "(sess=6, dev=0, pipe=0x1, size=3) = 0 grp=1");
}

TEST_F(GroupTest, CreateGroupRefusesBadArguments) {
  uint32_t group = 0;
  EXPECT_EQ(pd.createGroup(1, kAllPipes, 0, &group), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kCreateGroup + "(sess=1, dev=0, pipe=0xffff, size=0) = 3");
  EXPECT_EQ(pd.createGroup(1, kAllPipes, 4, &group), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kCreateGroup + "(sess=1, dev=0, pipe=0xffff, size=4) = 3");
  EXPECT_EQ(pd.createGroup(1, kAllPipes, 3, nullptr), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kCreateGroup + "(sess=1, dev=0, pipe=0xffff, size=3) = 3 grp=NULL");
  EXPECT_EQ(pd.createGroup(1, {0, 9}, 3, &group), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kCreateGroup + "(sess=1, dev=0, pipe=0x9, size=3) = 3");
  EXPECT_EQ(pd.createGroup(1, {3, 0}, 3, &group), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kCreateGroup + "(sess=1, dev=3, pipe=0x0, size=3) = 3");
  EXPECT_EQ(pd.groups(), 0u);
}

TEST_F(GroupTest, CreateGroupInAFullProfileHasNoSpace) {
  createGroup(1);
  createGroup(3);
  uint32_t group = 0;
  EXPECT_EQ(pd.createGroup(1, kAllPipes, 2, &group), PIPE_STATUS_NO_SPACE);
  EXPECT_EQ(lastLine(), kCreateGroup + "(sess=1, dev=0, pipe=0xffff, size=2) = 9");
  EXPECT_EQ(pd.groups(), 2u);
}

TEST_F(GroupTest, DelGroupReleasesItsMembers) {
  uint32_t group = createGroup(3);
  uint32_t first = addMember(7);
  uint32_t second = addMember(8);
  addToGroup(group, first);
  addToGroup(group, second);
  EXPECT_EQ(pd.delGroup(2, 0, group), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(lastLine(), kDelGroup + "(sess=2, dev=0, grp=1) = 0");
  EXPECT_EQ(pd.groups(), 0u);
  EXPECT_EQ(pd.delMember(1, 0, first), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(pd.delMember(1, 0, second), PIPE_STATUS_SUCCESS);
}

TEST_F(GroupTest, DelGroupGivesEveryFailure) {
  uint32_t group = createGroup(3);
  EXPECT_EQ(pd.delGroup(1, 1, group), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kDelGroup + "(sess=1, dev=1, grp=1) = 3");
  EXPECT_EQ(pd.delGroup(1, 0, 3), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kDelGroup + "(sess=1, dev=0, grp=3) = 6");
}

TEST_F(GroupTest, DelGroupUsedByAnEntryIsInUse) {
  uint32_t group = createGroup(3);
  uint32_t entry = addGroupEntry(5, group);
  EXPECT_EQ(pd.delGroup(1, 0, group), PIPE_STATUS_IN_USE);
  EXPECT_EQ(lastLine(), kDelGroup + "(sess=1, dev=0, grp=1) = 16");
  EXPECT_EQ(pd.tableDelete(1, 0, entry), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(pd.delGroup(1, 0, group), PIPE_STATUS_SUCCESS);
}

TEST_F(GroupTest, DelGroupUsedByTheDefaultEntryIsInUse) {
  uint32_t group = createGroup(3);
  uint32_t entry = 0;
  EXPECT_EQ(pd.setDefaultEntryWithSelector(1, kAllPipes, group, &entry), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(pd.delGroup(1, 0, group), PIPE_STATUS_IN_USE);
  EXPECT_EQ(pd.tableResetDefaultEntry(1, kAllPipes), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(pd.delGroup(1, 0, group), PIPE_STATUS_SUCCESS);
}

TEST_F(GroupTest, AddMemberToGroupAddsAnActiveMember) {
  uint32_t group = createGroup(3);
  uint32_t member = addMember(7);
  EXPECT_EQ(pd.addMemberToGroup(4, 0, group, member), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(lastLine(), kAddMemberToGroup + "(sess=4, dev=0, grp=1, mbr=1) = 0");
  addGroupEntry(5, group);
  uint16_t selector = 0;
  EXPECT_EQ(pd.lookup(5, 0, &selector), 0);
  EXPECT_EQ(selector, 7);
}

TEST_F(GroupTest, AddMemberToGroupGivesEveryFailure) {
  uint32_t group = createGroup(1);
  uint32_t member = addMember(7);
  EXPECT_EQ(pd.addMemberToGroup(1, 1, group, member), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kAddMemberToGroup + "(sess=1, dev=1, grp=1, mbr=1) = 3");
  EXPECT_EQ(pd.addMemberToGroup(1, 0, 2, member), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kAddMemberToGroup + "(sess=1, dev=0, grp=2, mbr=1) = 6");
  EXPECT_EQ(pd.addMemberToGroup(1, 0, group, 2), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kAddMemberToGroup + "(sess=1, dev=0, grp=1, mbr=2) = 6");
  addToGroup(group, member);
  EXPECT_EQ(pd.addMemberToGroup(1, 0, group, member), PIPE_STATUS_ALREADY_EXISTS);
  EXPECT_EQ(lastLine(), kAddMemberToGroup + "(sess=1, dev=0, grp=1, mbr=1) = 4");
  uint32_t other = addMember(8);
  EXPECT_EQ(pd.addMemberToGroup(1, 0, group, other), PIPE_STATUS_NO_SPACE);
  EXPECT_EQ(lastLine(), kAddMemberToGroup + "(sess=1, dev=0, grp=1, mbr=2) = 9");
}

TEST_F(GroupTest, AMemberMayBelongToSeveralGroups) {
  uint32_t member = addMember(7);
  uint32_t first = createGroup(3);
  uint32_t second = createGroup(3);
  addToGroup(first, member);
  addToGroup(second, member);
  EXPECT_EQ(pd.delGroup(1, 0, first), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(pd.delMember(1, 0, member), PIPE_STATUS_IN_USE);
  EXPECT_EQ(pd.delGroup(1, 0, second), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(pd.delMember(1, 0, member), PIPE_STATUS_SUCCESS);
}

TEST_F(GroupTest, DelMemberFromGroupRemovesTheMember) {
  uint32_t group = createGroup(3);
  uint32_t member = addMember(7);
  addToGroup(group, member);
  EXPECT_EQ(pd.delMemberFromGroup(7, 0, group, member), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(lastLine(), kDelMemberFromGroup + "(sess=7, dev=0, grp=1, mbr=1) = 0");
  addToGroup(group, member);  // can come back
}

TEST_F(GroupTest, DelMemberFromGroupGivesEveryFailure) {
  uint32_t group = createGroup(3);
  uint32_t member = addMember(7);
  uint32_t outsider = addMember(8);
  addToGroup(group, member);
  EXPECT_EQ(pd.delMemberFromGroup(1, 9, group, member), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kDelMemberFromGroup + "(sess=1, dev=9, grp=1, mbr=1) = 3");
  EXPECT_EQ(pd.delMemberFromGroup(1, 0, 0, member), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kDelMemberFromGroup + "(sess=1, dev=0, grp=0, mbr=1) = 6");
  EXPECT_EQ(pd.delMemberFromGroup(1, 0, group, 3), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kDelMemberFromGroup + "(sess=1, dev=0, grp=1, mbr=3) = 6");
  EXPECT_EQ(pd.delMemberFromGroup(1, 0, group, outsider), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kDelMemberFromGroup + "(sess=1, dev=0, grp=1, mbr=2) = 6");
}

TEST_F(GroupTest, GroupMemberStateSetSwitchesAMember) {
  uint32_t group = createGroup(3);
  uint32_t member = addMember(7);
  addToGroup(group, member);
  addGroupEntry(5, group);
  uint16_t selector = 0;
  EXPECT_EQ(pd.groupMemberStateSet(8, 0, group, member, P4_PD_GROUP_MEMBER_INACTIVE),
            PIPE_STATUS_SUCCESS);
  EXPECT_EQ(lastLine(), kGroupMemberStateSet + "(sess=8, dev=0, grp=1, mbr=1, state=1) = 0");
  EXPECT_EQ(pd.lookup(5, 0, &selector), CHIPSIM_MISS);
  EXPECT_EQ(pd.groupMemberStateSet(8, 0, group, member, P4_PD_GROUP_MEMBER_ACTIVE),
            PIPE_STATUS_SUCCESS);
  EXPECT_EQ(lastLine(), kGroupMemberStateSet + "(sess=8, dev=0, grp=1, mbr=1, state=0) = 0");
  EXPECT_EQ(pd.lookup(5, 0, &selector), 0);
  EXPECT_EQ(selector, 7);
}

TEST_F(GroupTest, GroupMemberStateSetGivesEveryFailure) {
  uint32_t group = createGroup(3);
  uint32_t member = addMember(7);
  uint32_t outsider = addMember(8);
  addToGroup(group, member);
  EXPECT_EQ(pd.groupMemberStateSet(1, 0, group, member, 2), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kGroupMemberStateSet + "(sess=1, dev=0, grp=1, mbr=1, state=2) = 3");
  EXPECT_EQ(pd.groupMemberStateSet(1, 0, group, member, -1), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kGroupMemberStateSet + "(sess=1, dev=0, grp=1, mbr=1, state=-1) = 3");
  EXPECT_EQ(pd.groupMemberStateSet(1, 1, group, member, 1), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kGroupMemberStateSet + "(sess=1, dev=1, grp=1, mbr=1, state=1) = 3");
  EXPECT_EQ(pd.groupMemberStateSet(1, 0, 2, member, 1), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kGroupMemberStateSet + "(sess=1, dev=0, grp=2, mbr=1, state=1) = 6");
  EXPECT_EQ(pd.groupMemberStateSet(1, 0, group, outsider, 1), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kGroupMemberStateSet + "(sess=1, dev=0, grp=1, mbr=2, state=1) = 6");
}

}  // namespace
}  // namespace chipsim_test
