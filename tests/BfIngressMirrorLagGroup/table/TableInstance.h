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
// session 1, the chip model's library) and refills the registry's member and
// group handles from the member and group shadow tables, as the action-profile
// side of the plug-in does. apply() then programs a configuration as a host
// re-applies it: through the registry's adopted match specs where it has one
// for a session, with new match specs otherwise.
class TableInstance {
 public:
  static constexpr std::uint8_t kDevice = 0;
  static constexpr std::uint16_t kPipe = 0xFFFF;
  static constexpr std::uint32_t kSession = 1;

  // `attached`, when given, is called with the re-attached key manager before
  // anything is settled or read.
  using Attached = std::function<void(MbbVaultKey::VaultKeyManager&)>;
  TableInstance(const std::string& baseName, MbbVaultKey::ShadowCapacity capacity, void* chipHandle,
                const Attached& attached = {});

  // Programs `config`: members and groups the registry lacks (recorded under
  // their ids), then every entry and the default entry.
  void apply(const WantedConfig& config);
  // One random change of an entry of `config`, as a host in service makes
  // them: another member or group, a delete and a new add, or a new default.
  void change(const WantedConfig& config, std::uint32_t random);

  // The registry's match specs of ordinary entries by mirror session.
  std::map<std::uint16_t, IngressMirrorLagGroupTable::MatchSpec> matchesBySession() const;
  // The registry's handles of ordinary entries by mirror session.
  std::map<std::uint16_t, std::uint32_t> handlesBySession() const;

  const Vel::Ptr<MbbVaultKey::VaultKeyManager>& keys() const noexcept { return keys_; }
  const Vel::Ptr<IngressMirrorLagGroupTable>& table() const noexcept { return table_; }
  IngressMirrorLagGroupTableHandles& registry() const { return *table_->helper()->sdkHandles(); }
  IngressMirrorLagGroupTableHelper::PdLib& pd() const { return *table_->helper()->pdLib(); }
  const BfPdIngressMirrorLagGroup::ShadowReconciliation& settled() const noexcept {
    return settled_;
  }

 private:
  void refillActionProfile();
  void memberIs(std::uint32_t id, std::uint16_t selector);
  void groupIs(std::uint32_t id, std::uint32_t size);
  void entryIs(std::uint16_t session, IngressMirrorLagGroupMemberOrGroupOrNone target);

  Vel::Ptr<MbbVaultKey::VaultKeyManager> keys_;
  BfPdIngressMirrorLagGroup::ShadowReconciliation settled_;
  Vel::Ptr<IngressMirrorLagGroupTable> table_;
  std::map<std::uint16_t, IngressMirrorLagGroupTable::MatchSpec> matches_;
};

}  // namespace BfIngressMirrorLagGroup
