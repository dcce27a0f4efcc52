#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "BfPdIngressMirrorLagGroup/ShadowReconciliation.h"
#include "WantedConfig.h"

namespace BfIngressMirrorLagGroup {

// One instance of a host of the table, started as a host starts after a
// restart: it re-attaches the shadow tables of a base name, settles them
// against the chip, makes the table with the factory (device 0, all pipes,
// session 1, the chip model's library), then the action-profile entity with
// its factory, which refills the registry's member and group handles from the
// shadow tables; the state machine's session handle is the table's session.
// apply() then programs a configuration as a host re-applies it: members and
// groups through the action-profile entity (adopted members are modified,
// groups created anew), entries through the registry's adopted match specs
// where it has one for a session, with new match specs otherwise.
class TableInstance {
 public:
  static constexpr std::uint8_t kDevice = 0;
  static constexpr std::uint16_t kPipe = P4_PD_ALL_PIPES;
  static constexpr std::uint32_t kSession = 1;

  // `attached`, when given, is called with the re-attached key manager before
  // anything is settled or read.
  using Attached = std::function<void(MbbVaultKey::VaultKeyManager&)>;
  TableInstance(const std::string& baseName, MbbVaultKey::ShadowCapacity capacity, void* chipHandle,
                const Attached& attached = {});
  // Goes as a killed instance goes, leaving the chip and the shadow tables as
  // they are: the state machine, which the factory keeps for the life of a
  // process, is let go without deleting anything, so that the test process
  // can start the next instance.
  ~TableInstance();
  TableInstance(const TableInstance&) = delete;
  TableInstance& operator=(const TableInstance&) = delete;

  // Programs `config`: its members and groups, then every entry and the
  // default entry.
  void apply(const WantedConfig& config);
  // One random change of `config`, as a host in service makes them: an entry
  // to another member or group, an entry deleted and added anew, a new
  // default, or a group member switched active or inactive.
  void change(const WantedConfig& config, std::uint32_t random);

  // The registry's match specs of ordinary entries by mirror session.
  std::map<std::uint16_t, IngressMirrorLagGroupTable::MatchSpec> matchesBySession() const;
  // The registry's handles of ordinary entries by mirror session.
  std::map<std::uint16_t, std::uint32_t> handlesBySession() const;

  const Vel::Ptr<MbbVaultKey::VaultKeyManager>& keys() const noexcept { return keys_; }
  const Vel::Ptr<IngressMirrorLagGroupTable>& table() const noexcept { return table_; }
  const Vel::Ptr<IngressMirrorLagGroupActionProfile>& profile() const noexcept { return profile_; }
  // The state machine that follows the profile (the factory keeps it).
  IngressMirrorLagGroupActionProfileSm& stateMachine() const;
  IngressMirrorLagGroupTableHandles& registry() const { return *table_->helper()->sdkHandles(); }
  IngressMirrorLagGroupTableHelper::PdLib& pd() const { return *table_->helper()->pdLib(); }
  const BfPdIngressMirrorLagGroup::ShadowReconciliation& settled() const noexcept {
    return settled_;
  }

 private:
  void memberIs(std::uint32_t id, std::uint16_t selector);
  void groupIs(std::uint32_t id, std::uint32_t size, const WantedConfig::GroupMembers& members);
  void toggleGroupMember(std::uint32_t random);
  void entryIs(std::uint16_t session, IngressMirrorLagGroupMemberOrGroupOrNone target);

  Vel::Ptr<MbbVaultKey::VaultKeyManager> keys_;
  BfPdIngressMirrorLagGroup::ShadowReconciliation settled_;
  Vel::Ptr<IngressMirrorLagGroupTable> table_;
  Vel::Ptr<IngressMirrorLagGroupActionProfile> profile_;
  std::map<std::uint16_t, IngressMirrorLagGroupTable::MatchSpec> matches_;
};

}  // namespace BfIngressMirrorLagGroup
