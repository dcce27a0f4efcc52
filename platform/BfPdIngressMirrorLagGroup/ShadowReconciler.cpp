#include "BfPdIngressMirrorLagGroup/ShadowReconciler.h"

#include "Pd/PipeStatus.h"

namespace BfPdIngressMirrorLagGroup {

namespace {

using Vault::MbbPostcodef::createOpOf;
using Vault::MbbPostcodef::isCreate;
using Vault::MbbPostcodef::opIdOf;
using Vault::MbbPostcodef::ShadowOp;
using Vault::MbbPostcodef::shadowOpOf;

constexpr pipe_status kSuccess = PIPE_STATUS_SUCCESS;
constexpr pipe_status kNotFound = PIPE_STATUS_NOT_FOUND;
constexpr pipe_status kInUse = PIPE_STATUS_IN_USE;

// The op a finished record of an intent carries: the intent's own op for a
// create, the op that created the object for a delete.
ShadowOp finishedOpOf(ShadowOp op) {
  return isCreate(op) ? op : createOpOf(op);
}

}  // namespace

ShadowReconciliation ShadowReconciler::reconcile() {
  done_ = ShadowReconciliation();
  if (!manager_.hasShadowTables()) {
    return done_;
  }
  for (const EntryConfig& intent : manager_.entryShadow()->intents()) {
    settleEntry(intent);
  }
  for (const AdtEntryConfig& intent : manager_.memberShadow()->intents()) {
    settleMember(intent);
  }
  for (const SelGrpEntryConfig& intent : manager_.groupShadow()->intents()) {
    settleGroup(intent);
  }
  return done_;
}

void ShadowReconciler::settleEntry(const EntryConfig& intent) {
  switch (shadowOpOf(intent.opId())) {
    case ShadowOp::entryAdd:
      return settleEntryAdd(intent);
    case ShadowOp::defaultEntrySet:
      return settleDefaultEntrySet(intent);
    case ShadowOp::entryDelete:
    case ShadowOp::defaultEntryReset:
      return settleEntryDelete(intent);
    default:
      ++done_.unsettled;
  }
}

void ShadowReconciler::settleEntryAdd(const EntryConfig& intent) {
  MbbVaultKey::ShadowTable<EntryConfig>& table = *manager_.entryShadow();
  p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t match{intent.ingMirrorMdMirrorSession()};
  std::uint32_t handle = 0;
  pipe_status status =
      pd_.p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_to_entry_hdl.resolved()(
          pd_.sessionId(), {deviceId_, intent.devPipeId()}, &match, &handle);
  if (status == kSuccess) {
    if (table.keyOfHandle(handle)) {
      remove(table, intent);
      return;
    }
    EntryConfig found = intent;
    found.handleIs(handle);
    complete(table, found);
  } else if (status != kNotFound) {
    ++done_.unsettled;
  } else if (intent.handle() != 0 && readEntry(intent.handle()) == kSuccess) {
    restore(table, intent);
  } else {
    remove(table, intent);
  }
}

void ShadowReconciler::settleDefaultEntrySet(const EntryConfig& intent) {
  MbbVaultKey::ShadowTable<EntryConfig>& table = *manager_.entryShadow();
  pipe_status status =
      intent.handle() != 0
          ? readEntry(intent.handle())
          : pd_.p4_pd_kestro_switch_ingressMirrorLagGroup_table_reset_default_entry.resolved()(
                pd_.sessionId(), {deviceId_, intent.devPipeId()});
  if (status == kSuccess && intent.handle() != 0) {
    complete(table, intent);
  } else if (status == kSuccess || status == kNotFound) {
    remove(table, intent);
  } else {
    ++done_.unsettled;
  }
}

void ShadowReconciler::settleEntryDelete(const EntryConfig& intent) {
  MbbVaultKey::ShadowTable<EntryConfig>& table = *manager_.entryShadow();
  pipe_status status = readEntry(intent.handle());
  if (status == kSuccess) {
    restore(table, intent);
  } else if (status == kNotFound) {
    remove(table, intent);
  } else {
    ++done_.unsettled;
  }
}

void ShadowReconciler::settleMember(const AdtEntryConfig& intent) {
  MbbVaultKey::ShadowTable<AdtEntryConfig>& table = *manager_.memberShadow();
  switch (shadowOpOf(intent.opId())) {
    case ShadowOp::memberAdd:
      return settleCreate(
          table, intent,
          intent.handle() == 0
              ? std::nullopt
              : std::optional(AdtEntryConfig(intent.key(), intent.opId(), intent.handle())));
    case ShadowOp::memberDelete:
      return settleDelete(table, intent,
                          pd_.p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member);
    default:
      ++done_.unsettled;
  }
}

void ShadowReconciler::settleGroup(const SelGrpEntryConfig& intent) {
  MbbVaultKey::ShadowTable<SelGrpEntryConfig>& table = *manager_.groupShadow();
  switch (shadowOpOf(intent.opId())) {
    case ShadowOp::groupCreate:
      return settleCreate(
          table, intent,
          intent.handle() == 0
              ? std::nullopt
              : std::optional(SelGrpEntryConfig(intent.key(), intent.opId(), intent.handle(),
                                                intent.maxGroupSize(), intent.devPipeId(), 0)));
    case ShadowOp::groupDelete:
      return settleDelete(table, intent,
                          pd_.p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group);
    default:
      ++done_.unsettled;
  }
}

template <class R>
void ShadowReconciler::settleCreate(MbbVaultKey::ShadowTable<R>& table, const R& intent,
                                    const std::optional<R>& replaced) {
  if (replaced) {
    restore(table, *replaced);
  } else {
    remove(table, intent);
  }
}

template <class R, class Delete>
void ShadowReconciler::settleDelete(MbbVaultKey::ShadowTable<R>& table, const R& intent,
                                    Delete remover) {
  pipe_status status = remover.resolved()(pd_.sessionId(), deviceId_, intent.handle());
  if (status == kSuccess || status == kNotFound) {
    remove(table, intent);
  } else if (status == kInUse) {
    restore(table, intent);
  } else {
    ++done_.unsettled;
  }
}

pipe_status ShadowReconciler::readEntry(std::uint32_t handle) const {
  p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t match{};
  std::uint32_t target = 0;
  bool isGroup = false;
  return pd_.p4_pd_kestro_switch_ingressMirrorLagGroup_get_entry.resolved()(
      pd_.sessionId(), deviceId_, handle, false, &match, &target, &isGroup);
}

template <class R>
void ShadowReconciler::complete(MbbVaultKey::ShadowTable<R>& table, const R& record) {
  table.recordIs(record);
  ++done_.completed;
}

template <class R>
void ShadowReconciler::restore(MbbVaultKey::ShadowTable<R>& table, R record) {
  record.opIdIs(opIdOf(finishedOpOf(shadowOpOf(record.opId()))));
  table.recordIs(record);
  ++done_.restored;
}

template <class R>
void ShadowReconciler::remove(MbbVaultKey::ShadowTable<R>& table, const R& intent) {
  table.recordDel(intent.key());
  ++done_.removed;
}

}  // namespace BfPdIngressMirrorLagGroup
