#include "ShadowChipFixture.h"

#include <dlfcn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <set>

#include "support/ChipContents.h"

#include "Vel/Allocate.h"
#include "support/ShadowWalk.h"

namespace shadow_test {

using chipsim_test::chipsim;

void ShadowChipFixture::SetUp() {
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

void ShadowChipFixture::TearDown() {
  pd = nullptr;
  manager = nullptr;
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<PdIntf>().liveObjects(), 0u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<VaultKeyManager>().liveObjects(), 0u);
  const char* fault = chipsim().check();
  EXPECT_EQ(fault ? std::string(fault) : "", "");
  chipsim().attach(nullptr);
  if (!chipName.empty()) {
    chipsim().unlink(chipName.c_str());
  }
  if (chipHandle != nullptr) {
    dlclose(chipHandle);
  }
}

Vel::Ptr<VaultKeyManager> ShadowChipFixture::attachManager() const {
  return Vel::allocate<VaultKeyManager>(base.str(), capacity);
}

void ShadowChipFixture::releaseManager() {
  pd = nullptr;
  manager = nullptr;
}

void ShadowChipFixture::reattachManager() {
  releaseManager();
  manager = attachManager();
  pd = pdFor(manager);
}

Vel::Ptr<PdIntf> ShadowChipFixture::pdFor(const Vel::Ptr<VaultKeyManager>& keys) const {
  auto intf = Vel::allocate<PdIntf>("libchipsim.so", chipHandle, kSession);
  intf->vaultKeyManagerIs(keys);
  return intf;
}

std::uint32_t ShadowChipFixture::addMember(std::uint32_t id, std::uint16_t selector) {
  manager->allocAnon(id);
  PdActionSpec spec{selector};
  std::uint32_t handle = 0;
  EXPECT_EQ(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector(
                kSession, kAllPipes, &spec, &handle),
            0);
  return handle;
}

std::uint32_t ShadowChipFixture::createGroup(std::uint32_t id, std::uint32_t size) {
  manager->allocAnon(id);
  std::uint32_t handle = 0;
  EXPECT_EQ(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group(kSession, kAllPipes,
                                                                            size, &handle),
            0);
  return handle;
}

std::uint32_t ShadowChipFixture::addEntry(const VaultKeyManager::MatchSpec& match,
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

std::uint32_t ShadowChipFixture::addGroupEntry(const VaultKeyManager::MatchSpec& match,
                                               std::uint16_t session, std::uint32_t group) {
  manager->alloc(match, false);
  PdMatchSpec spec{session};
  std::uint32_t handle = 0;
  EXPECT_EQ(pd->p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_with_selector(
                kSession, kAllPipes, &spec, group, &handle),
            0);
  return handle;
}

std::uint32_t ShadowChipFixture::setDefaultEntry(const VaultKeyManager::MatchSpec& match,
                                                 std::uint32_t member) {
  manager->alloc(match, false);
  std::uint32_t handle = 0;
  EXPECT_EQ(pd->p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry(kSession, kAllPipes,
                                                                            member, &handle),
            0);
  return handle;
}

VaultKeyManager::MatchSpec ShadowChipFixture::newMatch() {
  return Vel::allocate<BfnTable::MatchSpecBase>();
}

std::vector<EntryConfig> ShadowChipFixture::entryRecords() const {
  return walkShadow(manager->mbbVaultTableConfig()).records;
}

std::vector<AdtEntryConfig> ShadowChipFixture::memberRecords() const {
  return walkShadow(manager->adtVaultTableConfig()).records;
}

std::vector<SelGrpEntryConfig> ShadowChipFixture::groupRecords() const {
  return walkShadow(manager->selGrpVaultTableConfig()).records;
}

std::size_t ShadowChipFixture::intents() const {
  return manager->entryShadow()->intents().size() + manager->memberShadow()->intents().size() +
         manager->groupShadow()->intents().size();
}

void ShadowChipFixture::useNamedChip() {
  chipName = base.str() + "-chip";
  chipsim().unlink(chipName.c_str());
  ASSERT_EQ(chipsim().attach(chipName.c_str()), 0);
}

int ShadowChipFixture::inChild(const std::function<int()>& body) {
  pid_t child = fork();
  if (child == 0) {
    _exit(body());
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) {
      return -1000;
    }
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

std::size_t ShadowChipFixture::expectRecordsMatchChip(const VaultKeyManager& keys) const {
  const ChipContents chip = ChipContents::read();
  EXPECT_TRUE(keys.entryShadow()->intents().empty());
  EXPECT_TRUE(keys.memberShadow()->intents().empty());
  EXPECT_TRUE(keys.groupShadow()->intents().empty());
  std::set<std::uint32_t> recorded;
  bool defaultRecorded = false;
  for (const EntryConfig& record : keys.entryShadow()->records()) {
    if (shadowOpOf(record.opId()) == ShadowOp::defaultEntrySet) {
      EXPECT_EQ(chip.defaultEntry, record.entryHandle()) << "default entry record";
      defaultRecorded = true;
      continue;
    }
    auto entry = chip.entries.find(record.entryHandle());
    if (entry == chip.entries.end()) {
      ADD_FAILURE() << "record of entry " << record.entryHandle() << " names no entry";
    } else {
      EXPECT_EQ(entry->second, record.ingMirrorMdMirrorSession())
          << "record of entry " << record.entryHandle();
    }
    recorded.insert(record.entryHandle());
  }
  for (const auto& [handle, session] : chip.entries) {
    EXPECT_TRUE(recorded.count(handle))
        << "entry " << handle << " (mirror session " << session << ") has no record";
  }
  EXPECT_EQ(chip.defaultEntry.has_value(), defaultRecorded) << "default entry";
  std::size_t unrecorded = chip.members.size() + chip.groups.size();
  for (const AdtEntryConfig& record : keys.memberShadow()->records()) {
    EXPECT_TRUE(chip.members.count(record.memberHandle()))
        << "record of member " << record.memberHandle() << " names no member";
    unrecorded -= chip.members.count(record.memberHandle());
  }
  for (const SelGrpEntryConfig& record : keys.groupShadow()->records()) {
    EXPECT_TRUE(chip.groups.count(record.groupHandle()))
        << "record of group " << record.groupHandle() << " names no group";
    unrecorded -= chip.groups.count(record.groupHandle());
  }
  return unrecorded;
}

std::size_t ShadowChipFixture::chipObjects() {
  const ChipContents chip = ChipContents::read();
  return chip.entries.size() + chip.members.size() + chip.groups.size() +
         (chip.defaultEntry ? 1 : 0);
}

std::size_t ShadowChipFixture::recordCount(const VaultKeyManager& keys) {
  return keys.entryShadow()->records().size() + keys.memberShadow()->records().size() +
         keys.groupShadow()->records().size();
}

std::string ShadowChipFixture::lastLine() {
  std::uint32_t count = chipsim().logCount();
  const char* line = count ? chipsim().logLine(count - 1) : nullptr;
  return line ? line : "";
}

std::int64_t ShadowChipFixture::calls(const std::string& function) {
  return chipsim().calls(function.c_str());
}

}  // namespace shadow_test
