#include "ChipFixture.h"

#include "Pd/PipeStatus.h"

namespace chipsim_test {
namespace {

class EntryLookupTest : public ChipFixture {
 protected:
  pipe_status find(uint16_t key, uint32_t pipe, uint32_t* entry) {
    MatchSpec match{key};
    return pd.matchSpecToEntryHdl(4, {0, pipe}, &match, entry);
  }
};

TEST_F(EntryLookupTest, FindsTheEntryOfAKeyAndLogsTheCall) {
  uint32_t member = addMember(7);
  addEntry(3, member);
  uint32_t added = addEntry(5, member);
  uint32_t entry = 0;
  EXPECT_EQ(find(5, P4_PD_ALL_PIPES, &entry), 0);
  EXPECT_EQ(entry, added);
  EXPECT_EQ(lastLine(),
            kMatchSpecToEntryHdl + "(sess=4, dev=0, pipe=0xffff, mirror_session=5) = 0 entry=2");
  EXPECT_EQ(pd.calls(kMatchSpecToEntryHdl.c_str()), 1);
}

TEST_F(EntryLookupTest, FindsAnEntryPointingAtAGroup) {
  uint32_t added = addGroupEntry(6, createGroup(2));
  uint32_t entry = 0;
  EXPECT_EQ(find(6, 1, &entry), 0);
  EXPECT_EQ(entry, added);
}

TEST_F(EntryLookupTest, AKeyWithoutEntryIsNotFound) {
  addEntry(5, addMember(7));
  uint32_t entry = 77;
  EXPECT_EQ(find(4, P4_PD_ALL_PIPES, &entry), 6);
  EXPECT_EQ(entry, 77u);
  EXPECT_EQ(lastLine(),
            kMatchSpecToEntryHdl + "(sess=4, dev=0, pipe=0xffff, mirror_session=4) = 6");
}

TEST_F(EntryLookupTest, ADeletedEntryIsNotFound) {
  uint32_t added = addEntry(5, addMember(7));
  ASSERT_EQ(pd.tableDelete(1, 0, added), PIPE_STATUS_SUCCESS);
  uint32_t entry = 0;
  EXPECT_EQ(find(5, P4_PD_ALL_PIPES, &entry), 6);
}

TEST_F(EntryLookupTest, TheDefaultEntryIsNeverFound) {
  uint32_t entry = 0;
  ASSERT_EQ(pd.setDefaultEntry(1, kAllPipes, addMember(7), &entry), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(find(0, P4_PD_ALL_PIPES, &entry), 6);
}

TEST_F(EntryLookupTest, RefusesBadArguments) {
  addEntry(5, addMember(7));
  MatchSpec match{5};
  uint32_t entry = 0;
  EXPECT_EQ(pd.matchSpecToEntryHdl(1, kAllPipes, nullptr, &entry), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(),
            kMatchSpecToEntryHdl + "(sess=1, dev=0, pipe=0xffff, mirror_session=NULL) = 3");
  EXPECT_EQ(pd.matchSpecToEntryHdl(1, kAllPipes, &match, nullptr), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(),
            kMatchSpecToEntryHdl + "(sess=1, dev=0, pipe=0xffff, mirror_session=5) = 3 entry=NULL");
  EXPECT_EQ(pd.matchSpecToEntryHdl(1, {1, P4_PD_ALL_PIPES}, &match, &entry),
            PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(pd.matchSpecToEntryHdl(1, {0, 4}, &match, &entry), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kMatchSpecToEntryHdl + "(sess=1, dev=0, pipe=0x4, mirror_session=5) = 3");
  EXPECT_EQ(entry, 0u);
}

TEST_F(EntryLookupTest, PerPipeScopeFindsOnlyTheEntryCoveringThePipe) {
  ASSERT_EQ(pd.setProperty(1, 0, P4_PD_TABLE_PROPERTY_ENTRY_SCOPE, P4_PD_ENTRY_SCOPE_SINGLE_PIPE),
            0);
  uint32_t member = addMember(7);
  uint32_t onPipe2 = addEntry(5, member, 2);
  uint32_t onPipe0 = addEntry(5, member, 0);
  uint32_t entry = 0;
  EXPECT_EQ(find(5, 2, &entry), 0);
  EXPECT_EQ(entry, onPipe2);
  EXPECT_EQ(find(5, 0, &entry), 0);
  EXPECT_EQ(entry, onPipe0);
  EXPECT_EQ(find(5, 1, &entry), 6);
  EXPECT_EQ(find(5, P4_PD_ALL_PIPES, &entry), 0);  // all pipes overlap every pipe
}

TEST_F(EntryLookupTest, AnInjectedFaultChangesNothingAndGivesNoHandle) {
  addEntry(5, addMember(7));
  ASSERT_EQ(pd.failNext(kMatchSpecToEntryHdl.c_str(), 17, 1), 0);
  uint32_t entry = 0;
  EXPECT_EQ(find(5, P4_PD_ALL_PIPES, &entry), 17);
  EXPECT_EQ(entry, 0u);
  EXPECT_EQ(lastLine(), kMatchSpecToEntryHdl +
                            "(sess=4, dev=0, pipe=0xffff, mirror_session=5) = 17 (injected)");
  EXPECT_EQ(find(5, P4_PD_ALL_PIPES, &entry), 0);
  EXPECT_EQ(entry, 1u);
}

}  // namespace
}  // namespace chipsim_test
