#pragma once

#include "BfPdIngressMirrorLagGroup/BfPdIngressMirrorLagGroupIntf.h"
#include "BfPdIngressMirrorLagGroup/ShadowReconciliation.h"
#include "MbbVaultKey/VaultKeyManager.h"

namespace BfPdIngressMirrorLagGroup {

// Settles the intents that a process killed in the middle of a recorded PD
// call left in a key manager's shadow tables, so that afterwards every record
// names an object in the chip and every match entry in the chip has a record.
// The host runs it on the re-attached key manager after a restart, before the
// table factories read the tables. It uses the PD functions of `pd` as
// resolved (recording nothing) with pd's session, on device `deviceId`.
//
// Entries (the chip can read them back):
// - an unfinished add is looked for by its match key and pipe
//   (..._match_spec_to_entry_hdl): found, the record is finished with the
//   entry's handle, unless another record has that handle already; not found,
//   the record it replaced comes back if that entry still exists, else it goes;
// - an unfinished default-entry set whose default entry had a handle is
//   finished if that entry is set, removed otherwise; one that had no handle
//   is rolled back: the default entry is reset and the record removed;
// - an unfinished delete or reset is restored when the entry is still there
//   (..._get_entry) and removed when it is gone.
// Members and groups (the chip cannot read them back):
// - an unfinished add or create restores the record it replaced, if any, else
//   it goes; a member or group that the call did make stays in the chip
//   without a record (at most one per killed process);
// - an unfinished delete is finished: the delete is made again; success or an
//   unknown handle (6) removes the record, a member or group still in use (16)
//   gets its record back.
// Any other answer of the chip leaves the intent as it is (unsettled), for a
// later run.
class ShadowReconciler {
 public:
  ShadowReconciler(MbbVaultKey::VaultKeyManager& manager, const BfPdIngressMirrorLagGroupIntf& pd,
                   p4_pd_device_id_t deviceId) noexcept
      : manager_(manager), pd_(pd), deviceId_(deviceId) {}

  // Settles every intent of the manager's shadow tables (nothing without shadow tables).
  ShadowReconciliation reconcile();

 private:
  using EntryConfig = MbbVaultKey::VaultKeyManager::EntryConfig;
  using AdtEntryConfig = MbbVaultKey::VaultKeyManager::AdtEntryConfig;
  using SelGrpEntryConfig = MbbVaultKey::VaultKeyManager::SelGrpEntryConfig;

  void settleEntry(const EntryConfig& intent);
  void settleEntryAdd(const EntryConfig& intent);
  void settleDefaultEntrySet(const EntryConfig& intent);
  void settleEntryDelete(const EntryConfig& intent);
  void settleMember(const AdtEntryConfig& intent);
  void settleGroup(const SelGrpEntryConfig& intent);
  // Settles an unfinished member or group delete by deleting again.
  template <class R, class Delete>
  void settleDelete(MbbVaultKey::ShadowTable<R>& table, const R& intent, Delete remover);
  // Settles an unfinished member or group create: `replaced` back, or nothing.
  template <class R>
  void settleCreate(MbbVaultKey::ShadowTable<R>& table, const R& intent,
                    const std::optional<R>& replaced);

  pipe_status readEntry(std::uint32_t handle) const;
  template <class R>
  void complete(MbbVaultKey::ShadowTable<R>& table, const R& record);
  template <class R>
  void restore(MbbVaultKey::ShadowTable<R>& table, R record);
  template <class R>
  void remove(MbbVaultKey::ShadowTable<R>& table, const R& intent);

  MbbVaultKey::VaultKeyManager& manager_;
  const BfPdIngressMirrorLagGroupIntf& pd_;
  p4_pd_device_id_t deviceId_;
  ShadowReconciliation done_;
};

}  // namespace BfPdIngressMirrorLagGroup
