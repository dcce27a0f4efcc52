#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "BfIngressMirrorLagGroup/table/IngressMirrorLagGroupTableFactory.h"
#include "RecordingKeyManager.h"
#include "TableFixture.h"
#include "support/ScratchShadowBase.h"

namespace BfIngressMirrorLagGroup {

// Tables made by the factory on the chip of TableFixture (device 3, session 7,
// the chip model's library), on pipe 2 unless a test names another. The
// fixture's own table is dropped: `table` and `helper` are the factory's.
// Shadow tables, when a test wants them, live under a scratch base name.
class FactoryFixture : public TableFixture {
 protected:
  using EntryConfig = Vault::MbbPostcodef::EntryConfig;
  using EntryKey = Vault::MbbPostcodef::EntryKey;

  void SetUp() override;
  void TearDown() override;

  // Calls the factory with the chip's library and this fixture's device and
  // session; `table` and `helper` become the new table's.
  void makeTable(Vel::Ptr<MbbVaultKey::VaultKeyManager> keys,
                 Vel::Ptr<BfnTableStatusManager::StatusManager> status, std::uint16_t pipe = kPipe);

  // A recording key manager with shadow tables under the scratch base.
  Vel::Ptr<RecordingKeyManager> shadowKeys();

  // A member with selector `selector` made in the chip directly, unknown to
  // the registry; gives its handle.
  std::uint32_t chipMemberIs(std::uint16_t selector);
  // An entry of `session` added in the chip directly (on pipe 2), pointing
  // at a member made for it; gives the entry's handle.
  std::uint32_t chipEntryIs(std::uint16_t session);
  // A finished match-entry record, written into `keys`'s shadow table as the
  // PD object writes it.
  static void entryRecordIs(const MbbVaultKey::VaultKeyManager& keys, std::uint64_t key,
                            std::uint32_t handle, std::uint16_t session);
  static void defaultRecordIs(const MbbVaultKey::VaultKeyManager& keys, std::uint64_t key,
                              std::uint32_t handle);

  // The mirror session of the registry's match spec holding `handle`; -1 when
  // no match spec holds it.
  int sessionOfHandle(std::uint32_t handle) const;
  // The status manager's calls as text.
  std::vector<std::string> statusCalls() const;

  // "p4_pd_..._set_property(sess=7, dev=3, property=1, value=<value>) = <status>".
  static std::string setPropertyLine(std::uint32_t value, int status = 0);

  shadow_test::ScratchShadowBase base{"factory"};
  MbbVaultKey::ShadowCapacity capacity{64, 16, 8};
  Vel::Ptr<BfnTableStatusManager::StatusManager> status;
};

// The text gtest shows for a pipe id: "Pipe2", "AllPipes".
std::string pipeName(const testing::TestParamInfo<std::uint16_t>& info);

}  // namespace BfIngressMirrorLagGroup
