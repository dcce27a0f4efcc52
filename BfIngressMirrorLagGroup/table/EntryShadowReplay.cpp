#include "BfIngressMirrorLagGroup/table/EntryShadowReplay.h"

#include <algorithm>

#include "Quill/CorruptionDetectedException.h"
#include "Vault/IterHint.h"
#include "Vault/MbbPostcodef/ShadowOp.h"

namespace BfIngressMirrorLagGroup {

namespace {

using Vault::MbbPostcodef::OpId;
using Vault::MbbPostcodef::ShadowOp;

bool isDefaultEntryRecord(const Vault::MbbPostcodef::EntryConfig& record) noexcept {
  return Vault::MbbPostcodef::shadowOpOf(record.opId()) == ShadowOp::defaultEntrySet;
}

}  // namespace

void EntryShadowReplay::replay() {
  walk();
  if (!largestKey_.isZero())
    keys_.latestKeyIs(largestKey_);
}

void EntryShadowReplay::walk() {
  const Vel::Ptr<Vault::VaultBase<EntryConfig>> shadow = keys_.mbbVaultTableConfig();
  // The search record: a zero key, a zero operation id and all numbers 0.
  EntryConfig record(EntryKey(), OpId(), 0, 0, 0);
  Vault::IterHint hint;
  try {
    for (bool found = shadow->first(record, hint); found; found = shadow->next(record, hint))
      adopt(record);
  } catch (const Quill::CorruptionDetectedException& e) {
    // Nothing past the damage can be trusted; what was adopted before it stays.
    corrupted_ = true;
    shadow->corruptionDetected(e.msg());
  }
}

void EntryShadowReplay::adopt(const EntryConfig& record) {
  // The key counts even when its entry is gone from the chip: the record is
  // still in the shadow table, and a new key must not land on it.
  largestKey_ = std::max(largestKey_, record.key());
  const IngressMirrorLagGroupTableEntry readBack = table_.entryByHandle(record.entryHandle());
  if (!readBack) {
    // The chip no longer knows the handle (the entry went after the record was
    // written). There is no match to register it under, and a null match must
    // never enter the registry: the record is passed over, and the entry, if
    // the host still wants it, is added anew.
    ++skipped_;
    return;
  }
  const IngressMirrorLagGroupTable::MatchSpec match =
      isDefaultEntryRecord(record) ? table_.defaultMatchSpecIs() : readBack.match();
  table_.helper()->sdkHandles()->entryIs(match, record.entryHandle());
  keys_.populate(record.key(), match);
  ++adopted_;
}

}  // namespace BfIngressMirrorLagGroup
