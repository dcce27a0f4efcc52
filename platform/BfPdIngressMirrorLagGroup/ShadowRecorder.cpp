#include "BfPdIngressMirrorLagGroup/ShadowRecorder.h"

namespace BfPdIngressMirrorLagGroup {

namespace {

using Vault::MbbPostcodef::EntryConfig;
using Vault::MbbPostcodef::opIdOf;
using Vault::MbbPostcodef::ShadowOp;
using Vault::MbbPostcodef::shadowOpOf;

}  // namespace

ShadowRecorder::Step ShadowRecorder::begin(const ShadowCall& call) {
  MbbVaultKey::VaultKeyManager& manager = *vaultKeyManager_;
  Step step;
  switch (call.op) {
    case ShadowOp::entryAdd:
      beginEntryAdd(call, step);
      break;
    case ShadowOp::defaultEntrySet:
      beginDefaultEntrySet(call, step);
      break;
    case ShadowOp::entryDelete:
      beginDelete(*manager.entryShadow(), call.handle, call.op, step);
      break;
    case ShadowOp::defaultEntryReset:
      if (std::optional<EntryConfig> record = manager.entryShadow()->firstIndexed()) {
        beginDeleteOf(*manager.entryShadow(), *record, call.op, step);
      }
      break;
    case ShadowOp::memberAdd:
      beginMemberAdd(call, step);
      break;
    case ShadowOp::memberDelete:
      beginDelete(*manager.memberShadow(), call.handle, call.op, step);
      break;
    case ShadowOp::groupCreate:
      beginGroupCreate(call, step);
      break;
    case ShadowOp::groupDelete:
      beginDelete(*manager.groupShadow(), call.handle, call.op, step);
      break;
    case ShadowOp::none:
      break;
  }
  return step;
}

void ShadowRecorder::beginEntryAdd(const ShadowCall& call, Step& step) {
  MbbVaultKey::ShadowTable<EntryConfig>& table = *vaultKeyManager_->entryShadow();
  const EntryKey key = vaultKeyManager_->entryKeyTake();
  ShadowStep<EntryConfig>& started = stepIn(step, table, call.newHandle);
  started.hasReplaced = table.recordInto(key, started.replaced);
  started.intent = EntryConfig(key, opIdOf(call.op), started.replacedHandle(),
                               call.ingMirrorMdMirrorSession, call.devPipeId);
  table.intentIs(started.intent);
}

void ShadowRecorder::beginDefaultEntrySet(const ShadowCall& call, Step& step) {
  MbbVaultKey::ShadowTable<EntryConfig>& table = *vaultKeyManager_->entryShadow();
  const EntryKey key = vaultKeyManager_->entryKeyTake();
  ShadowStep<EntryConfig>& started = stepIn(step, table, call.newHandle);
  if (std::optional<EntryConfig> replaced = table.firstIndexed()) {
    started.replaced = *replaced;
    started.hasReplaced = true;
  }
  started.intent = EntryConfig(key, opIdOf(call.op), started.replacedHandle(), 0, call.devPipeId);
  table.intentIs(started.intent);
}

void ShadowRecorder::beginMemberAdd(const ShadowCall& call, Step& step) {
  const std::optional<EntryKey> key = vaultKeyManager_->anonKeyTake();
  if (!key) {
    return;
  }
  MbbVaultKey::ShadowTable<AdtEntryConfig>& table = *vaultKeyManager_->memberShadow();
  ShadowStep<AdtEntryConfig>& started = stepIn(step, table, call.newHandle);
  started.hasReplaced = table.recordInto(*key, started.replaced);
  started.intent = AdtEntryConfig(*key, opIdOf(call.op), started.replacedHandle());
  table.intentIs(started.intent);
}

void ShadowRecorder::beginGroupCreate(const ShadowCall& call, Step& step) {
  const std::optional<EntryKey> key = vaultKeyManager_->anonKeyTake();
  if (!key) {
    return;
  }
  MbbVaultKey::ShadowTable<SelGrpEntryConfig>& table = *vaultKeyManager_->groupShadow();
  ShadowStep<SelGrpEntryConfig>& started = stepIn(step, table, call.newHandle);
  started.hasReplaced = table.recordInto(*key, started.replaced);
  const std::uint32_t replacedHandle = started.replacedHandle();
  started.intent = SelGrpEntryConfig(*key, opIdOf(call.op), replacedHandle, call.maxGroupSize,
                                     call.devPipeId, replacedHandle);
  table.intentIs(started.intent);
}

template <class R>
ShadowStep<R>& ShadowRecorder::stepIn(Step& step, MbbVaultKey::ShadowTable<R>& table,
                                      const std::uint32_t* newHandle) {
  ShadowStep<R>& started = step.emplace<ShadowStep<R>>();
  started.table = &table;
  started.newHandle = newHandle;
  return started;
}

template <class R>
void ShadowRecorder::beginDelete(MbbVaultKey::ShadowTable<R>& table, std::uint32_t handle,
                                 ShadowOp op, Step& step) {
  R record;
  if (table.recordOfHandleInto(handle, record)) {
    beginDeleteOf(table, record, op, step);
  }
}

template <class R>
void ShadowRecorder::beginDeleteOf(MbbVaultKey::ShadowTable<R>& table, const R& record, ShadowOp op,
                                   Step& step) {
  ShadowStep<R>& started = stepIn(step, table, nullptr);
  started.replaced = record;
  started.hasReplaced = true;
  started.intent = record;
  started.intent.opIdIs(opIdOf(op));
  table.intentIs(started.intent);
}

void ShadowRecorder::finish(const Step& step, bool succeeded) noexcept {
  try {
    std::visit(
        [succeeded](const auto& started) {
          if constexpr (!std::is_same_v<std::decay_t<decltype(started)>, Unrecorded>) {
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
  } else if (step.hasReplaced && step.replaced.key() == step.intent.key()) {
    step.table->recordIs(step.replaced);
  } else {
    step.table->recordDel(step.intent.key());
  }
}

}  // namespace BfPdIngressMirrorLagGroup
