#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "ActionProfileFixture.h"
#include "BfIngressMirrorLagGroup/table/IngressMirrorLagGroupTableFactory.h"
#include "Vault/MbbPostcodef/ShadowOp.h"
#include "Vault/SlotCopy.h"
#include "Vault/TableLayout.h"
#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Allocate.h"
#include "platform/Vault/RawSegment.h"
#include "support/ScratchShadowBase.h"
#include "support/ShadowWalk.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using testing::UnorderedElementsAreArray;
using EntryKey = MbbVaultKey::VaultKeyManager::EntryKey;
using IdAndHandle = std::pair<std::uint32_t, std::uint32_t>;
using Factory = decltype(&ingressMirrorLagGroupActionProfileFactory);

constexpr std::uint32_t kAnon = MbbVaultKey::VaultKeyManager::kAnonHigh;

// The action-profile factory, found in the built plug-in by name as a host
// finds it, run on tables made by the table factory on the fixture's chip.
// Shadow tables, when a test wants them, live under a scratch base name; an
// earlier instance of the host records members and groups in them through its
// own PD object.
class IngressMirrorLagGroupActionProfileFactoryTest : public ActionProfileFixture {
 protected:
  void SetUp() override {
    ActionProfileFixture::SetUp();
    plugin = dlopen(PLUGIN_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(plugin, nullptr) << dlerror();
    factory = reinterpret_cast<Factory>(dlsym(plugin, "ingressMirrorLagGroupActionProfileFactory"));
    ASSERT_NE(factory, nullptr) << dlerror();
  }
  void TearDown() override {
    table = nullptr;
    keys = nullptr;
    ActionProfileFixture::TearDown();
    if (plugin != nullptr)
      dlclose(plugin);
  }

  Vel::Ptr<MbbVaultKey::VaultKeyManager> shadowKeys() const {
    return Vel::allocate<MbbVaultKey::VaultKeyManager>(base.str(), capacity);
  }

  // The table of this instance; `helper` becomes its helper.
  void makeTable(const Vel::Ptr<MbbVaultKey::VaultKeyManager>& keyManager,
                 const Vel::Ptr<BfnTableStatusManager::StatusManager>& status) {
    table = ingressMirrorLagGroupTableFactory(keyManager, status, chipHandle, kPdSession, kDevice,
                                              kPipe, CHIPSIM_LIBRARY);
    helper = table->helper();
  }

  // Runs the factory on the table; `profile` becomes the entity it gives and
  // `sm` the state machine that follows it. The factory keeps one reference
  // to the state machine for the life of the process; the test gives it back
  // so that the machine goes at the end of the test as the fixture's own
  // does, and the allocation checks of the fixture see no leak.
  void runFactory() {
    startLog();
    profile = factory(table);
    ASSERT_NE(profile, nullptr);
    ASSERT_EQ(profile->notifieeList()->size(), 1u);
    profile->notifieeList()->doVisit([this](Vel::PtrInterface::NotifieeConst& notifiee) {
      sm = Vel::Ptr<Sm>(dynamic_cast<Sm*>(notifiee.actsm()));
    });
    ASSERT_NE(sm, nullptr);
    ASSERT_EQ(sm->references(), 2u);
    sm->deleteRef();
  }

  // An earlier instance of the host: members 1, 2, 3 and groups 10, 11 made
  // through a PD object bound to a key manager on the scratch base, each under
  // its id's anonymous key. Its table and key manager are gone afterwards;
  // the chip keeps the objects.
  void recordEarlierInstance() {
    auto earlierKeys = shadowKeys();
    const auto earlier = ingressMirrorLagGroupTableFactory(
        earlierKeys, nullptr, chipHandle, kPdSession, kDevice, kPipe, CHIPSIM_LIBRARY);
    auto& pd = *earlier->helper()->pdLib();
    ASSERT_TRUE(pd.recorder().isRecording());
    for (std::uint32_t id : {1u, 2u, 3u}) {
      earlierKeys->allocAnon(id);
      const p4_pd_kestro_switch_setLagMemberSelector_action_spec_t spec{
          static_cast<std::uint16_t>(100 * id)};
      std::uint32_t handle = 0;
      ASSERT_EQ(
          pd.p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector(
              kPdSession, {kDevice, kPipe}, &spec, &handle),
          0);
      recordedMembers.emplace_back(id, handle);
    }
    for (std::uint32_t id : {10u, 11u}) {
      earlierKeys->allocAnon(id);
      std::uint32_t handle = 0;
      ASSERT_EQ(pd.p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group(
                    kPdSession, {kDevice, kPipe}, 4, &handle),
                0);
      recordedGroups.emplace_back(id, handle);
    }
  }

  // The (id, handle) pairs a walk of the member or group shadow table gives,
  // in its order.
  std::vector<IdAndHandle> memberRecordsInOrder() const {
    std::vector<IdAndHandle> result;
    for (const auto& record : shadow_test::walkShadow(keys->adtVaultTableConfig()).records)
      result.emplace_back(keys->anonId(record.key()), record.memberHandle());
    return result;
  }
  std::vector<IdAndHandle> groupRecordsInOrder() const {
    std::vector<IdAndHandle> result;
    for (const auto& record : shadow_test::walkShadow(keys->selGrpVaultTableConfig()).records)
      result.emplace_back(keys->anonId(record.key()), record.groupHandle());
    return result;
  }

  // Flips a bit of the record bytes of `slot` of a shadow table, in both of
  // the slot's copies.
  template <class Record>
  static void damageSlot(const std::string& tableName, std::uint32_t slotCapacity,
                         std::uint32_t slot) {
    const Vault::TableLayout layout = *Vault::TableLayout::of(sizeof(Record), slotCapacity);
    for (unsigned copy = 0; copy < 2; ++copy) {
      RawSegment(tableName).flipBit(
          layout.slotOffset(slot) + layout.copyOffset(copy) + sizeof(Vault::SlotCopy), 3);
    }
  }
  std::string adtTableName() const {
    return MbbVaultKey::VaultKeyManager::adtTableName(base.str());
  }
  std::string selGrpTableName() const {
    return MbbVaultKey::VaultKeyManager::selGrpTableName(base.str());
  }
  static std::string checksumMismatch(const std::string& tableName, std::uint32_t slot) {
    return "Vault table " + tableName + ": slot " + std::to_string(slot) +
           ": checksum mismatch (torn or damaged record)";
  }

  void* plugin = nullptr;
  Factory factory = nullptr;
  shadow_test::ScratchShadowBase base{"apfactory-sm"};
  MbbVaultKey::ShadowCapacity capacity{32, 16, 8};
  Vel::Ptr<MbbVaultKey::VaultKeyManager> keys;
  Vel::Ptr<IngressMirrorLagGroupTable> table;
  std::vector<IdAndHandle> recordedMembers;
  std::vector<IdAndHandle> recordedGroups;
};

TEST_F(IngressMirrorLagGroupActionProfileFactoryTest, IsFoundByItsPlainName) {
  EXPECT_EQ(reinterpret_cast<void*>(factory),
            reinterpret_cast<void*>(&ingressMirrorLagGroupActionProfileFactory));
}

TEST_F(IngressMirrorLagGroupActionProfileFactoryTest, GivesAnEmptyEntityFollowedByAStateMachine) {
  makeTable(nullptr, statusManager);
  runFactory();
  EXPECT_EQ(profile->name(), "ingressMirrorLagGroup");
  EXPECT_EQ(profile->entries(), 0u);
  EXPECT_EQ(profile->groups(), 0u);
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfile(), profile);
  ASSERT_NE(sm->ingressMirrorLagGroupActionProfileReactor(), nullptr);
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfileReactor()->notifier(), profile);
  EXPECT_TRUE(sm->hasNotificationActive());
  EXPECT_EQ(sm->helper(), table->helper());
  EXPECT_EQ(sm->vaultKeyManager(), nullptr);
  EXPECT_EQ(sm->statusManager(), statusManager);
  EXPECT_EQ(sm->sessionHandle(), 0u);
  EXPECT_EQ(sm->actionProfiles(), 0u);
  EXPECT_EQ(sm->groups(), 0u);
}

TEST_F(IngressMirrorLagGroupActionProfileFactoryTest, TheStateMachineOutlivesEveryHolder) {
  makeTable(nullptr, nullptr);
  startLog();
  profile = factory(table);
  Sm* machine = nullptr;
  profile->notifieeList()->doVisit([&machine](Vel::PtrInterface::NotifieeConst& notifiee) {
    machine = dynamic_cast<Sm*>(notifiee.actsm());
  });
  ASSERT_NE(machine, nullptr);
  // No Ptr of the test holds it: the factory's own reference keeps it.
  EXPECT_EQ(machine->references(), 1u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Sm>().liveObjects(), 1u);
  // Given back here, so that the test leaves nothing behind.
  sm = Vel::Ptr<Sm>(machine);
  sm->deleteRef();
  EXPECT_EQ(sm->references(), 1u);
}

TEST_F(IngressMirrorLagGroupActionProfileFactoryTest, EditsOfTheEntityAreProgrammed) {
  makeTable(nullptr, statusManager);
  runFactory();
  sm->sessionHandleIs(kSmSession);
  memberIs(5, 500);
  const std::uint32_t handle = memberHandle(5);
  EXPECT_THAT(logLines(), ElementsAre(addMemberLine(500, handle)));
  startLog();
  profile->entryDel(BfnTable::BfnMemberId(5));
  EXPECT_THAT(logLines(), ElementsAre(delMemberLine(handle)));
}

TEST_F(IngressMirrorLagGroupActionProfileFactoryTest, WithoutKeyManagerNothingIsReplayed) {
  recordEarlierInstance();
  makeTable(nullptr, statusManager);
  registry().memberIs(BfnTable::BfnMemberId(7), 77);
  runFactory();
  EXPECT_THAT(registryMembers(), ElementsAre(IdAndHandle{7u, 77u}));
  EXPECT_THAT(registryGroups(), IsEmpty());
  EXPECT_THAT(events, ElementsAre("resyncSelAdtStatus @0"));
  EXPECT_THAT(logLines(), IsEmpty());
}

TEST_F(IngressMirrorLagGroupActionProfileFactoryTest, WithoutEitherManagerItOnlyMakesTheEntity) {
  makeTable(nullptr, nullptr);
  runFactory();
  EXPECT_THAT(events, IsEmpty());
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_THAT(registryMembers(), IsEmpty());
}

TEST_F(IngressMirrorLagGroupActionProfileFactoryTest, ShadowRecordsRefillTheRegistryOnly) {
  recordEarlierInstance();
  const std::uint32_t chipMembers = chip.members();
  const std::uint32_t chipGroups = chip.groups();
  keys = shadowKeys();
  makeTable(keys, statusManager);
  runFactory();
  EXPECT_THAT(registryMembers(), UnorderedElementsAreArray(recordedMembers));
  EXPECT_THAT(registryGroups(), UnorderedElementsAreArray(recordedGroups));
  EXPECT_EQ(profile->entries(), 0u);
  EXPECT_EQ(profile->groups(), 0u);
  EXPECT_EQ(sm->actionProfiles(), 0u);
  EXPECT_EQ(sm->groups(), 0u);
  EXPECT_EQ(sm->vaultKeyManager(), keys);
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_EQ(chip.members(), chipMembers);
  EXPECT_EQ(chip.groups(), chipGroups);
  EXPECT_THAT(events, ElementsAre("resyncSelAdtStatus @0"));
  EXPECT_EQ(keys->adtVaultTableConfig()->corruption().count(), 0u);
  EXPECT_EQ(keys->selGrpVaultTableConfig()->corruption().count(), 0u);
}

TEST_F(IngressMirrorLagGroupActionProfileFactoryTest, RecordsWrittenDirectlyAreReplayedByTheirIds) {
  keys = shadowKeys();
  keys->memberShadow()->recordIs(BfnMbbShared::AdtEntryConfig(
      EntryKey(kAnon, 21), Vault::MbbPostcodef::opIdOf(Vault::MbbPostcodef::ShadowOp::memberAdd),
      1234));
  keys->memberShadow()->recordIs(BfnMbbShared::AdtEntryConfig(
      EntryKey(kAnon, 22), Vault::MbbPostcodef::opIdOf(Vault::MbbPostcodef::ShadowOp::memberAdd),
      1235));
  keys->groupShadow()->recordIs(BfnMbbShared::SelGrpEntryConfig(
      EntryKey(kAnon, 31), Vault::MbbPostcodef::opIdOf(Vault::MbbPostcodef::ShadowOp::groupCreate),
      5678, 4, kPipe, 0));
  makeTable(keys, nullptr);
  runFactory();
  EXPECT_THAT(registryMembers(),
              UnorderedElementsAre(IdAndHandle{21u, 1234u}, IdAndHandle{22u, 1235u}));
  EXPECT_THAT(registryGroups(), ElementsAre(IdAndHandle{31u, 5678u}));
  // Nothing is read back from the chip, which has none of these.
  EXPECT_THAT(logLines(), IsEmpty());
}

TEST_F(IngressMirrorLagGroupActionProfileFactoryTest, ARefilledHandleOverwritesTheRegistrysOwn) {
  recordEarlierInstance();
  keys = shadowKeys();
  makeTable(keys, nullptr);
  registry().memberIs(BfnTable::BfnMemberId(2), 999);
  registry().memberIs(BfnTable::BfnMemberId(40), 4000);
  registry().groupIs(BfnTable::BfnGroupId(11), 998);
  runFactory();
  EXPECT_THAT(registryMembers(), UnorderedElementsAre(recordedMembers[0], recordedMembers[1],
                                                      recordedMembers[2], IdAndHandle{40u, 4000u}));
  EXPECT_THAT(registryGroups(), UnorderedElementsAreArray(recordedGroups));
}

// Members the host configures again after the restart are modified in the
// chip under their refilled handles, not added a second time.
TEST_F(IngressMirrorLagGroupActionProfileFactoryTest, ReplayedMembersConfiguredAgainAreModified) {
  recordEarlierInstance();
  keys = shadowKeys();
  makeTable(keys, nullptr);
  runFactory();
  sm->sessionHandleIs(kSmSession);
  memberIs(1, 101);
  memberIs(3, 301);
  EXPECT_THAT(logLines(), ElementsAre(modifyMemberLine(recordedMembers[0].second, 101),
                                      modifyMemberLine(recordedMembers[2].second, 301)));
  EXPECT_EQ(chip.members(), 3u);
  // The modified members keep the handles that the shadow table gave back.
  EXPECT_THAT(registryMembers(), UnorderedElementsAreArray(recordedMembers));
}

TEST_F(IngressMirrorLagGroupActionProfileFactoryTest, DamageInTheMemberTableEndsOnlyItsWalk) {
  recordEarlierInstance();
  // Damaged after this instance attached the tables (attaching frees damaged
  // slots, so the reader is the one to meet the damage).
  keys = shadowKeys();
  const std::vector<IdAndHandle> members = memberRecordsInOrder();
  ASSERT_EQ(members.size(), 3u);
  damageSlot<BfnMbbShared::AdtEntryConfig>(adtTableName(), capacity.members, 1);
  makeTable(keys, statusManager);
  runFactory();
  EXPECT_THAT(registryMembers(), ElementsAre(members[0]));
  EXPECT_THAT(registryGroups(), UnorderedElementsAreArray(recordedGroups));
  const Vault::CorruptionLog& damage = keys->adtVaultTableConfig()->corruption();
  EXPECT_EQ(damage.count(), 1u);
  EXPECT_EQ(damage.last(), checksumMismatch(adtTableName(), 1));
  EXPECT_EQ(keys->selGrpVaultTableConfig()->corruption().count(), 0u);
  EXPECT_THAT(events, ElementsAre("resyncSelAdtStatus @0"));
  EXPECT_THAT(logLines(), IsEmpty());
}

TEST_F(IngressMirrorLagGroupActionProfileFactoryTest, DamageInTheGroupTableEndsOnlyItsWalk) {
  recordEarlierInstance();
  keys = shadowKeys();
  const std::vector<IdAndHandle> groups = groupRecordsInOrder();
  ASSERT_EQ(groups.size(), 2u);
  damageSlot<BfnMbbShared::SelGrpEntryConfig>(selGrpTableName(), capacity.groups, 1);
  makeTable(keys, statusManager);
  runFactory();
  EXPECT_THAT(registryMembers(), UnorderedElementsAreArray(recordedMembers));
  EXPECT_THAT(registryGroups(), ElementsAre(groups[0]));
  const Vault::CorruptionLog& damage = keys->selGrpVaultTableConfig()->corruption();
  EXPECT_EQ(damage.count(), 1u);
  EXPECT_EQ(damage.last(), checksumMismatch(selGrpTableName(), 1));
  EXPECT_EQ(keys->adtVaultTableConfig()->corruption().count(), 0u);
  EXPECT_THAT(events, ElementsAre("resyncSelAdtStatus @0"));
}

TEST_F(IngressMirrorLagGroupActionProfileFactoryTest, DamageInBothTablesIsReportedToEach) {
  recordEarlierInstance();
  keys = shadowKeys();
  damageSlot<BfnMbbShared::AdtEntryConfig>(adtTableName(), capacity.members, 0);
  damageSlot<BfnMbbShared::SelGrpEntryConfig>(selGrpTableName(), capacity.groups, 0);
  makeTable(keys, statusManager);
  runFactory();
  EXPECT_THAT(registryMembers(), IsEmpty());
  EXPECT_THAT(registryGroups(), IsEmpty());
  EXPECT_EQ(keys->adtVaultTableConfig()->corruption().last(), checksumMismatch(adtTableName(), 0));
  EXPECT_EQ(keys->selGrpVaultTableConfig()->corruption().last(),
            checksumMismatch(selGrpTableName(), 0));
  EXPECT_THAT(events, ElementsAre("resyncSelAdtStatus @0"));
}

// The factory checks the action-data table (ActionProfileDeathTest), then the
// selector-group table of its key manager. A key manager has either all of its
// shadow tables (made with a base name) or none (in-process), so no manager
// can pass the first check and fail the second.
TEST_F(IngressMirrorLagGroupActionProfileFactoryTest, AKeyManagerHasBothOrNeitherProfileTable) {
  const auto inProcess = Vel::allocate<MbbVaultKey::VaultKeyManager>();
  EXPECT_EQ(inProcess->adtVaultTableConfig(), nullptr);
  EXPECT_EQ(inProcess->selGrpVaultTableConfig(), nullptr);
  keys = shadowKeys();
  EXPECT_NE(keys->adtVaultTableConfig(), nullptr);
  EXPECT_NE(keys->selGrpVaultTableConfig(), nullptr);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
