#include "ShadowChipTest.h"

#include <dlfcn.h>

#include "Vel/Allocate.h"
#include "support/ShadowWalk.h"

namespace shadow_test {

using chipsim_test::chipsim;

void ShadowChipTest::SetUp() {
  chipsim_config config{.device_id = 0,
                        .pipes = 4,
                        .entries = 8,
                        .members = 8,
                        .groups = 4,
                        .max_group_size = 8,
                        .log_lines = 256};
  ASSERT_EQ(chipsim().configure(&config), 0);
  ASSERT_EQ(chipsim().attach(nullptr), 0);
  chipHandle = dlopen(CHIPSIM_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(chipHandle, nullptr) << dlerror();
  manager = attachManager();
  pd = pdFor(manager);
}

void ShadowChipTest::TearDown() {
  pd = nullptr;
  manager = nullptr;
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<PdIntf>().liveObjects(), 0u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<VaultKeyManager>().liveObjects(), 0u);
  const char* fault = chipsim().check();
  EXPECT_EQ(fault ? std::string(fault) : "", "");
  chipsim().attach(nullptr);
  if (chipHandle != nullptr) {
    dlclose(chipHandle);
  }
}

Vel::Ptr<VaultKeyManager> ShadowChipTest::attachManager() const {
  return Vel::allocate<VaultKeyManager>(base.str(), capacity);
}

Vel::Ptr<PdIntf> ShadowChipTest::pdFor(const Vel::Ptr<VaultKeyManager>& keys) const {
  auto intf = Vel::allocate<PdIntf>("libchipsim.so", chipHandle, kSession);
  intf->vaultKeyManagerIs(keys);
  return intf;
}

std::uint32_t ShadowChipTest::addMember(std::uint32_t id, std::uint16_t selector) {
  manager->allocAnon(id);
  PdActionSpec spec{selector};
  std::uint32_t handle = 0;
  EXPECT_EQ(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector(
                kSession, kAllPipes, &spec, &handle),
            0);
  return handle;
}

std::uint32_t ShadowChipTest::createGroup(std::uint32_t id, std::uint32_t size) {
  manager->allocAnon(id);
  std::uint32_t handle = 0;
  EXPECT_EQ(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group(kSession, kAllPipes,
                                                                            size, &handle),
            0);
  return handle;
}

std::uint32_t ShadowChipTest::addEntry(const VaultKeyManager::MatchSpec& match,
                                       std::uint16_t session, std::uint32_t member,
                                       std::uint32_t pipe) {
  manager->alloc(match, false);
  PdMatchSpec spec{session};
  std::uint32_t handle = 0;
  EXPECT_EQ(pd->p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry(kSession, {0, pipe}, &spec,
                                                                    member, &handle),
            0);
  return handle;
}

std::uint32_t ShadowChipTest::addGroupEntry(const VaultKeyManager::MatchSpec& match,
                                            std::uint16_t session, std::uint32_t group) {
  manager->alloc(match, false);
  PdMatchSpec spec{session};
  std::uint32_t handle = 0;
  EXPECT_EQ(pd->p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_with_selector(
                kSession, kAllPipes, &spec, group, &handle),
            0);
  return handle;
}

std::uint32_t ShadowChipTest::setDefaultEntry(const VaultKeyManager::MatchSpec& match,
                                              std::uint32_t member) {
  manager->alloc(match, false);
  std::uint32_t handle = 0;
  EXPECT_EQ(pd->p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry(kSession, kAllPipes,
                                                                            member, &handle),
            0);
  return handle;
}

VaultKeyManager::MatchSpec ShadowChipTest::newMatch() {
  return Vel::allocate<BfnTable::MatchSpecBase>();
}

std::vector<EntryConfig> ShadowChipTest::entryRecords() const {
  return walkShadow(manager->mbbVaultTableConfig()).records;
}

std::vector<AdtEntryConfig> ShadowChipTest::memberRecords() const {
  return walkShadow(manager->adtVaultTableConfig()).records;
}

std::vector<SelGrpEntryConfig> ShadowChipTest::groupRecords() const {
  return walkShadow(manager->selGrpVaultTableConfig()).records;
}

std::size_t ShadowChipTest::intents() const {
  return manager->entryShadow()->intents().size() + manager->memberShadow()->intents().size() +
         manager->groupShadow()->intents().size();
}

std::string ShadowChipTest::lastLine() {
  std::uint32_t count = chipsim().logCount();
  const char* line = count ? chipsim().logLine(count - 1) : nullptr;
  return line ? line : "";
}

std::int64_t ShadowChipTest::calls(const std::string& function) {
  return chipsim().calls(function.c_str());
}

}  // namespace shadow_test
