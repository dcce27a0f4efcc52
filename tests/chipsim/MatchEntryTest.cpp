#include "ChipFixture.h"

#include "Pd/PipeStatus.h"

namespace chipsim_test {
namespace {

class MatchEntryTest : public ChipFixture {};

TEST_F(MatchEntryTest, AddEntryGivesAHandleAndLogsTheCall) {
  uint32_t member = addMember(7);
  MatchSpec match{5};
  uint32_t entry = 0;
  EXPECT_EQ(pd.addEntry(1, kAllPipes, &match, member, &entry), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(entry, 1u);
  EXPECT_EQ(pd.entries(), 1u);
  EXPECT_EQ(lastLine(),
            kAddEntry + "(sess=1, dev=0, pipe=0xffff, mirror_session=5, mbr=1) = 0 entry=1");
}

TEST_F(MatchEntryTest, AddEntryRefusesBadArguments) {
  uint32_t member = addMember(7);
  MatchSpec match{5};
  uint32_t entry = 0;
  EXPECT_EQ(pd.addEntry(2, kAllPipes, nullptr, member, &entry), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kAddEntry + "(sess=2, dev=0, pipe=0xffff, mirror_session=NULL, mbr=1) = 3");
  EXPECT_EQ(pd.addEntry(2, kAllPipes, &match, member, nullptr), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(),
            kAddEntry + "(sess=2, dev=0, pipe=0xffff, mirror_session=5, mbr=1) = 3 entry=NULL");
  EXPECT_EQ(pd.addEntry(2, {1, P4_PD_ALL_PIPES}, &match, member, &entry),
            PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kAddEntry + "(sess=2, dev=1, pipe=0xffff, mirror_session=5, mbr=1) = 3");
  EXPECT_EQ(pd.addEntry(2, {0, 4}, &match, member, &entry), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kAddEntry + "(sess=2, dev=0, pipe=0x4, mirror_session=5, mbr=1) = 3");
  EXPECT_EQ(entry, 0u);
  EXPECT_EQ(pd.entries(), 0u);
}

TEST_F(MatchEntryTest, AddEntryOfAnUnknownMemberIsNotFound) {
  MatchSpec match{5};
  uint32_t entry = 0;
  EXPECT_EQ(pd.addEntry(1, kAllPipes, &match, 9, &entry), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kAddEntry + "(sess=1, dev=0, pipe=0xffff, mirror_session=5, mbr=9) = 6");
  EXPECT_EQ(pd.addEntry(1, kAllPipes, &match, 0, &entry), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(pd.entries(), 0u);
}

TEST_F(MatchEntryTest, AddEntryOfAKeyAlreadyThereIsADuplicate) {
  uint32_t member = addMember(7);
  addEntry(5, member);
  MatchSpec match{5};
  uint32_t entry = 0;
  EXPECT_EQ(pd.addEntry(1, kAllPipes, &match, member, &entry), PIPE_STATUS_ALREADY_EXISTS);
  EXPECT_EQ(lastLine(), kAddEntry + "(sess=1, dev=0, pipe=0xffff, mirror_session=5, mbr=1) = 4");
  EXPECT_EQ(pd.entries(), 1u);
}

TEST_F(MatchEntryTest, AddEntryToAFullTableHasNoSpace) {
  uint32_t member = addMember(7);
  for (uint16_t key = 1; key <= 4; ++key) {
    addEntry(key, member);
  }
  MatchSpec match{9};
  uint32_t entry = 0;
  EXPECT_EQ(pd.addEntry(1, kAllPipes, &match, member, &entry), PIPE_STATUS_NO_SPACE);
  EXPECT_EQ(lastLine(), kAddEntry + "(sess=1, dev=0, pipe=0xffff, mirror_session=9, mbr=1) = 9");
  EXPECT_EQ(pd.entries(), 4u);
}

TEST_F(MatchEntryTest, AddEntryWithSelectorPointsAtAGroup) {
  uint32_t group = createGroup(3);
  MatchSpec match{6};
  uint32_t entry = 0;
  EXPECT_EQ(pd.addEntryWithSelector(3, {0, 2}, &match, group, &entry), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(entry, 1u);
  EXPECT_EQ(lastLine(), kAddEntryWithSelector +
                            "(sess=3, dev=0, pipe=0x2, mirror_session=6, grp=1) = 0 entry=1");
}

TEST_F(MatchEntryTest, AddEntryWithSelectorGivesEveryFailure) {
  uint32_t group = createGroup(3);
  uint32_t member = addMember(7);
  MatchSpec match{6};
  uint32_t entry = 0;
  EXPECT_EQ(pd.addEntryWithSelector(1, kAllPipes, nullptr, group, &entry),
            PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(),
            kAddEntryWithSelector + "(sess=1, dev=0, pipe=0xffff, mirror_session=NULL, grp=1) = 3");
  EXPECT_EQ(pd.addEntryWithSelector(1, kAllPipes, &match, member + 1, &entry),
            PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(),
            kAddEntryWithSelector + "(sess=1, dev=0, pipe=0xffff, mirror_session=6, grp=2) = 6");
  addGroupEntry(6, group);
  EXPECT_EQ(pd.addEntryWithSelector(1, kAllPipes, &match, group, &entry),
            PIPE_STATUS_ALREADY_EXISTS);
  EXPECT_EQ(lastLine(),
            kAddEntryWithSelector + "(sess=1, dev=0, pipe=0xffff, mirror_session=6, grp=1) = 4");
  for (uint16_t key = 1; key <= 3; ++key) {
    addGroupEntry(key, group);
  }
  match.ingMirrorMdMirrorSession = 9;
  EXPECT_EQ(pd.addEntryWithSelector(1, kAllPipes, &match, group, &entry), PIPE_STATUS_NO_SPACE);
  EXPECT_EQ(lastLine(),
            kAddEntryWithSelector + "(sess=1, dev=0, pipe=0xffff, mirror_session=9, grp=1) = 9");
}

TEST_F(MatchEntryTest, ModifyEntryMovesTheEntryToAnotherMember) {
  uint32_t first = addMember(7);
  uint32_t second = addMember(8);
  uint32_t entry = addEntry(5, first);
  EXPECT_EQ(pd.modifyEntry(4, 0, entry, second), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(lastLine(), kModifyEntry + "(sess=4, dev=0, entry=1, mbr=2) = 0");
  EXPECT_EQ(pd.delMember(1, 0, first), 0);  // no longer used
  EXPECT_EQ(pd.delMember(1, 0, second), PIPE_STATUS_IN_USE);
  uint16_t selector = 0;
  EXPECT_EQ(pd.lookup(5, 0, &selector), 0);
  EXPECT_EQ(selector, 8);
}

TEST_F(MatchEntryTest, ModifyEntryGivesEveryFailure) {
  uint32_t member = addMember(7);
  uint32_t entry = addEntry(5, member);
  EXPECT_EQ(pd.modifyEntry(1, 3, entry, member), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kModifyEntry + "(sess=1, dev=3, entry=1, mbr=1) = 3");
  EXPECT_EQ(pd.modifyEntry(1, 0, entry + 1, member), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kModifyEntry + "(sess=1, dev=0, entry=2, mbr=1) = 6");
  EXPECT_EQ(pd.modifyEntry(1, 0, entry, member + 1), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kModifyEntry + "(sess=1, dev=0, entry=1, mbr=2) = 6");
}

TEST_F(MatchEntryTest, ModifyEntryWithSelectorMovesAMemberEntryToAGroup) {
  uint32_t member = addMember(7);
  uint32_t group = createGroup(2);
  uint32_t entry = addEntry(5, member);
  EXPECT_EQ(pd.modifyEntryWithSelector(1, 0, entry, group), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(lastLine(), kModifyEntryWithSelector + "(sess=1, dev=0, entry=1, grp=1) = 0");
  EXPECT_EQ(pd.delMember(1, 0, member), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(pd.delGroup(1, 0, group), PIPE_STATUS_IN_USE);
}

TEST_F(MatchEntryTest, ModifyEntryWithSelectorGivesEveryFailure) {
  uint32_t group = createGroup(2);
  uint32_t entry = addGroupEntry(5, group);
  EXPECT_EQ(pd.modifyEntryWithSelector(1, -1, entry, group), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kModifyEntryWithSelector + "(sess=1, dev=-1, entry=1, grp=1) = 3");
  EXPECT_EQ(pd.modifyEntryWithSelector(1, 0, 0, group), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kModifyEntryWithSelector + "(sess=1, dev=0, entry=0, grp=1) = 6");
  EXPECT_EQ(pd.modifyEntryWithSelector(1, 0, entry, 4000000000u), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kModifyEntryWithSelector + "(sess=1, dev=0, entry=1, grp=4000000000) = 6");
}

TEST_F(MatchEntryTest, TableDeleteRemovesTheEntryAndItsReference) {
  uint32_t member = addMember(7);
  uint32_t entry = addEntry(5, member);
  EXPECT_EQ(pd.tableDelete(1, 0, entry), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(lastLine(), kTableDelete + "(sess=1, dev=0, entry=1) = 0");
  EXPECT_EQ(pd.entries(), 0u);
  EXPECT_EQ(pd.delMember(1, 0, member), PIPE_STATUS_SUCCESS);
  addEntry(5, addMember(7));  // the key is free again
}

TEST_F(MatchEntryTest, TableDeleteGivesEveryFailure) {
  uint32_t entry = addEntry(5, addMember(7));
  EXPECT_EQ(pd.tableDelete(1, 1, entry), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kTableDelete + "(sess=1, dev=1, entry=1) = 3");
  EXPECT_EQ(pd.tableDelete(1, 0, kDefaultEntry), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kTableDelete + "(sess=1, dev=0, entry=5) = 3");
  EXPECT_EQ(pd.tableDelete(1, 0, entry), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(pd.tableDelete(1, 0, entry), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kTableDelete + "(sess=1, dev=0, entry=1) = 6");
}

TEST_F(MatchEntryTest, GetEntryReadsAMemberEntryBack) {
  uint32_t entry = addEntry(5, addMember(7));
  MatchSpec match{};
  uint32_t target = 0;
  bool isGroup = true;
  EXPECT_EQ(pd.getEntry(1, 0, entry, false, &match, &target, &isGroup), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(match.ingMirrorMdMirrorSession, 5);
  EXPECT_EQ(target, 1u);
  EXPECT_FALSE(isGroup);
  EXPECT_EQ(lastLine(), kGetEntry +
                            "(sess=1, dev=0, entry=1, read_from_hw=false) = 0 mirror_session=5 "
                            "mbr_or_grp=1 is_group=false");
}

TEST_F(MatchEntryTest, GetEntryReadsAGroupEntryBack) {
  createGroup(2);
  uint32_t entry = addGroupEntry(65535, createGroup(3));
  MatchSpec match{};
  uint32_t target = 0;
  bool isGroup = false;
  EXPECT_EQ(pd.getEntry(1, 0, entry, true, &match, &target, &isGroup), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(lastLine(), kGetEntry +
                            "(sess=1, dev=0, entry=1, read_from_hw=true) = 0 "
                            "mirror_session=65535 mbr_or_grp=2 is_group=true");
}

TEST_F(MatchEntryTest, GetEntryGivesEveryFailure) {
  uint32_t entry = addEntry(5, addMember(7));
  MatchSpec match{};
  uint32_t target = 0;
  bool isGroup = false;
  EXPECT_EQ(pd.getEntry(1, 0, entry, false, nullptr, nullptr, nullptr),
            PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kGetEntry +
                            "(sess=1, dev=0, entry=1, read_from_hw=false) = 3 "
                            "mirror_session=NULL mbr_or_grp=NULL is_group=NULL");
  EXPECT_EQ(pd.getEntry(1, 0, entry, false, &match, &target, nullptr),
            PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(),
            kGetEntry + "(sess=1, dev=0, entry=1, read_from_hw=false) = 3 is_group=NULL");
  EXPECT_EQ(pd.getEntry(1, 7, entry, false, &match, &target, &isGroup),
            PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kGetEntry + "(sess=1, dev=7, entry=1, read_from_hw=false) = 3");
  EXPECT_EQ(pd.getEntry(1, 0, 2, false, &match, &target, &isGroup), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kGetEntry + "(sess=1, dev=0, entry=2, read_from_hw=false) = 6");
}

TEST_F(MatchEntryTest, HandlesOfDeletedEntriesAreNotGivenAgainSoon) {
  uint32_t member = addMember(7);
  std::vector<uint32_t> handles;
  for (int round = 0; round < 12; ++round) {
    uint32_t entry = addEntry(5, member);
    handles.push_back(entry);
    EXPECT_EQ(pd.tableDelete(1, 0, entry), PIPE_STATUS_SUCCESS);
  }
  // Four slots, each taken in turn; the default entry's handle 5 is never given.
  EXPECT_EQ(handles, (std::vector<uint32_t>{1, 2, 3, 4, 6, 7, 8, 9, 11, 12, 13, 14}));
}

}  // namespace
}  // namespace chipsim_test
