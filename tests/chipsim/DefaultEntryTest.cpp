#include "ChipFixture.h"

#include "Pd/PipeStatus.h"

namespace chipsim_test {
namespace {

class DefaultEntryTest : public ChipFixture {};

TEST_F(DefaultEntryTest, SetDefaultEntryGivesTheSameHandleEveryTime) {
  uint32_t first = addMember(7);
  uint32_t second = addMember(8);
  uint32_t entry = 0;
  EXPECT_EQ(pd.setDefaultEntry(1, kAllPipes, first, &entry), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(entry, kDefaultEntry);
  EXPECT_EQ(lastLine(), kSetDefaultEntry + "(sess=1, dev=0, pipe=0xffff, mbr=1) = 0 entry=5");
  entry = 0;
  EXPECT_EQ(pd.setDefaultEntry(1, {0, 2}, second, &entry), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(entry, kDefaultEntry);
  EXPECT_EQ(lastLine(), kSetDefaultEntry + "(sess=1, dev=0, pipe=0x2, mbr=2) = 0 entry=5");
  EXPECT_EQ(pd.delMember(1, 0, first), 0);  // the default entry let it go
  EXPECT_EQ(pd.entries(), 0u);              // the default entry is not counted
}

TEST_F(DefaultEntryTest, SetDefaultEntryGivesEveryFailure) {
  uint32_t member = addMember(7);
  uint32_t entry = 0;
  EXPECT_EQ(pd.setDefaultEntry(1, kAllPipes, member, nullptr), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kSetDefaultEntry + "(sess=1, dev=0, pipe=0xffff, mbr=1) = 3 entry=NULL");
  EXPECT_EQ(pd.setDefaultEntry(1, {0, 4}, member, &entry), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kSetDefaultEntry + "(sess=1, dev=0, pipe=0x4, mbr=1) = 3");
  EXPECT_EQ(pd.setDefaultEntry(1, kAllPipes, 2, &entry), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kSetDefaultEntry + "(sess=1, dev=0, pipe=0xffff, mbr=2) = 6");
}

TEST_F(DefaultEntryTest, SetDefaultEntryWithSelectorPointsAtAGroup) {
  uint32_t group = createGroup(2);
  uint32_t entry = 0;
  EXPECT_EQ(pd.setDefaultEntryWithSelector(3, kAllPipes, group, &entry), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(entry, kDefaultEntry);
  EXPECT_EQ(lastLine(),
            kSetDefaultEntryWithSelector + "(sess=3, dev=0, pipe=0xffff, grp=1) = 0 entry=5");
}

TEST_F(DefaultEntryTest, SetDefaultEntryWithSelectorGivesEveryFailure) {
  uint32_t group = createGroup(2);
  uint32_t entry = 0;
  EXPECT_EQ(pd.setDefaultEntryWithSelector(1, kAllPipes, group, nullptr),
            PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(),
            kSetDefaultEntryWithSelector + "(sess=1, dev=0, pipe=0xffff, grp=1) = 3 entry=NULL");
  EXPECT_EQ(pd.setDefaultEntryWithSelector(1, {1, 0}, group, &entry), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kSetDefaultEntryWithSelector + "(sess=1, dev=1, pipe=0x0, grp=1) = 3");
  EXPECT_EQ(pd.setDefaultEntryWithSelector(1, kAllPipes, 2, &entry), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kSetDefaultEntryWithSelector + "(sess=1, dev=0, pipe=0xffff, grp=2) = 6");
}

TEST_F(DefaultEntryTest, GetEntryReadsTheDefaultEntryWithAZeroKey) {
  uint32_t group = createGroup(2);
  uint32_t entry = 0;
  EXPECT_EQ(pd.setDefaultEntryWithSelector(1, kAllPipes, group, &entry), PIPE_STATUS_SUCCESS);
  MatchSpec match{99};
  uint32_t target = 0;
  bool isGroup = false;
  EXPECT_EQ(pd.getEntry(1, 0, kDefaultEntry, false, &match, &target, &isGroup),
            PIPE_STATUS_SUCCESS);
  EXPECT_EQ(match.ingMirrorMdMirrorSession, 0);
  EXPECT_EQ(target, group);
  EXPECT_TRUE(isGroup);
  EXPECT_EQ(lastLine(), kGetEntry +
                            "(sess=1, dev=0, entry=5, read_from_hw=false) = 0 mirror_session=0 "
                            "mbr_or_grp=1 is_group=true");
}

TEST_F(DefaultEntryTest, ResetDefaultEntryMakesItUnknown) {
  uint32_t member = addMember(7);
  uint32_t entry = 0;
  EXPECT_EQ(pd.setDefaultEntry(1, kAllPipes, member, &entry), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(pd.tableResetDefaultEntry(2, kAllPipes), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(lastLine(), kTableResetDefaultEntry + "(sess=2, dev=0, pipe=0xffff) = 0");
  MatchSpec match{};
  uint32_t target = 0;
  bool isGroup = false;
  EXPECT_EQ(pd.getEntry(1, 0, kDefaultEntry, false, &match, &target, &isGroup),
            PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(pd.modifyEntry(1, 0, kDefaultEntry, member), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(pd.tableResetDefaultEntry(2, kAllPipes), 0);  // resetting again changes nothing
  EXPECT_EQ(pd.setDefaultEntry(1, kAllPipes, member, &entry), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(entry, kDefaultEntry);
}

TEST_F(DefaultEntryTest, ResetDefaultEntryRefusesABadTarget) {
  EXPECT_EQ(pd.tableResetDefaultEntry(1, {2, P4_PD_ALL_PIPES}), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kTableResetDefaultEntry + "(sess=1, dev=2, pipe=0xffff) = 3");
  EXPECT_EQ(pd.tableResetDefaultEntry(1, {0, 0x10000}), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kTableResetDefaultEntry + "(sess=1, dev=0, pipe=0x10000) = 3");
}

TEST_F(DefaultEntryTest, ModifyEntryRepointsASetDefaultEntry) {
  uint32_t member = addMember(7);
  uint32_t group = createGroup(2);
  uint32_t entry = 0;
  EXPECT_EQ(pd.setDefaultEntry(1, kAllPipes, member, &entry), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(pd.modifyEntryWithSelector(1, 0, kDefaultEntry, group), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(pd.delMember(1, 0, member), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(pd.delGroup(1, 0, group), PIPE_STATUS_IN_USE);
}

TEST_F(DefaultEntryTest, PacketsMissingEveryEntryTakeTheDefaultEntry) {
  uint32_t member = addMember(7);
  addEntry(5, addMember(8));
  uint32_t entry = 0;
  EXPECT_EQ(pd.setDefaultEntry(1, kAllPipes, member, &entry), PIPE_STATUS_SUCCESS);
  uint16_t selector = 0;
  EXPECT_EQ(pd.lookup(6, 0, &selector), CHIPSIM_DEFAULT_HIT);
  EXPECT_EQ(selector, 7);
  EXPECT_EQ(pd.lookup(5, 0, &selector), 0);
  EXPECT_EQ(selector, 8);
}

}  // namespace
}  // namespace chipsim_test
