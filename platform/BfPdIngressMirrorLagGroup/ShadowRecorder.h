#pragma once

#include <cstdint>
#include <variant>

#include "BfPdIngressMirrorLagGroup/ShadowCall.h"
#include "BfPdIngressMirrorLagGroup/ShadowCallStep.h"
#include "BfPdIngressMirrorLagGroup/ShadowStep.h"
#include "MbbVaultKey/VaultKeyManager.h"
#include "Pd/KestroSwitchPd.h"
#include "Pd/PipeStatus.h"
#include "Vel/Ptr.h"

namespace BfPdIngressMirrorLagGroup {

// Keeps the shadow tables of a key manager in step with the objects that the
// PD calls create and delete in the chip.
//
// A creating call (entry add, default entry set, member add, group create) is
// recorded under the key the key manager allocated for its object just before
// (alloc(), allocAnon()): an intent of the record is written before the call;
// when the call succeeds it is finished with the new handle, when it fails the
// record it replaced comes back (or the intent goes). A deleting call
// (table_delete, table_reset_default_entry, del_member, del_group) of an
// object with a record turns the record into an intent first; success removes
// it, failure restores it. A process killed anywhere in between thus leaves an
// intent, which ShadowReconciler settles against the chip.
//
// Recording rules: an entry added without an alloc() is recorded under a new
// key; a member or group created without an allocAnon() is not recorded (it
// has no id to be found by); a delete of an object without a record records
// nothing. The default entry has one record: setting it replaces whatever
// record the default entry had, under any key (found through the entry
// table's index of default-entry records, which the key manager makes).
//
// Errors: a shadow table that cannot take the intent (full) raises
// Vel::RangeException before the chip is called, so the call does not happen.
// A failure to finish a record after the call is counted
// (unfinishedRecords()) and leaves the intent for reconciliation.
class ShadowRecorder {
 public:
  using Probe = void (*)(ShadowCallStep);

  const Vel::Ptr<MbbVaultKey::VaultKeyManager>& vaultKeyManager() const noexcept {
    return vaultKeyManager_;
  }
  void vaultKeyManagerIs(Vel::Ptr<MbbVaultKey::VaultKeyManager> manager) noexcept {
    vaultKeyManager_ = std::move(manager);
  }
  // True when calls are recorded: a key manager with shadow tables is set.
  bool isRecording() const noexcept {
    return vaultKeyManager_ != nullptr && vaultKeyManager_->hasShadowTables();
  }
  std::uint64_t unfinishedRecords() const noexcept { return unfinishedRecords_; }
  // Lets a test stop the process at a given point of every recorded call.
  void probeIs(Probe probe) noexcept { probe_ = probe; }

  // Makes the PD call fn(args...) that `call` describes, recording it.
  template <class Fn, class... Args>
  pipe_status call(const ShadowCall& call, Fn fn, Args... args) {
    Step step = begin(call);
    probe(ShadowCallStep::intentWritten);
    pipe_status status = fn(args...);
    probe(ShadowCallStep::chipCalled);
    finish(step, status == PIPE_STATUS_SUCCESS);
    return status;
  }

 private:
  using EntryKey = MbbVaultKey::VaultKeyManager::EntryKey;
  using EntryConfig = MbbVaultKey::VaultKeyManager::EntryConfig;
  using AdtEntryConfig = MbbVaultKey::VaultKeyManager::AdtEntryConfig;
  using SelGrpEntryConfig = MbbVaultKey::VaultKeyManager::SelGrpEntryConfig;
  // The step of a call that is not recorded. Its constructor is provided, so
  // that a new step (one per recorded PD call) is not zeroed whole first.
  struct Unrecorded {
    Unrecorded() noexcept {}
  };
  using Step = std::variant<Unrecorded, ShadowStep<EntryConfig>, ShadowStep<AdtEntryConfig>,
                            ShadowStep<SelGrpEntryConfig>>;

  void probe(ShadowCallStep step) const {
    if (probe_ != nullptr) {
      probe_(step);
    }
  }
  // The steps are filled where call() keeps them, rather than built and
  // copied: they are on the path of every recorded PD call.
  Step begin(const ShadowCall& call);
  void finish(const Step& step, bool succeeded) noexcept;

  void beginEntryAdd(const ShadowCall& call, Step& step);
  void beginDefaultEntrySet(const ShadowCall& call, Step& step);
  void beginMemberAdd(const ShadowCall& call, Step& step);
  void beginGroupCreate(const ShadowCall& call, Step& step);
  // A step of a call in `table`, with nothing replaced yet.
  template <class R>
  static ShadowStep<R>& stepIn(Step& step, MbbVaultKey::ShadowTable<R>& table,
                               const std::uint32_t* newHandle);
  // Starts the delete of the finished record of `handle`, if there is one.
  template <class R>
  static void beginDelete(MbbVaultKey::ShadowTable<R>& table, std::uint32_t handle,
                          Vault::MbbPostcodef::ShadowOp op, Step& step);
  // Starts the delete of `record`.
  template <class R>
  static void beginDeleteOf(MbbVaultKey::ShadowTable<R>& table, const R& record,
                            Vault::MbbPostcodef::ShadowOp op, Step& step);
  template <class R>
  static void finishStep(const ShadowStep<R>& step, bool succeeded);

  Vel::Ptr<MbbVaultKey::VaultKeyManager> vaultKeyManager_;
  std::uint64_t unfinishedRecords_ = 0;
  Probe probe_ = nullptr;
};

}  // namespace BfPdIngressMirrorLagGroup
