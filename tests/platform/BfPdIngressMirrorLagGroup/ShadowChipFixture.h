#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "BfPdIngressMirrorLagGroup/BfPdIngressMirrorLagGroupIntf.h"
#include "MbbVaultKey/VaultKeyManager.h"
#include "support/ChipsimLibrary.h"
#include "support/PdFunctionNames.h"
#include "support/ScratchShadowBase.h"

namespace shadow_test {

using EntryKey = Vault::MbbPostcodef::EntryKey;
using EntryConfig = Vault::MbbPostcodef::EntryConfig;
using AdtEntryConfig = BfnMbbShared::AdtEntryConfig;
using SelGrpEntryConfig = BfnMbbShared::SelGrpEntryConfig;
using ShadowOp = Vault::MbbPostcodef::ShadowOp;
using VaultKeyManager = MbbVaultKey::VaultKeyManager;
using PdIntf = BfPdIngressMirrorLagGroup::BfPdIngressMirrorLagGroupIntf;
using PdMatchSpec = p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t;
using PdActionSpec = p4_pd_kestro_switch_setLagMemberSelector_action_spec_t;

// A chip of 8 entries (the default entry's handle is 9), 8 members and 4
// groups of at most 8 members on 4 pipes; a key manager with shadow tables of
// 8, 8 and 4 records; and a PD interface object of session 7 on the chip's
// library that records into the manager's tables. The chip is private unless
// a test attaches the process to a named one.
class ShadowChipFixture : public testing::Test {
 protected:
  static constexpr p4_pd_device_target_t kAllPipes{0, P4_PD_ALL_PIPES};
  static constexpr std::uint32_t kSession = 7;
  static constexpr std::uint32_t kDefaultEntry = 9;

  void SetUp() override;
  void TearDown() override;

  // A new manager on the test's tables, as a restarted process makes it.
  Vel::Ptr<VaultKeyManager> attachManager() const;
  // Lets the fixture's manager (and the interface object bound to it) go, so
  // that another process can hold the shadow tables for writing.
  void releaseManager();
  // A new manager on the tables and an interface object bound to it, as a
  // restarted process makes them.
  void reattachManager();
  // A PD interface object on the chip's library, recording into `manager` (may be null).
  Vel::Ptr<PdIntf> pdFor(const Vel::Ptr<VaultKeyManager>& manager) const;

  // Calls through the interface object as the plug-in makes them: the key
  // first, then the PD call, which is expected to succeed. They give the
  // new handle.
  std::uint32_t addMember(std::uint32_t id, std::uint16_t selector);
  std::uint32_t createGroup(std::uint32_t id, std::uint32_t size);
  std::uint32_t addEntry(const VaultKeyManager::MatchSpec& match, std::uint16_t session,
                         std::uint32_t member, std::uint32_t pipe = P4_PD_ALL_PIPES);
  std::uint32_t addGroupEntry(const VaultKeyManager::MatchSpec& match, std::uint16_t session,
                              std::uint32_t group);
  std::uint32_t setDefaultEntry(const VaultKeyManager::MatchSpec& match, std::uint32_t member);

  static VaultKeyManager::MatchSpec newMatch();

  // The finished records as a plug-in reads them.
  std::vector<EntryConfig> entryRecords() const;
  std::vector<AdtEntryConfig> memberRecords() const;
  std::vector<SelGrpEntryConfig> groupRecords() const;
  // Intents left in any table.
  std::size_t intents() const;

  // Moves the process to a named chip of this test, removed at the end, so
  // that child processes share it.
  void useNamedChip();
  // Runs `body` in a child process; gives minus the signal that ended it, or
  // its exit status.
  static int inChild(const std::function<int()>& body);

  // Checks that the records of `keys` and the objects in the chip agree: no
  // intent is left, every record names an object in the chip (an entry with
  // its mirror session), every match entry and a set default entry have a
  // record. Gives the members and groups in the chip without a record.
  std::size_t expectRecordsMatchChip(const VaultKeyManager& keys) const;
  // Objects in the chip (a set default entry counted), records in the tables.
  static std::size_t chipObjects();
  static std::size_t recordCount(const VaultKeyManager& keys);

  static std::string lastLine();
  static std::int64_t calls(const std::string& function);

  static EntryKey anonKey(std::uint32_t id) { return EntryKey(VaultKeyManager::kAnonHigh, id); }

  ScratchShadowBase base{"pd"};
  MbbVaultKey::ShadowCapacity capacity{8, 8, 4};
  void* chipHandle = nullptr;
  std::string chipName;
  Vel::Ptr<VaultKeyManager> manager;
  Vel::Ptr<PdIntf> pd;
};

}  // namespace shadow_test
