#include "BfPdIngressMirrorLagGroup/ShadowRecorder.h"

namespace BfPdIngressMirrorLagGroup {

namespace {

using Vault::MbbPostcodef::EntryConfig;
using Vault::MbbPostcodef::opIdOf;
using Vault::MbbPostcodef::ShadowOp;
using Vault::MbbPostcodef::shadowOpOf;

bool isDefaultEntry(const EntryConfig& record) {
  return shadowOpOf(record.opId()) == ShadowOp::defaultEntrySet;
}

template <class R>
std::uint32_t handleOf(const std::optional<R>& record) {
  return record ? record->handle() : 0;
}

// The finished record of a chip handle in `table`, if any.
template <class R>
std::optional<R> recordOfHandle(const MbbVaultKey::ShadowTable<R>& table, std::uint32_t handle) {
  std::optional<Vault::MbbPostcodef::EntryKey> key = table.keyOfHandle(handle);
  return key ? table.record(*key) : std::nullopt;
}

}  // namespace

ShadowRecorder::Step ShadowRecorder::begin(const ShadowCall& call) {
  MbbVaultKey::VaultKeyManager& manager = *vaultKeyManager_;
  switch (call.op) {
    case ShadowOp::entryAdd:
      return beginEntryAdd(call);
    case ShadowOp::defaultEntrySet:
      return beginDefaultEntrySet(call);
    case ShadowOp::entryDelete:
      return beginDelete(*manager.entryShadow(),
                         recordOfHandle(*manager.entryShadow(), call.handle), call.op);
    case ShadowOp::defaultEntryReset:
      return beginDelete(*manager.entryShadow(), manager.entryShadow()->recordWhere(isDefaultEntry),
                         call.op);
    case ShadowOp::memberAdd:
      return beginMemberAdd(call);
    case ShadowOp::memberDelete:
      return beginDelete(*manager.memberShadow(),
                         recordOfHandle(*manager.memberShadow(), call.handle), call.op);
    case ShadowOp::groupCreate:
      return beginGroupCreate(call);
    case ShadowOp::groupDelete:
      return beginDelete(*manager.groupShadow(),
                         recordOfHandle(*manager.groupShadow(), call.handle), call.op);
    case ShadowOp::none:
      break;
  }
  return std::monostate();
}

ShadowRecorder::Step ShadowRecorder::beginEntryAdd(const ShadowCall& call) {
  MbbVaultKey::ShadowTable<EntryConfig>& table = *vaultKeyManager_->entryShadow();
  EntryKey key = vaultKeyManager_->entryKeyTake();
  std::optional<EntryConfig> replaced = table.record(key);
  return beginCreate(table,
                     EntryConfig(key, opIdOf(call.op), handleOf(replaced),
                                 call.ingMirrorMdMirrorSession, call.devPipeId),
                     replaced, call.newHandle);
}

ShadowRecorder::Step ShadowRecorder::beginDefaultEntrySet(const ShadowCall& call) {
  MbbVaultKey::ShadowTable<EntryConfig>& table = *vaultKeyManager_->entryShadow();
  EntryKey key = vaultKeyManager_->entryKeyTake();
  std::optional<EntryConfig> replaced = table.recordWhere(isDefaultEntry);
  return beginCreate(table,
                     EntryConfig(key, opIdOf(call.op), handleOf(replaced), 0, call.devPipeId),
                     replaced, call.newHandle);
}

ShadowRecorder::Step ShadowRecorder::beginMemberAdd(const ShadowCall& call) {
  std::optional<EntryKey> key = vaultKeyManager_->anonKeyTake();
  if (!key) {
    return std::monostate();
  }
  MbbVaultKey::ShadowTable<AdtEntryConfig>& table = *vaultKeyManager_->memberShadow();
  std::optional<AdtEntryConfig> replaced = table.record(*key);
  return beginCreate(table, AdtEntryConfig(*key, opIdOf(call.op), handleOf(replaced)), replaced,
                     call.newHandle);
}

ShadowRecorder::Step ShadowRecorder::beginGroupCreate(const ShadowCall& call) {
  std::optional<EntryKey> key = vaultKeyManager_->anonKeyTake();
  if (!key) {
    return std::monostate();
  }
  MbbVaultKey::ShadowTable<SelGrpEntryConfig>& table = *vaultKeyManager_->groupShadow();
  std::optional<SelGrpEntryConfig> replaced = table.record(*key);
  std::uint32_t replacedHandle = handleOf(replaced);
  return beginCreate(table,
                     SelGrpEntryConfig(*key, opIdOf(call.op), replacedHandle, call.maxGroupSize,
                                       call.devPipeId, replacedHandle),
                     replaced, call.newHandle);
}

template <class R>
ShadowRecorder::Step ShadowRecorder::beginCreate(MbbVaultKey::ShadowTable<R>& table, R intent,
                                                 const std::optional<R>& replaced,
                                                 const std::uint32_t* newHandle) {
  table.intentIs(intent);
  return ShadowStep<R>{&table, intent, replaced, newHandle};
}

template <class R>
ShadowRecorder::Step ShadowRecorder::beginDelete(MbbVaultKey::ShadowTable<R>& table,
                                                 const std::optional<R>& record, ShadowOp op) {
  if (!record) {
    return std::monostate();
  }
  R intent = *record;
  intent.opIdIs(opIdOf(op));
  table.intentIs(intent);
  return ShadowStep<R>{&table, intent, record, nullptr};
}

void ShadowRecorder::finish(const Step& step, bool succeeded) noexcept {
  try {
    std::visit(
        [succeeded](const auto& started) {
          if constexpr (!std::is_same_v<std::decay_t<decltype(started)>, std::monostate>) {
            finishStep(started, succeeded);
          }
        },
        step);
  } catch (...) {
    // The intent stays; reconciliation settles it against the chip.
    ++unfinishedRecords_;
  }
}

template <class R>
void ShadowRecorder::finishStep(const ShadowStep<R>& step, bool succeeded) {
  const bool creating = isCreate(shadowOpOf(step.intent.opId()));
  if (succeeded && creating && step.newHandle != nullptr) {
    R done = step.intent;
    done.handleIs(*step.newHandle);
    step.table->recordIs(done);
  } else if (succeeded && !creating) {
    step.table->recordDel(step.intent.key());
  } else if (step.replaced && step.replaced->key() == step.intent.key()) {
    step.table->recordIs(*step.replaced);
  } else {
    step.table->recordDel(step.intent.key());
  }
}

}  // namespace BfPdIngressMirrorLagGroup
