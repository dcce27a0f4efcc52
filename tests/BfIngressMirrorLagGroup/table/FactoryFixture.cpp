#include "FactoryFixture.h"

#include "Pd/PipeStatus.h"
#include "Vault/MbbPostcodef/ShadowOp.h"
#include "Vel/Allocate.h"

namespace BfIngressMirrorLagGroup {

namespace {

using Vault::MbbPostcodef::EntryKey;
using Vault::MbbPostcodef::OpId;
using Vault::MbbPostcodef::ShadowOp;

using chipsim_test::kSetProperty;

constexpr std::uint32_t kAllPipes = P4_PD_ALL_PIPES;

}  // namespace

void FactoryFixture::SetUp() {
  TableFixture::SetUp();
  // The fixture's own table goes; the factory makes the ones tested here.
  table = nullptr;
  helper = nullptr;
  status = Vel::allocate<BfnTableStatusManager::StatusManager>();
  // The chip keeps the scope of a table holding entries: entries made before
  // a table on pipe 2 is made must already be in its per-pipe scope.
  ASSERT_EQ(chip.setProperty(kSession, kDevice, P4_PD_TABLE_PROPERTY_ENTRY_SCOPE,
                             P4_PD_ENTRY_SCOPE_SINGLE_PIPE),
            0);
}

void FactoryFixture::TearDown() {
  status = nullptr;
  TableFixture::TearDown();
}

void FactoryFixture::makeTable(Vel::Ptr<MbbVaultKey::VaultKeyManager> keys,
                               Vel::Ptr<BfnTableStatusManager::StatusManager> statusManager,
                               std::uint16_t pipe) {
  table = ingressMirrorLagGroupTableFactory(std::move(keys), std::move(statusManager), chipHandle,
                                            kSession, kDevice, pipe, CHIPSIM_LIBRARY);
  helper = table->helper();
}

Vel::Ptr<RecordingKeyManager> FactoryFixture::shadowKeys() {
  return Vel::allocate<RecordingKeyManager>(base.str(), capacity);
}

std::uint32_t FactoryFixture::chipMemberIs(std::uint16_t selector) {
  const p4_pd_kestro_switch_setLagMemberSelector_action_spec_t action{selector};
  std::uint32_t member = 0;
  EXPECT_EQ(chip.addMember(kSession, {kDevice, kPipe}, &action, &member), PIPE_STATUS_SUCCESS);
  return member;
}

std::uint32_t FactoryFixture::chipEntryIs(std::uint16_t session) {
  const std::uint32_t member = chipMemberIs(session);
  const p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t match{session};
  std::uint32_t entry = 0;
  EXPECT_EQ(chip.addEntry(kSession, {kDevice, kPipe}, &match, member, &entry), PIPE_STATUS_SUCCESS);
  return entry;
}

void FactoryFixture::entryRecordIs(const MbbVaultKey::VaultKeyManager& keys, std::uint64_t key,
                                   std::uint32_t handle, std::uint16_t session) {
  keys.entryShadow()->recordIs(EntryConfig(EntryKey::fromValue(key),
                                           Vault::MbbPostcodef::opIdOf(ShadowOp::entryAdd), handle,
                                           session, kPipe));
}

void FactoryFixture::defaultRecordIs(const MbbVaultKey::VaultKeyManager& keys, std::uint64_t key,
                                     std::uint32_t handle) {
  keys.entryShadow()->recordIs(EntryConfig(EntryKey::fromValue(key),
                                           Vault::MbbPostcodef::opIdOf(ShadowOp::defaultEntrySet),
                                           handle, 0, kPipe));
}

int FactoryFixture::sessionOfHandle(std::uint32_t handle) const {
  for (auto slot = registry().entries().begin(); slot; ++slot) {
    if (slot.value() == handle)
      return slot.key()->ingMirrorMdMirrorSession();
  }
  return -1;
}

std::vector<std::string> FactoryFixture::statusCalls() const {
  std::vector<std::string> texts;
  for (const auto& call : status->calls())
    texts.push_back(call.text());
  return texts;
}

std::string FactoryFixture::setPropertyLine(std::uint32_t value, int status) {
  return kSetProperty + "(sess=7, dev=3, property=1, value=" + std::to_string(value) +
         ") = " + std::to_string(status);
}

std::string pipeName(const testing::TestParamInfo<std::uint16_t>& info) {
  return info.param == kAllPipes ? "AllPipes" : "Pipe" + std::to_string(info.param);
}

}  // namespace BfIngressMirrorLagGroup
