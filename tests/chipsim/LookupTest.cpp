#include <cerrno>

#include "ChipFixture.h"
#include "Pd/PipeStatus.h"

namespace chipsim_test {
namespace {

class LookupTest : public ChipFixture {
 protected:
  // The selector a packet gets, or -1 on a miss (on every pipe with kAnyPipe).
  static constexpr uint32_t kAnyPipe = P4_PD_ALL_PIPES;
  int forward(uint16_t session, uint32_t hash, uint32_t pipe = kAnyPipe) {
    uint16_t selector = 0;
    int result = pipe == kAnyPipe ? pd.lookup(session, hash, &selector)
                                  : pd.lookupOnPipe(pipe, session, hash, &selector);
    EXPECT_TRUE(result == 0 || result == CHIPSIM_MISS) << result;
    return result == 0 ? selector : -1;
  }

  // A group holding members of selectors 10, 20 and 30, in that order, with an entry for key 5.
  void makeGroupOfThree() {
    group = createGroup(3);
    for (uint16_t selector : {10, 20, 30}) {
      members.push_back(addMember(selector));
      addToGroup(group, members.back());
    }
    addGroupEntry(5, group);
  }

  uint32_t group = 0;
  std::vector<uint32_t> members;
};

TEST_F(LookupTest, AMemberEntryGivesTheMembersSelector) {
  addEntry(5, addMember(77));
  EXPECT_EQ(forward(5, 12345), 77);
}

TEST_F(LookupTest, AGroupEntryPicksAnActiveMemberByTheHash) {
  makeGroupOfThree();
  EXPECT_EQ(forward(5, 0), 10);
  EXPECT_EQ(forward(5, 1), 20);
  EXPECT_EQ(forward(5, 2), 30);
  EXPECT_EQ(forward(5, 3), 10);
}

TEST_F(LookupTest, InactiveMembersAreSkipped) {
  makeGroupOfThree();
  EXPECT_EQ(pd.groupMemberStateSet(1, 0, group, members[1], P4_PD_GROUP_MEMBER_INACTIVE),
            PIPE_STATUS_SUCCESS);
  EXPECT_EQ(forward(5, 0), 10);
  EXPECT_EQ(forward(5, 1), 30);
  EXPECT_EQ(forward(5, 2), 10);
}

TEST_F(LookupTest, RemovedMembersLeaveTheOthersInTheirOrder) {
  makeGroupOfThree();
  EXPECT_EQ(pd.delMemberFromGroup(1, 0, group, members[0]), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(forward(5, 0), 20);
  EXPECT_EQ(forward(5, 1), 30);
}

TEST_F(LookupTest, AGroupWithoutActiveMembersIsAMissEvenWithADefaultEntry) {
  makeGroupOfThree();
  for (uint32_t member : members) {
    EXPECT_EQ(pd.groupMemberStateSet(1, 0, group, member, P4_PD_GROUP_MEMBER_INACTIVE),
              PIPE_STATUS_SUCCESS);
  }
  uint32_t entry = 0;
  EXPECT_EQ(pd.setDefaultEntry(1, kAllPipes, members[0], &entry), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(forward(5, 0), -1);
}

TEST_F(LookupTest, AnEmptyGroupIsAMiss) {
  addGroupEntry(5, createGroup(3));
  EXPECT_EQ(forward(5, 0), -1);
}

TEST_F(LookupTest, NoEntryIsAMiss) {
  addEntry(5, addMember(77));
  EXPECT_EQ(forward(6, 0), -1);
  EXPECT_EQ(forward(6, 0, 0), -1);
}

TEST_F(LookupTest, EntriesOfOnePipeServeThatPipe) {
  ASSERT_EQ(pd.setProperty(1, 0, P4_PD_TABLE_PROPERTY_ENTRY_SCOPE, 1), PIPE_STATUS_SUCCESS);
  addEntry(5, addMember(10), 2);
  addEntry(5, addMember(20), 3);
  EXPECT_EQ(forward(5, 0, 0), -1);
  EXPECT_EQ(forward(5, 0, 2), 10);
  EXPECT_EQ(forward(5, 0, 3), 20);
  EXPECT_EQ(forward(5, 0), 10);  // the first pipe with an entry
}

TEST_F(LookupTest, EntriesOfAllPipesServeEveryPipe) {
  ASSERT_EQ(pd.setProperty(1, 0, P4_PD_TABLE_PROPERTY_ENTRY_SCOPE, 1), PIPE_STATUS_SUCCESS);
  addEntry(5, addMember(10));
  EXPECT_EQ(forward(5, 0, 0), 10);
  EXPECT_EQ(forward(5, 0, 3), 10);
}

TEST_F(LookupTest, BadArgumentsAreRefused) {
  uint16_t selector = 0;
  EXPECT_EQ(pd.lookup(5, 0, nullptr), EINVAL);
  EXPECT_EQ(pd.lookupOnPipe(0, 5, 0, nullptr), EINVAL);
  EXPECT_EQ(pd.lookupOnPipe(4, 5, 0, &selector), EINVAL);
  EXPECT_EQ(pd.lookupOnPipe(P4_PD_ALL_PIPES, 5, 0, &selector), EINVAL);
}

TEST_F(LookupTest, LookUpsAreNotPdCalls) {
  uint16_t selector = 0;
  pd.lookup(5, 0, &selector);
  EXPECT_EQ(pd.logCount(), 0u);
}

}  // namespace
}  // namespace chipsim_test
