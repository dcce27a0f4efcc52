#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <string>

#include "ActionProfileFixture.h"
#include "Vault/SlotCopy.h"
#include "Vault/TableLayout.h"
#include "Vel/Allocate.h"
#include "platform/Vault/RawSegment.h"
#include "support/ScratchShadowBase.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using Factory = decltype(&ingressMirrorLagGroupActionProfileFactory);

// The factory, found in the built plug-in by name as a host finds it.
class PluginLibrary {
 public:
  PluginLibrary() : handle_(dlopen(PLUGIN_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {}
  ~PluginLibrary() {
    if (handle_ != nullptr)
      dlclose(handle_);
  }
  PluginLibrary(const PluginLibrary&) = delete;
  PluginLibrary& operator=(const PluginLibrary&) = delete;

  Factory factory() const {
    return handle_ != nullptr ? reinterpret_cast<Factory>(
                                    dlsym(handle_, "ingressMirrorLagGroupActionProfileFactory"))
                              : nullptr;
  }

 private:
  void* handle_;
};

// The action-profile factory on a table of the fixture's helper, with or
// without a key manager whose shadow tables an earlier instance filled.
class ActionProfileFactoryTest : public ActionProfileFixture {
 protected:
  void SetUp() override {
    ActionProfileFixture::SetUp();
    ASSERT_NE(factory, nullptr) << dlerror();
  }

  // A key manager on the test's shadow tables.
  Vel::Ptr<MbbVaultKey::VaultKeyManager> shadowKeys() const {
    return Vel::allocate<MbbVaultKey::VaultKeyManager>(base.str(), capacity);
  }

  // What an earlier instance left: members and groups made through a PD
  // object that records them under their ids' anonymous keys.
  void recordEarlierInstance() {
    auto keys = shadowKeys();
    auto earlier = ingressMirrorLagGroupTableHelperFactory(kDevice, kPipe);
    auto& pd = *earlier->pdLibIs(CHIPSIM_LIBRARY, chipHandle, kPdSession);
    pd.vaultKeyManagerIs(keys);
    for (std::uint32_t id : {1u, 2u, 3u}) {
      keys->allocAnon(id);
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
      keys->allocAnon(id);
      std::uint32_t handle = 0;
      ASSERT_EQ(pd.p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group(
                    kPdSession, {kDevice, kPipe}, 4, &handle),
                0);
      recordedGroups.emplace_back(id, handle);
    }
  }

  // Runs the factory on a table with these managers.
  Vel::Ptr<IngressMirrorLagGroupActionProfile> runFactory(
      const Vel::Ptr<MbbVaultKey::VaultKeyManager>& keys,
      const Vel::Ptr<BfnTableStatusManager::StatusManager>& status) {
    if (keys != nullptr)
      helper->pdLib()->vaultKeyManagerIs(keys);
    const auto table = Vel::allocate<IngressMirrorLagGroupTable>(helper, keys, status);
    startLog();
    auto result = factory(table);
    adoptStateMachineOf(result);
    return result;
  }

  // The state machine that follows `entity` is kept by the factory for the
  // life of the process; the test takes that reference over so that the
  // fixture can drop it at the end.
  void adoptStateMachineOf(const Vel::Ptr<IngressMirrorLagGroupActionProfile>& entity) {
    ASSERT_EQ(entity->notifieeList()->size(), 1u);
    entity->notifieeList()->doVisit([this](Vel::PtrInterface::NotifieeConst& notifiee) {
      sm = Vel::Ptr<Sm>(dynamic_cast<Sm*>(notifiee.actsm()));
    });
    ASSERT_NE(sm, nullptr);
    EXPECT_EQ(sm->references(), 2u);
    sm->deleteRef();
    sm->sessionHandleIs(kSmSession);
  }

  std::string adtTableName() const {
    return MbbVaultKey::VaultKeyManager::adtTableName(base.str());
  }
  std::string selGrpTableName() const {
    return MbbVaultKey::VaultKeyManager::selGrpTableName(base.str());
  }

  // Flips a bit of the record bytes of `slot` of a shadow table, in both copies.
  static void flipRecordBit(const std::string& table, std::size_t recordSize,
                            std::uint32_t capacity, std::uint32_t slot) {
    const Vault::TableLayout layout = *Vault::TableLayout::of(recordSize, capacity);
    for (unsigned copy = 0; copy < 2; ++copy) {
      RawSegment(table).flipBit(
          layout.slotOffset(slot) + layout.copyOffset(copy) + sizeof(Vault::SlotCopy), 1);
    }
  }

  PluginLibrary plugin;
  const Factory factory = plugin.factory();
  shadow_test::ScratchShadowBase base{"apfactory"};
  MbbVaultKey::ShadowCapacity capacity{64, 32, 16};
  std::vector<std::pair<std::uint32_t, std::uint32_t>> recordedMembers;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> recordedGroups;
};

TEST_F(ActionProfileFactoryTest, GivesAnEmptyEntityNamedAfterTheTable) {
  const auto entity = runFactory(nullptr, nullptr);
  ASSERT_NE(entity, nullptr);
  EXPECT_EQ(entity->name(), "ingressMirrorLagGroup");
  EXPECT_EQ(entity->name().size(), 21u);
  EXPECT_EQ(entity->entries(), 0u);
  EXPECT_EQ(entity->groups(), 0u);
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfile(), entity);
  EXPECT_EQ(sm->helper(), helper);
  EXPECT_EQ(sm->vaultKeyManager(), nullptr);
  EXPECT_EQ(sm->statusManager(), nullptr);
  EXPECT_TRUE(sm->hasNotificationActive());
  EXPECT_THAT(logLines(), IsEmpty());
}

TEST_F(ActionProfileFactoryTest, TheEntityIsFollowedByTheStateMachine) {
  const auto entity = runFactory(nullptr, statusManager);
  entity->entryIs(entryOf(5, 500));
  EXPECT_THAT(logLines(), ElementsAre(addMemberLine(500, memberHandle(5))));
  entity->entryDel(BfnTable::BfnMemberId(5));
  EXPECT_EQ(chip.members(), 0u);
}

TEST_F(ActionProfileFactoryTest, WithoutKeyManagerNothingIsRefilledButTheStatusIsResynced) {
  recordEarlierInstance();
  runFactory(nullptr, statusManager);
  EXPECT_THAT(registryMembers(), IsEmpty());
  EXPECT_THAT(registryGroups(), IsEmpty());
  EXPECT_THAT(events, ElementsAre("resyncSelAdtStatus @0"));
  EXPECT_THAT(logLines(), IsEmpty());
}

TEST_F(ActionProfileFactoryTest, RefillsOneHandlePerShadowRecordAndProgramsNothing) {
  recordEarlierInstance();
  const std::uint32_t members = chip.members();
  const std::uint32_t groups = chip.groups();
  const auto entity = runFactory(shadowKeys(), statusManager);
  EXPECT_THAT(registryMembers(),
              UnorderedElementsAre(recordedMembers[0], recordedMembers[1], recordedMembers[2]));
  EXPECT_THAT(registryGroups(), UnorderedElementsAre(recordedGroups[0], recordedGroups[1]));
  EXPECT_EQ(entity->entries(), 0u);
  EXPECT_EQ(entity->groups(), 0u);
  EXPECT_EQ(sm->actionProfiles(), 0u);
  EXPECT_EQ(sm->groups(), 0u);
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_EQ(chip.members(), members);
  EXPECT_EQ(chip.groups(), groups);
  EXPECT_THAT(events, ElementsAre("resyncSelAdtStatus @0"));
}

TEST_F(ActionProfileFactoryTest, ARefilledHandleOverwritesTheRegistrysInPlace) {
  recordEarlierInstance();
  registry().memberIs(BfnTable::BfnMemberId(2), 999);
  registry().groupIs(BfnTable::BfnGroupId(11), 998);
  runFactory(shadowKeys(), nullptr);
  EXPECT_EQ(registryMembers().size(), 3u);
  EXPECT_EQ(memberHandle(2), recordedMembers[1].second);
  EXPECT_EQ(registryGroups().size(), 2u);
  EXPECT_EQ(groupHandle(11), recordedGroups[1].second);
}

TEST_F(ActionProfileFactoryTest, MembersConfiguredAgainAreModifiedNotAdded) {
  recordEarlierInstance();
  const auto entity = runFactory(shadowKeys(), nullptr);
  for (std::uint32_t id : {1u, 2u, 3u})
    entity->entryIs(entryOf(id, static_cast<std::uint16_t>(100 * id + 1)));
  EXPECT_THAT(logLines(), ElementsAre(modifyMemberLine(recordedMembers[0].second, 101),
                                      modifyMemberLine(recordedMembers[1].second, 201),
                                      modifyMemberLine(recordedMembers[2].second, 301)));
  EXPECT_EQ(chip.members(), 3u);
  // A group is created anew and its refilled handle replaced.
  entity->groupIs(BfnTable::BfnGroupId(10), 4, 1, setLagMemberSelectorActionProfileSpec);
  EXPECT_NE(groupHandle(10), recordedGroups[0].second);
  EXPECT_EQ(chip.groups(), 3u);
  entity->groupDel(BfnTable::BfnGroupId(10));
  // The earlier instance's groups go with the raw calls that made them.
  for (const auto& [id, handle] : recordedGroups)
    EXPECT_EQ(helper->pdLib()->p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group(
                  kPdSession, kDevice, handle),
              0);
}

TEST_F(ActionProfileFactoryTest, ADamagedMemberTableEndsOnlyItsOwnReplay) {
  recordEarlierInstance();
  // Damaged after the restarted host attached the tables (attaching frees
  // damaged records).
  const auto keys = shadowKeys();
  flipRecordBit(adtTableName(), sizeof(BfnMbbShared::AdtEntryConfig), capacity.members, 1);
  runFactory(keys, statusManager);
  EXPECT_THAT(registryMembers(), ElementsAre(recordedMembers[0]));
  EXPECT_THAT(registryGroups(), UnorderedElementsAre(recordedGroups[0], recordedGroups[1]));
  const Vault::CorruptionLog& log = keys->adtVaultTableConfig()->corruption();
  EXPECT_EQ(log.count(), 1u);
  EXPECT_EQ(log.last(), "Vault table " + adtTableName() +
                            ": slot 1: checksum mismatch (torn or damaged record)");
  EXPECT_EQ(keys->selGrpVaultTableConfig()->corruption().count(), 0u);
  EXPECT_THAT(events, ElementsAre("resyncSelAdtStatus @0"));
}

TEST_F(ActionProfileFactoryTest, ADamagedGroupTableEndsOnlyItsOwnReplay) {
  recordEarlierInstance();
  const auto keys = shadowKeys();
  flipRecordBit(selGrpTableName(), sizeof(BfnMbbShared::SelGrpEntryConfig), capacity.groups, 0);
  runFactory(keys, statusManager);
  EXPECT_EQ(registryMembers().size(), 3u);
  EXPECT_THAT(registryGroups(), IsEmpty());
  const Vault::CorruptionLog& log = keys->selGrpVaultTableConfig()->corruption();
  EXPECT_EQ(log.count(), 1u);
  EXPECT_EQ(log.last(), "Vault table " + selGrpTableName() +
                            ": slot 0: checksum mismatch (torn or damaged record)");
  EXPECT_EQ(keys->adtVaultTableConfig()->corruption().count(), 0u);
  EXPECT_THAT(events, ElementsAre("resyncSelAdtStatus @0"));
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
