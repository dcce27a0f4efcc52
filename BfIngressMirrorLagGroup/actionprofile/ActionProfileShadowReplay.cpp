#include "BfIngressMirrorLagGroup/actionprofile/ActionProfileShadowReplay.h"

#include "Quill/CorruptionDetectedException.h"
#include "Vault/IterHint.h"
#include "Vault/VaultBase.h"

namespace BfIngressMirrorLagGroup {

namespace {

// Calls `take(record)` for every record of `shadow`, from a zero search
// record; damage ends the walk and is reported to the table.
template <class Record, class Take>
void walk(Vault::VaultBase<Record>& shadow, Take take) {
  Record record{};
  Vault::IterHint hint;
  try {
    for (bool found = shadow.first(record, hint); found; found = shadow.next(record, hint))
      take(record);
  } catch (const Quill::CorruptionDetectedException& e) {
    shadow.corruptionDetected(e.msg());
  }
}

}  // namespace

void ActionProfileShadowReplay::replayMembers() {
  walk(*keys_.adtVaultTableConfig(), [this](const BfnMbbShared::AdtEntryConfig& record) {
    registry_.memberIs(BfnTable::BfnMemberId(keys_.anonId(record.key())), record.memberHandle());
    ++members_;
  });
}

void ActionProfileShadowReplay::replayGroups() {
  walk(*keys_.selGrpVaultTableConfig(), [this](const BfnMbbShared::SelGrpEntryConfig& record) {
    registry_.groupIs(BfnTable::BfnGroupId(keys_.anonId(record.key())), record.groupHandle());
    ++groups_;
  });
}

}  // namespace BfIngressMirrorLagGroup
