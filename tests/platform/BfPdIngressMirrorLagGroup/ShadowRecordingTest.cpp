#include "ShadowChipFixture.h"
#include "Vel/Allocate.h"
#include "Vel/RangeException.h"

namespace shadow_test {
namespace {

using chipsim_test::chipsim;
using chipsim_test::kAddEntry;
using chipsim_test::kAddEntryWithSelector;
using chipsim_test::kAddMember;
using chipsim_test::kCreateGroup;
using chipsim_test::kDelGroup;
using chipsim_test::kDelMember;
using chipsim_test::kModifyEntryWithSelector;
using chipsim_test::kModifyMember;
using chipsim_test::kSetDefaultEntry;
using chipsim_test::kSetDefaultEntryWithSelector;
using chipsim_test::kTableDelete;
using chipsim_test::kTableResetDefaultEntry;
using Vault::MbbPostcodef::opIdOf;

EntryConfig entryRecord(EntryKey key, std::uint32_t handle, std::uint16_t session,
                        std::uint32_t pipe = P4_PD_ALL_PIPES) {
  return EntryConfig(key, opIdOf(ShadowOp::entryAdd), handle, session, pipe);
}

EntryConfig defaultRecord(EntryKey key, std::uint32_t handle) {
  return EntryConfig(key, opIdOf(ShadowOp::defaultEntrySet), handle, 0, P4_PD_ALL_PIPES);
}

AdtEntryConfig memberRecord(std::uint32_t id, std::uint32_t handle) {
  return AdtEntryConfig(EntryKey(VaultKeyManager::kAnonHigh, id), opIdOf(ShadowOp::memberAdd),
                        handle);
}

SelGrpEntryConfig groupRecord(std::uint32_t id, std::uint32_t handle, std::uint32_t size,
                              std::uint32_t replaced = 0) {
  return SelGrpEntryConfig(EntryKey(VaultKeyManager::kAnonHigh, id), opIdOf(ShadowOp::groupCreate),
                           handle, size, P4_PD_ALL_PIPES, replaced);
}

class ShadowRecordingTest : public ShadowChipFixture {};

TEST_F(ShadowRecordingTest, AddedMemberIsRecordedUnderItsAnonymousKey) {
  EXPECT_EQ(manager->allocAnon(7), anonKey(7));
  PdActionSpec spec{300};
  std::uint32_t member = 0;
  ASSERT_EQ(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector(
                kSession, kAllPipes, &spec, &member),
            0);
  EXPECT_EQ(lastLine(), kAddMember + "(sess=7, dev=0, pipe=0xffff, selector=300) = 0 mbr=1");
  EXPECT_EQ(memberRecords(), std::vector<AdtEntryConfig>{memberRecord(7, member)});
  EXPECT_EQ(intents(), 0u);
}

TEST_F(ShadowRecordingTest, CreatedGroupIsRecordedWithItsSize) {
  manager->allocAnon(3);
  std::uint32_t group = 0;
  ASSERT_EQ(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group(kSession, kAllPipes, 5,
                                                                            &group),
            0);
  EXPECT_EQ(lastLine(), kCreateGroup + "(sess=7, dev=0, pipe=0xffff, size=5) = 0 grp=1");
  EXPECT_EQ(groupRecords(), std::vector<SelGrpEntryConfig>{groupRecord(3, group, 5)});
  EXPECT_EQ(intents(), 0u);
}

TEST_F(ShadowRecordingTest, AddedEntryIsRecordedUnderTheAllocatedKey) {
  std::uint32_t member = addMember(7, 300);
  auto match = newMatch();
  const EntryKey key = manager->alloc(match, false);
  PdMatchSpec spec{5};
  std::uint32_t entry = 0;
  ASSERT_EQ(pd->p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry(kSession, {0, 2}, &spec, member,
                                                                    &entry),
            0);
  EXPECT_EQ(lastLine(),
            kAddEntry + "(sess=7, dev=0, pipe=0x2, mirror_session=5, mbr=1) = 0 entry=1");
  EXPECT_EQ(entryRecords(), std::vector<EntryConfig>{entryRecord(key, entry, 5, 2)});
  EXPECT_EQ(intents(), 0u);
}

TEST_F(ShadowRecordingTest, AddedEntryWithSelectorIsRecordedUnderTheAllocatedKey) {
  std::uint32_t group = createGroup(3, 4);
  auto match = newMatch();
  const EntryKey key = manager->alloc(match, false);
  PdMatchSpec spec{6};
  std::uint32_t entry = 0;
  ASSERT_EQ(pd->p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_with_selector(
                kSession, kAllPipes, &spec, group, &entry),
            0);
  EXPECT_EQ(lastLine(), kAddEntryWithSelector +
                            "(sess=7, dev=0, pipe=0xffff, mirror_session=6, grp=1) = 0 entry=1");
  EXPECT_EQ(entryRecords(), std::vector<EntryConfig>{entryRecord(key, entry, 6)});
}

TEST_F(ShadowRecordingTest, DefaultEntryIsRecordedUnderTheAllocatedKey) {
  std::uint32_t member = addMember(7, 300);
  auto match = newMatch();
  const EntryKey key = manager->alloc(match, false);
  std::uint32_t entry = 0;
  ASSERT_EQ(pd->p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry(kSession, kAllPipes,
                                                                            member, &entry),
            0);
  EXPECT_EQ(lastLine(), kSetDefaultEntry + "(sess=7, dev=0, pipe=0xffff, mbr=1) = 0 entry=9");
  EXPECT_EQ(entryRecords(), std::vector<EntryConfig>{defaultRecord(key, kDefaultEntry)});
}

TEST_F(ShadowRecordingTest, DefaultEntryWithSelectorIsRecordedUnderTheAllocatedKey) {
  std::uint32_t group = createGroup(3, 4);
  auto match = newMatch();
  const EntryKey key = manager->alloc(match, false);
  std::uint32_t entry = 0;
  ASSERT_EQ(pd->p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry_with_selector(
                kSession, kAllPipes, group, &entry),
            0);
  EXPECT_EQ(lastLine(),
            kSetDefaultEntryWithSelector + "(sess=7, dev=0, pipe=0xffff, grp=1) = 0 entry=9");
  EXPECT_EQ(entryRecords(), std::vector<EntryConfig>{defaultRecord(key, kDefaultEntry)});
}

TEST_F(ShadowRecordingTest, SettingTheDefaultEntryAgainKeepsOneRecord) {
  std::uint32_t member = addMember(7, 300);
  auto match = newMatch();
  setDefaultEntry(match, member);
  const EntryKey key = manager->key(match);
  setDefaultEntry(match, member);
  EXPECT_EQ(entryRecords(), std::vector<EntryConfig>{defaultRecord(key, kDefaultEntry)});
  // Under another match (a restarted table's own default match spec) the
  // default entry's record moves to the new key.
  auto other = newMatch();
  setDefaultEntry(other, member);
  EXPECT_EQ(entryRecords(),
            std::vector<EntryConfig>{defaultRecord(manager->key(other), kDefaultEntry)});
  EXPECT_EQ(intents(), 0u);
}

TEST_F(ShadowRecordingTest, DeletedEntryLosesItsRecord) {
  std::uint32_t member = addMember(7, 300);
  auto kept = newMatch();
  addEntry(kept, 4, member);
  std::uint32_t entry = addEntry(newMatch(), 5, member);
  ASSERT_EQ(pd->p4_pd_kestro_switch_ingressMirrorLagGroup_table_delete(kSession, 0, entry), 0);
  EXPECT_EQ(lastLine(), kTableDelete + "(sess=7, dev=0, entry=2) = 0");
  EXPECT_EQ(entryRecords(), std::vector<EntryConfig>{entryRecord(manager->key(kept), 1, 4)});
  EXPECT_EQ(intents(), 0u);
}

TEST_F(ShadowRecordingTest, ResetDefaultEntryLosesItsRecord) {
  std::uint32_t member = addMember(7, 300);
  auto kept = newMatch();
  addEntry(kept, 4, member);
  setDefaultEntry(newMatch(), member);
  ASSERT_EQ(
      pd->p4_pd_kestro_switch_ingressMirrorLagGroup_table_reset_default_entry(kSession, kAllPipes),
      0);
  EXPECT_EQ(lastLine(), kTableResetDefaultEntry + "(sess=7, dev=0, pipe=0xffff) = 0");
  EXPECT_EQ(entryRecords(), std::vector<EntryConfig>{entryRecord(manager->key(kept), 1, 4)});
  EXPECT_EQ(intents(), 0u);
}

TEST_F(ShadowRecordingTest, DeletedMemberLosesItsRecord) {
  std::uint32_t first = addMember(1, 100);
  std::uint32_t second = addMember(2, 200);
  ASSERT_EQ(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member(kSession, 0, first), 0);
  EXPECT_EQ(lastLine(), kDelMember + "(sess=7, dev=0, mbr=1) = 0");
  EXPECT_EQ(memberRecords(), std::vector<AdtEntryConfig>{memberRecord(2, second)});
  EXPECT_EQ(intents(), 0u);
}

TEST_F(ShadowRecordingTest, DeletedGroupLosesItsRecord) {
  std::uint32_t first = createGroup(1, 2);
  std::uint32_t second = createGroup(2, 3);
  ASSERT_EQ(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group(kSession, 0, first), 0);
  EXPECT_EQ(lastLine(), kDelGroup + "(sess=7, dev=0, grp=1) = 0");
  EXPECT_EQ(groupRecords(), std::vector<SelGrpEntryConfig>{groupRecord(2, second, 3)});
  EXPECT_EQ(intents(), 0u);
}

TEST_F(ShadowRecordingTest, ModifiesKeepTheRecords) {
  std::uint32_t member = addMember(7, 300);
  std::uint32_t group = createGroup(3, 4);
  auto match = newMatch();
  std::uint32_t entry = addEntry(match, 5, member);
  const std::vector<EntryConfig> entries = entryRecords();
  const std::vector<AdtEntryConfig> members = memberRecords();
  ASSERT_EQ(pd->p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry_with_selector(kSession, 0,
                                                                                     entry, group),
            0);
  EXPECT_EQ(lastLine(), kModifyEntryWithSelector + "(sess=7, dev=0, entry=1, grp=1) = 0");
  PdActionSpec spec{301};
  ASSERT_EQ(
      pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_modify_member_with_setLagMemberSelector(
          kSession, 0, member, &spec),
      0);
  EXPECT_EQ(lastLine(), kModifyMember + "(sess=7, dev=0, mbr=1, selector=301) = 0");
  ASSERT_EQ(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_to_group(kSession, 0,
                                                                                   group, member),
            0);
  EXPECT_EQ(entryRecords(), entries);
  EXPECT_EQ(memberRecords(), members);
  EXPECT_EQ(entryRecords().front().entryHandle(), entry);
}

TEST_F(ShadowRecordingTest, AFailedAddWritesNoRecord) {
  auto match = newMatch();
  manager->alloc(match, false);
  PdMatchSpec spec{5};
  std::uint32_t entry = 0;
  EXPECT_EQ(pd->p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry(kSession, kAllPipes, &spec, 3,
                                                                    &entry),
            6);
  EXPECT_EQ(lastLine(), kAddEntry + "(sess=7, dev=0, pipe=0xffff, mirror_session=5, mbr=3) = 6");
  EXPECT_TRUE(entryRecords().empty());
  EXPECT_EQ(intents(), 0u);
}

TEST_F(ShadowRecordingTest, InjectedFailuresOfCreatesWriteNoRecord) {
  ASSERT_EQ(chipsim().failNext(kAddMember.c_str(), 9, 1), 0);
  ASSERT_EQ(chipsim().failNext(kCreateGroup.c_str(), 2, 1), 0);
  ASSERT_EQ(chipsim().failNext(kSetDefaultEntry.c_str(), 17, 1), 0);
  manager->allocAnon(1);
  PdActionSpec action{1};
  std::uint32_t handle = 0;
  EXPECT_EQ(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector(
                kSession, kAllPipes, &action, &handle),
            9);
  manager->allocAnon(2);
  EXPECT_EQ(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group(kSession, kAllPipes, 2,
                                                                            &handle),
            2);
  EXPECT_EQ(lastLine(), kCreateGroup + "(sess=7, dev=0, pipe=0xffff, size=2) = 2 (injected)");
  std::uint32_t member = addMember(3, 3);
  manager->alloc(newMatch(), false);
  EXPECT_EQ(pd->p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry(kSession, kAllPipes,
                                                                            member, &handle),
            17);
  EXPECT_TRUE(entryRecords().empty());
  EXPECT_EQ(memberRecords(), std::vector<AdtEntryConfig>{memberRecord(3, member)});
  EXPECT_TRUE(groupRecords().empty());
  EXPECT_EQ(intents(), 0u);
}

TEST_F(ShadowRecordingTest, AFailedDeleteKeepsTheRecord) {
  std::uint32_t member = addMember(7, 300);
  auto match = newMatch();
  addEntry(match, 5, member);
  const std::vector<AdtEntryConfig> members = memberRecords();
  EXPECT_EQ(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member(kSession, 0, member), 16);
  EXPECT_EQ(lastLine(), kDelMember + "(sess=7, dev=0, mbr=1) = 16");
  EXPECT_EQ(memberRecords(), members);
  EXPECT_EQ(manager->memberShadow()->keyOfHandle(member), anonKey(7));
  ASSERT_EQ(chipsim().failNext(kTableDelete.c_str(), 17, 1), 0);
  EXPECT_EQ(pd->p4_pd_kestro_switch_ingressMirrorLagGroup_table_delete(kSession, 0, 1), 17);
  EXPECT_EQ(entryRecords(), std::vector<EntryConfig>{entryRecord(manager->key(match), 1, 5)});
  EXPECT_EQ(intents(), 0u);
}

TEST_F(ShadowRecordingTest, AFailedGroupCreateUnderAnIdWithARecordKeepsTheRecord) {
  std::uint32_t group = createGroup(3, 4);
  manager->allocAnon(3);
  std::uint32_t handle = 0;
  EXPECT_EQ(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group(kSession, kAllPipes, 0,
                                                                            &handle),
            3);
  EXPECT_EQ(groupRecords(), std::vector<SelGrpEntryConfig>{groupRecord(3, group, 4)});
  EXPECT_EQ(intents(), 0u);
}

TEST_F(ShadowRecordingTest, AGroupCreatedAnewUnderItsIdReplacesTheRecord) {
  std::uint32_t old = createGroup(3, 4);
  std::uint32_t group = createGroup(3, 6);
  EXPECT_NE(group, old);
  EXPECT_EQ(groupRecords(), std::vector<SelGrpEntryConfig>{groupRecord(3, group, 6, old)});
  EXPECT_EQ(manager->groupShadow()->keyOfHandle(old), std::nullopt);
}

TEST_F(ShadowRecordingTest, AnEntryAddedWithoutAllocGetsAKeyOfItsOwn) {
  std::uint32_t member = addMember(7, 300);
  auto match = newMatch();
  addEntry(match, 5, member);
  PdMatchSpec spec{6};
  std::uint32_t entry = 0;
  ASSERT_EQ(pd->p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry(kSession, kAllPipes, &spec,
                                                                    member, &entry),
            0);
  EXPECT_EQ(entryRecords(), (std::vector<EntryConfig>{entryRecord(manager->key(match), 1, 5),
                                                      entryRecord(EntryKey(0, 2), entry, 6)}));
  EXPECT_EQ(manager->alloc(newMatch(), false), EntryKey(0, 3));
}

TEST_F(ShadowRecordingTest, AMemberAddedWithoutAllocAnonIsNotRecorded) {
  addMember(7, 300);
  PdActionSpec spec{301};
  std::uint32_t member = 0;
  ASSERT_EQ(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector(
                kSession, kAllPipes, &spec, &member),
            0);
  EXPECT_EQ(chipsim().members(), 2u);
  EXPECT_EQ(memberRecords(), std::vector<AdtEntryConfig>{memberRecord(7, 1)});
  // Its delete finds no record to remove.
  ASSERT_EQ(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member(kSession, 0, member), 0);
  EXPECT_EQ(memberRecords(), std::vector<AdtEntryConfig>{memberRecord(7, 1)});
}

TEST_F(ShadowRecordingTest, AFullShadowTableStopsTheAddBeforeTheChip) {
  std::uint32_t member = addMember(7, 300);
  for (std::uint16_t session = 0; session < 8; ++session) {
    addEntry(newMatch(), session, member);
  }
  const std::int64_t adds = calls(kAddEntry);
  manager->alloc(newMatch(), false);
  PdMatchSpec spec{9};
  std::uint32_t entry = 0;
  try {
    pd->p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry(kSession, kAllPipes, &spec, member,
                                                            &entry);
    FAIL() << "an entry was added without room for its record";
  } catch (const Vel::RangeException& e) {
    EXPECT_EQ(e.message(), "Vault table " + base.str() + "-mbb is full (8 records)");
  }
  EXPECT_EQ(calls(kAddEntry), adds);
  EXPECT_EQ(chipsim().entries(), 8u);
  EXPECT_EQ(entryRecords().size(), 8u);
  EXPECT_EQ(intents(), 0u);
}

TEST_F(ShadowRecordingTest, WithoutAKeyManagerNothingIsRecorded) {
  pd->vaultKeyManagerIs(nullptr);
  EXPECT_EQ(pd->vaultKeyManager(), nullptr);
  EXPECT_FALSE(pd->recorder().isRecording());
  std::uint32_t member = addMember(7, 300);
  addEntry(newMatch(), 5, member);
  EXPECT_EQ(chipsim().entries(), 1u);
  EXPECT_TRUE(memberRecords().empty());
  EXPECT_TRUE(entryRecords().empty());
}

TEST_F(ShadowRecordingTest, AnInProcessKeyManagerRecordsNothing) {
  auto keys = Vel::allocate<VaultKeyManager>();
  pd->vaultKeyManagerIs(keys);
  EXPECT_EQ(pd->vaultKeyManager(), keys);
  EXPECT_FALSE(pd->recorder().isRecording());
  keys->allocAnon(7);
  PdActionSpec spec{300};
  std::uint32_t member = 0;
  ASSERT_EQ(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector(
                kSession, kAllPipes, &spec, &member),
            0);
  EXPECT_EQ(chipsim().members(), 1u);
  EXPECT_TRUE(memberRecords().empty());
}

TEST_F(ShadowRecordingTest, ANewLibraryHandleKeepsRecording) {
  pd->dlHandleIs(chipHandle);
  addMember(7, 300);
  EXPECT_EQ(memberRecords().size(), 1u);
}

TEST_F(ShadowRecordingTest, TheResolvedFunctionRecordsNothing) {
  manager->allocAnon(7);
  PdActionSpec spec{300};
  std::uint32_t member = 0;
  ASSERT_EQ(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector
                .resolved()(kSession, kAllPipes, &spec, &member),
            0);
  EXPECT_EQ(chipsim().members(), 1u);
  EXPECT_TRUE(memberRecords().empty());
}

}  // namespace
}  // namespace shadow_test
