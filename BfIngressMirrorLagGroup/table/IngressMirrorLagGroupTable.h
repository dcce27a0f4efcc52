#pragma once

#include "BfIngressMirrorLagGroup/hw/IngressMirrorLagGroupTableHelper.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMatchSpec.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupTableEntry.h"
#include "BfnTable/BfnSdkHandle.h"
#include "BfnTableStatusManager/StatusManager.h"
#include "MbbVaultKey/VaultKeyManager.h"
#include "Vel/Entity.h"
#include "Vel/Ptr.h"
#include "Vel/TypeRecord.h"

namespace BfIngressMirrorLagGroup {

// The ingressMirrorLagGroup match table: each entry maps a mirror session to an
// action-profile member or a selector group. The table keeps no list of its
// own: the chip holds the entries and the helper's handle registry indexes
// them by match-spec object. One match-spec object, defaultMatchSpec, stands
// for the table's default entry and is programmed with the default-entry PD
// functions. Failed PD calls throw the BfTable exceptions and leave the
// registry as it was; missing handles stop the process with an assertion.
class IngressMirrorLagGroupTable : public Vel::Entity {
 public:
  using MatchSpec = Vel::Ptr<const IngressMirrorLagGroupMatchSpec>;

  // `vaultKeyManager` and `statusManager` may be null.
  IngressMirrorLagGroupTable(Vel::Ptr<IngressMirrorLagGroupTableHelper> helper,
                             Vel::Ptr<MbbVaultKey::VaultKeyManager> vaultKeyManager,
                             Vel::Ptr<BfnTableStatusManager::StatusManager> statusManager);
  ~IngressMirrorLagGroupTable() override;

  // The table has no name of its own.
  Vel::Name name() const override { return Vel::Name(); }
  static const Vel::TypeRecord& typeRecord();
  const Vel::TypeRecord* fwkType() const override;

  const Vel::Ptr<IngressMirrorLagGroupTableHelper>& helper() const noexcept { return helper_; }
  const Vel::Ptr<MbbVaultKey::VaultKeyManager>& vaultKeyManager() const noexcept {
    return vaultKeyManager_;
  }
  const Vel::Ptr<BfnTableStatusManager::StatusManager>& statusManager() const noexcept {
    return statusManager_;
  }
  const MatchSpec& defaultMatchSpec() const noexcept { return defaultMatchSpec_; }

  // Programs one entry: adds it when the registry has no handle for its match
  // object, points it at its new member or group otherwise; the default match
  // spec (re)sets the default entry.
  void entryIs(const IngressMirrorLagGroupTableEntry& entry);
  // Deletes one entry (resets the default entry for the default match spec) and
  // gives an empty entry back.
  IngressMirrorLagGroupTableEntry entryDel(
      const Vel::Ptr<const IngressMirrorLagGroupMatchSpec>& match);
  // The entry programmed for this match object, read back from the chip; empty
  // for a null or unprogrammed match.
  IngressMirrorLagGroupTableEntry entry(
      const Vel::Ptr<const IngressMirrorLagGroupMatchSpec>& match) const;
  // The entry with this SDK handle, read back from the chip with a new match
  // spec; empty when the chip does not know the handle.
  IngressMirrorLagGroupTableEntry entryByHandle(BfnTable::BfnSdkEntryHandle handle) const;

  // The match spec of the default entry, made on first use.
  MatchSpec defaultMatchSpecIs();
  // Forgets the default match spec; gives it back (null when there was none).
  MatchSpec defaultMatchSpecDel();

 private:
  void allocShadowKey(const MatchSpec& match) const;

  void addEntry(const MatchSpec& match, BfnTable::BfnSdkMemberHandle mbr_hdl);
  void addEntryWithSelector(const MatchSpec& match, BfnTable::BfnSdkGroupHandle grp_hdl);
  void modifyEntry(BfnTable::BfnSdkEntryHandle entry_hdl, BfnTable::BfnSdkMemberHandle mbr_hdl);
  void modifyEntryWithSelector(BfnTable::BfnSdkEntryHandle entry_hdl,
                               BfnTable::BfnSdkGroupHandle grp_hdl);
  void setDefaultEntry(BfnTable::BfnSdkMemberHandle mbr_hdl);
  void setDefaultEntryWithSelector(BfnTable::BfnSdkGroupHandle grp_hdl);
  void tableDelete(const MatchSpec& match, BfnTable::BfnSdkEntryHandle entry_hdl);
  void tableResetDefaultEntry(const MatchSpec& match);

  IngressMirrorLagGroupMemberOrGroupOrNone memberOf(BfnTable::BfnSdkEntryHandle handle,
                                                    BfnTable::BfnSdkMemberHandle mbr_hdl) const;
  IngressMirrorLagGroupMemberOrGroupOrNone groupOf(BfnTable::BfnSdkEntryHandle handle,
                                                   BfnTable::BfnSdkGroupHandle grp_hdl) const;

  Vel::Ptr<IngressMirrorLagGroupTableHelper> helper_;
  Vel::Ptr<MbbVaultKey::VaultKeyManager> vaultKeyManager_;
  Vel::Ptr<BfnTableStatusManager::StatusManager> statusManager_;
  MatchSpec defaultMatchSpec_;
};

}  // namespace BfIngressMirrorLagGroup
