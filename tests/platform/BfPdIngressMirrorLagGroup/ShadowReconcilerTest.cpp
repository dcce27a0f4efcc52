#include "BfPdIngressMirrorLagGroup/ShadowReconciler.h"

#include "Pd/PipeStatus.h"
#include "ShadowChipFixture.h"
#include "Vel/Allocate.h"
#include "support/ChipContents.h"

namespace shadow_test {
namespace {

using BfPdIngressMirrorLagGroup::ShadowReconciler;
using BfPdIngressMirrorLagGroup::ShadowReconciliation;
using chipsim_test::chipsim;
using chipsim_test::kDelGroup;
using chipsim_test::kDelMember;
using chipsim_test::kGetEntry;
using chipsim_test::kMatchSpecToEntryHdl;
using chipsim_test::kTableResetDefaultEntry;
using Vault::MbbPostcodef::OpId;
using Vault::MbbPostcodef::opIdOf;

ShadowReconciliation counts(std::uint32_t completed, std::uint32_t restored, std::uint32_t removed,
                            std::uint32_t unsettled) {
  ShadowReconciliation done;
  done.completed = completed;
  done.restored = restored;
  done.removed = removed;
  done.unsettled = unsettled;
  return done;
}

// Intents as a process killed in the middle of a recorded call leaves them,
// made here directly, with the chip in the state the call may have left.
class ShadowReconcilerTest : public ShadowChipFixture {
 protected:
  ShadowReconciliation reconcile(p4_pd_device_id_t device = 0) {
    return ShadowReconciler(*manager, *pd, device).reconcile();
  }

  // Chip calls that record nothing, as the killed process made them.
  std::uint32_t chipAddEntry(std::uint16_t session, std::uint32_t member,
                             std::uint32_t pipe = P4_PD_ALL_PIPES) {
    PdMatchSpec spec{session};
    std::uint32_t handle = 0;
    EXPECT_EQ(chipsim().addEntry(1, {0, pipe}, &spec, member, &handle), PIPE_STATUS_SUCCESS);
    return handle;
  }
  std::uint32_t chipAddMember() {
    PdActionSpec spec{1};
    std::uint32_t handle = 0;
    EXPECT_EQ(chipsim().addMember(1, kAllPipes, &spec, &handle), PIPE_STATUS_SUCCESS);
    return handle;
  }
  std::uint32_t chipCreateGroup() {
    std::uint32_t handle = 0;
    EXPECT_EQ(chipsim().createGroup(1, kAllPipes, 2, &handle), PIPE_STATUS_SUCCESS);
    return handle;
  }
  void chipSetDefault(std::uint32_t member) {
    std::uint32_t handle = 0;
    EXPECT_EQ(chipsim().setDefaultEntry(1, kAllPipes, member, &handle), PIPE_STATUS_SUCCESS);
  }

  static EntryConfig entryIntent(EntryKey key, std::uint16_t session, std::uint32_t replaced = 0,
                                 std::uint32_t pipe = P4_PD_ALL_PIPES) {
    return EntryConfig(key, opIdOf(ShadowOp::entryAdd), replaced, session, pipe);
  }
  static EntryConfig defaultIntent(EntryKey key, std::uint32_t replaced) {
    return EntryConfig(key, opIdOf(ShadowOp::defaultEntrySet), replaced, 0, P4_PD_ALL_PIPES);
  }
  // The record of `key` turned into the intent of its delete.
  template <class R>
  static R deleteIntent(MbbVaultKey::ShadowTable<R>& table, EntryKey key, ShadowOp op) {
    R intent = *table.record(key);
    intent.opIdIs(opIdOf(op));
    table.intentIs(intent);
    return intent;
  }
};

TEST_F(ShadowReconcilerTest, NoIntentsNoCalls) {
  std::uint32_t member = addMember(1, 10);
  addEntry(newMatch(), 5, member);
  const std::uint32_t lines = chipsim().logCount();
  EXPECT_EQ(reconcile(), ShadowReconciliation());
  EXPECT_EQ(chipsim().logCount(), lines);
  EXPECT_EQ(entryRecords().size(), 1u);
}

TEST_F(ShadowReconcilerTest, AManagerWithoutShadowTablesHasNothingToDo) {
  auto keys = Vel::allocate<VaultKeyManager>();
  EXPECT_EQ(ShadowReconciler(*keys, *pd, 0).reconcile(), ShadowReconciliation());
}

TEST_F(ShadowReconcilerTest, AnAddedEntryFoundByItsKeyIsFinished) {
  const EntryKey key = manager->alloc(newMatch(), false);
  manager->entryShadow()->intentIs(entryIntent(key, 5));
  std::uint32_t entry = chipAddEntry(5, chipAddMember());
  EXPECT_EQ(reconcile(), counts(1, 0, 0, 0));
  EXPECT_EQ(lastLine(),
            kMatchSpecToEntryHdl + "(sess=7, dev=0, pipe=0xffff, mirror_session=5) = 0 entry=1");
  EXPECT_EQ(entryRecords(), std::vector<EntryConfig>{entryIntent(key, 5, entry)});
  EXPECT_EQ(intents(), 0u);
}

TEST_F(ShadowReconcilerTest, AnEntryWhoseAddDidNotHappenGoes) {
  manager->entryShadow()->intentIs(entryIntent(EntryKey(0, 1), 5));
  EXPECT_EQ(reconcile(), counts(0, 0, 1, 0));
  EXPECT_EQ(lastLine(),
            kMatchSpecToEntryHdl + "(sess=7, dev=0, pipe=0xffff, mirror_session=5) = 6");
  EXPECT_TRUE(entryRecords().empty());
  EXPECT_EQ(intents(), 0u);
}

TEST_F(ShadowReconcilerTest, AnEntryFoundWithARecordAlreadyKeepsThatRecord) {
  std::uint32_t member = addMember(1, 10);
  auto match = newMatch();
  std::uint32_t entry = addEntry(match, 5, member);
  manager->entryShadow()->intentIs(entryIntent(EntryKey(0, 2), 5));
  EXPECT_EQ(reconcile(), counts(0, 0, 1, 0));
  EXPECT_EQ(entryRecords(), std::vector<EntryConfig>{entryIntent(manager->key(match), 5, entry)});
}

TEST_F(ShadowReconcilerTest, AnEntryIsLookedForOnItsOwnPipe) {
  ASSERT_EQ(
      chipsim().setProperty(1, 0, P4_PD_TABLE_PROPERTY_ENTRY_SCOPE, P4_PD_ENTRY_SCOPE_SINGLE_PIPE),
      0);
  std::uint32_t entry = chipAddEntry(5, chipAddMember(), 2);
  manager->entryShadow()->intentIs(entryIntent(EntryKey(0, 1), 5, 0, 2));
  manager->entryShadow()->intentIs(entryIntent(EntryKey(0, 2), 5, 0, 1));
  EXPECT_EQ(reconcile(), counts(1, 0, 1, 0));
  EXPECT_EQ(entryRecords(), std::vector<EntryConfig>{entryIntent(EntryKey(0, 1), 5, entry, 2)});
}

TEST_F(ShadowReconcilerTest, AnAddThatReplacedARecordOfAnEntryStillThereRestoresIt) {
  std::uint32_t entry = chipAddEntry(6, chipAddMember());
  manager->entryShadow()->intentIs(entryIntent(EntryKey(0, 1), 5, entry));
  manager->entryShadow()->intentIs(entryIntent(EntryKey(0, 2), 7, 99));
  EXPECT_EQ(reconcile(), counts(0, 1, 1, 0));
  EXPECT_EQ(entryRecords(), std::vector<EntryConfig>{entryIntent(EntryKey(0, 1), 5, entry)});
}

TEST_F(ShadowReconcilerTest, ADefaultEntrySetAgainIsFinishedWhileTheEntryIsSet) {
  std::uint32_t member = addMember(1, 10);
  setDefaultEntry(newMatch(), member);
  const EntryKey key = manager->alloc(newMatch(), false);
  manager->entryShadow()->intentIs(defaultIntent(key, kDefaultEntry));
  EXPECT_EQ(reconcile(), counts(1, 0, 0, 0));
  EXPECT_EQ(lastLine(), kGetEntry +
                            "(sess=7, dev=0, entry=9, read_from_hw=false) = 0 mirror_session=0 "
                            "mbr_or_grp=1 is_group=false");
  // The default entry's one record is now the finished one.
  EXPECT_EQ(entryRecords(), std::vector<EntryConfig>{defaultIntent(key, kDefaultEntry)});
}

TEST_F(ShadowReconcilerTest, ADefaultEntrySetAgainGoesWhenTheEntryIsNotSet) {
  manager->entryShadow()->intentIs(defaultIntent(EntryKey(0, 1), kDefaultEntry));
  EXPECT_EQ(reconcile(), counts(0, 0, 1, 0));
  EXPECT_TRUE(entryRecords().empty());
}

TEST_F(ShadowReconcilerTest, AFirstDefaultEntrySetIsRolledBack) {
  manager->entryShadow()->intentIs(defaultIntent(EntryKey(0, 1), 0));
  chipSetDefault(chipAddMember());
  EXPECT_EQ(reconcile(), counts(0, 0, 1, 0));
  EXPECT_EQ(lastLine(), kTableResetDefaultEntry + "(sess=7, dev=0, pipe=0xffff) = 0");
  EXPECT_TRUE(entryRecords().empty());
  EXPECT_EQ(ChipContents::read().defaultEntry, std::nullopt);
}

TEST_F(ShadowReconcilerTest, AnEntryWhoseDeleteDidNotHappenIsRestored) {
  std::uint32_t member = addMember(1, 10);
  auto match = newMatch();
  std::uint32_t entry = addEntry(match, 5, member);
  const std::vector<EntryConfig> records = entryRecords();
  deleteIntent(*manager->entryShadow(), manager->key(match), ShadowOp::entryDelete);
  EXPECT_TRUE(entryRecords().empty());
  EXPECT_EQ(reconcile(), counts(0, 1, 0, 0));
  EXPECT_EQ(lastLine(), kGetEntry +
                            "(sess=7, dev=0, entry=1, read_from_hw=false) = 0 mirror_session=5 "
                            "mbr_or_grp=1 is_group=false");
  EXPECT_EQ(entryRecords(), records);
  EXPECT_EQ(manager->entryShadow()->keyOfHandle(entry), manager->key(match));
}

TEST_F(ShadowReconcilerTest, AnEntryWhoseDeleteHappenedGoes) {
  std::uint32_t member = addMember(1, 10);
  auto match = newMatch();
  std::uint32_t entry = addEntry(match, 5, member);
  deleteIntent(*manager->entryShadow(), manager->key(match), ShadowOp::entryDelete);
  ASSERT_EQ(chipsim().tableDelete(1, 0, entry), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(reconcile(), counts(0, 0, 1, 0));
  EXPECT_EQ(lastLine(), kGetEntry + "(sess=7, dev=0, entry=1, read_from_hw=false) = 6");
  EXPECT_TRUE(entryRecords().empty());
  EXPECT_EQ(intents(), 0u);
}

TEST_F(ShadowReconcilerTest, ADefaultEntryResetIsRestoredOrGoesAsTheChipSays) {
  std::uint32_t member = addMember(1, 10);
  auto match = newMatch();
  setDefaultEntry(match, member);
  const std::vector<EntryConfig> records = entryRecords();
  deleteIntent(*manager->entryShadow(), manager->key(match), ShadowOp::defaultEntryReset);
  EXPECT_EQ(reconcile(), counts(0, 1, 0, 0));
  EXPECT_EQ(entryRecords(), records);
  EXPECT_EQ(shadowOpOf(entryRecords().front().opId()), ShadowOp::defaultEntrySet);

  deleteIntent(*manager->entryShadow(), manager->key(match), ShadowOp::defaultEntryReset);
  ASSERT_EQ(chipsim().tableResetDefaultEntry(1, kAllPipes), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(reconcile(), counts(0, 0, 1, 0));
  EXPECT_TRUE(entryRecords().empty());
}

TEST_F(ShadowReconcilerTest, AnAddedMemberWithoutAnEarlierRecordGoesAndStaysInTheChip) {
  manager->memberShadow()->intentIs(AdtEntryConfig(anonKey(7), opIdOf(ShadowOp::memberAdd), 0));
  chipAddMember();
  const std::uint32_t lines = chipsim().logCount();
  EXPECT_EQ(reconcile(), counts(0, 0, 1, 0));
  EXPECT_EQ(chipsim().logCount(), lines);  // nothing asked of the chip
  EXPECT_TRUE(memberRecords().empty());
  EXPECT_EQ(chipsim().members(), 1u);
}

TEST_F(ShadowReconcilerTest, AnAddedMemberThatReplacedARecordRestoresIt) {
  manager->memberShadow()->intentIs(AdtEntryConfig(anonKey(7), opIdOf(ShadowOp::memberAdd), 4));
  EXPECT_EQ(reconcile(), counts(0, 1, 0, 0));
  EXPECT_EQ(memberRecords(), std::vector<AdtEntryConfig>{
                                 AdtEntryConfig(anonKey(7), opIdOf(ShadowOp::memberAdd), 4)});
}

TEST_F(ShadowReconcilerTest, AnUnfinishedMemberDeleteIsFinished) {
  std::uint32_t member = addMember(7, 10);
  deleteIntent(*manager->memberShadow(), anonKey(7), ShadowOp::memberDelete);
  EXPECT_EQ(reconcile(), counts(0, 0, 1, 0));
  EXPECT_EQ(lastLine(), kDelMember + "(sess=7, dev=0, mbr=1) = 0");
  EXPECT_EQ(member, 1u);
  EXPECT_EQ(chipsim().members(), 0u);
  EXPECT_TRUE(memberRecords().empty());
}

TEST_F(ShadowReconcilerTest, AMemberAlreadyDeletedGoes) {
  std::uint32_t member = addMember(7, 10);
  deleteIntent(*manager->memberShadow(), anonKey(7), ShadowOp::memberDelete);
  ASSERT_EQ(chipsim().delMember(1, 0, member), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(reconcile(), counts(0, 0, 1, 0));
  EXPECT_EQ(lastLine(), kDelMember + "(sess=7, dev=0, mbr=1) = 6");
  EXPECT_TRUE(memberRecords().empty());
}

TEST_F(ShadowReconcilerTest, AMemberStillInUseGetsItsRecordBack) {
  std::uint32_t member = addMember(7, 10);
  addEntry(newMatch(), 5, member);
  const std::vector<AdtEntryConfig> records = memberRecords();
  deleteIntent(*manager->memberShadow(), anonKey(7), ShadowOp::memberDelete);
  EXPECT_EQ(reconcile(), counts(0, 1, 0, 0));
  EXPECT_EQ(lastLine(), kDelMember + "(sess=7, dev=0, mbr=1) = 16");
  EXPECT_EQ(memberRecords(), records);
}

TEST_F(ShadowReconcilerTest, AGroupCreateGoesOrRestoresTheGroupItReplaced) {
  manager->groupShadow()->intentIs(
      SelGrpEntryConfig(anonKey(1), opIdOf(ShadowOp::groupCreate), 0, 4, P4_PD_ALL_PIPES, 0));
  manager->groupShadow()->intentIs(
      SelGrpEntryConfig(anonKey(2), opIdOf(ShadowOp::groupCreate), 3, 4, P4_PD_ALL_PIPES, 3));
  chipCreateGroup();
  EXPECT_EQ(reconcile(), counts(0, 1, 1, 0));
  EXPECT_EQ(groupRecords(),
            std::vector<SelGrpEntryConfig>{SelGrpEntryConfig(
                anonKey(2), opIdOf(ShadowOp::groupCreate), 3, 4, P4_PD_ALL_PIPES, 0)});
  EXPECT_EQ(chipsim().groups(), 1u);
}

TEST_F(ShadowReconcilerTest, AnUnfinishedGroupDeleteIsFinishedUnlessTheGroupIsInUse) {
  std::uint32_t used = createGroup(1, 4);
  createGroup(2, 4);
  addGroupEntry(newMatch(), 5, used);
  const SelGrpEntryConfig usedRecord = *manager->groupShadow()->record(anonKey(1));
  deleteIntent(*manager->groupShadow(), anonKey(1), ShadowOp::groupDelete);
  deleteIntent(*manager->groupShadow(), anonKey(2), ShadowOp::groupDelete);
  EXPECT_EQ(reconcile(), counts(0, 1, 1, 0));
  EXPECT_EQ(groupRecords(), std::vector<SelGrpEntryConfig>{usedRecord});
  EXPECT_EQ(chipsim().groups(), 1u);
  EXPECT_EQ(chipsim().calls(kDelGroup.c_str()), 2);
}

TEST_F(ShadowReconcilerTest, AnUnclearAnswerLeavesTheIntentForALaterRun) {
  std::uint32_t member = addMember(1, 10);
  auto match = newMatch();
  addEntry(match, 5, member);
  deleteIntent(*manager->entryShadow(), manager->key(match), ShadowOp::entryDelete);
  ASSERT_EQ(chipsim().failNext(kGetEntry.c_str(), 17, 1), 0);
  EXPECT_EQ(reconcile(), counts(0, 0, 0, 1));
  EXPECT_EQ(intents(), 1u);
  EXPECT_EQ(reconcile(), counts(0, 1, 0, 0));
  EXPECT_EQ(intents(), 0u);
}

TEST_F(ShadowReconcilerTest, AnIntentOfAnUnknownOpIsLeftAsItIs) {
  manager->entryShadow()->intentIs(EntryConfig(EntryKey(0, 1), OpId(99), 0, 5, P4_PD_ALL_PIPES));
  manager->memberShadow()->intentIs(AdtEntryConfig(anonKey(1), OpId(0), 0));
  manager->groupShadow()->intentIs(
      SelGrpEntryConfig(anonKey(1), opIdOf(ShadowOp::entryAdd), 0, 0, 0, 0));
  EXPECT_EQ(reconcile(), counts(0, 0, 0, 3));
  EXPECT_EQ(intents(), 3u);
}

TEST_F(ShadowReconcilerTest, CallsGoToTheGivenDevice) {
  manager->entryShadow()->intentIs(entryIntent(EntryKey(0, 1), 5));
  EXPECT_EQ(reconcile(3), counts(0, 0, 0, 1));
  EXPECT_EQ(lastLine(),
            kMatchSpecToEntryHdl + "(sess=7, dev=3, pipe=0xffff, mirror_session=5) = 3");
  EXPECT_EQ(intents(), 1u);
}

TEST_F(ShadowReconcilerTest, ReadersSeeTheSettledRecordsOnly) {
  std::uint32_t member = addMember(1, 10);
  const EntryKey key = manager->alloc(newMatch(), false);
  manager->entryShadow()->intentIs(entryIntent(key, 5));
  EXPECT_TRUE(entryRecords().empty());
  std::uint32_t entry = chipAddEntry(5, member);
  reconcile();
  // A manager attached afterwards, as the restarted table's factory reads it.
  reattachManager();
  EXPECT_EQ(entryRecords(), std::vector<EntryConfig>{entryIntent(key, 5, entry)});
  EXPECT_EQ(intents(), 0u);
}

}  // namespace
}  // namespace shadow_test
