// The reflective record of the match table: its parts, read only; its entries
// looked up by match spec (read back from the chip), programmed with entryIs,
// deleted with entryDel and counted; and an entry read back by its SDK handle.

#include "BfIngressMirrorLagGroup/reflect/CollectionOperation.h"
#include "BfIngressMirrorLagGroup/reflect/PlatformTypeRecords.h"
#include "BfIngressMirrorLagGroup/table/IngressMirrorLagGroupTable.h"
#include "Vel/BuiltinType.h"
#include "Vel/EntityType.h"

namespace BfIngressMirrorLagGroup {

namespace {

using Table = IngressMirrorLagGroupTable;
using Entry = IngressMirrorLagGroupTableEntry;

constexpr unsigned helperAttribute = 258;
constexpr unsigned vaultKeyManagerAttribute = 259;
constexpr unsigned statusManagerAttribute = 260;
constexpr unsigned defaultMatchSpecAttribute = 261;
constexpr unsigned entryAttribute = 262;
constexpr unsigned entryByHandleAttribute = 263;

// Look-up answers the entry read back (empty when the chip has none); code 1
// programs the entry given; code 2 deletes by match spec.
Vel::GenericReply entryOperation(Vel::GenericCall& call, Table& table) {
  const IngressMirrorLagGroupTableHandles& handles = *table.helper()->sdkHandles();
  switch (call.op()) {
    case Vel::GenericIf::opRead:
      return call.answer(table.entry(call.arg<Table::MatchSpec>(0)));
    case Vel::GenericIf::opWrite: {
      const Entry entry = call.arg<Entry>(0);
      table.entryIs(entry);
      return call.answer(entry);
    }
    case Vel::GenericIf::opDelete:
      return call.answer(table.entryDel(call.arg<Table::MatchSpec>(0)));
    case Vel::GenericIf::opSize:
      return call.answerCount(handles.entries().size());
    case Vel::GenericIf::opBucketCount:
      return call.answerCount(handles.entries().buckets());
    case Vel::GenericIf::opContains:
      return call.answerBool(handles.entry(call.arg<Table::MatchSpec>(0)) != 0);
  }
  return call.notSupported();
}

Vel::GenericReply attribute(Vel::GenericCall& call) {
  Table& table = call.object<Table>();
  switch (call.attributeNumber()) {
    case helperAttribute:
      return call.answerRead(table.helper());
    case vaultKeyManagerAttribute:
      return call.answerRead(table.vaultKeyManager());
    case statusManagerAttribute:
      return call.answerRead(table.statusManager());
    case defaultMatchSpecAttribute:
      return call.answerRead(table.defaultMatchSpec());
    case entryAttribute:
      return entryOperation(call, table);
    case entryByHandleAttribute:
      if (call.op() != Vel::GenericIf::opRead)
        return call.notSupported();
      return call.answer(table.entryByHandle(call.arg<std::uint32_t>(0)));
  }
  return call.notOwned();
}

}  // namespace

const Vel::TypeRecord& IngressMirrorLagGroupTable::typeRecord() {
  static const Vel::TypeRecord record(
      "BfIngressMirrorLagGroup::IngressMirrorLagGroupTable", Vel::TypeRecord::Kind::entity,
      &Vel::entityType(),
      {{"helper", IngressMirrorLagGroupTableHelper::typeRecord(), helperAttribute,
        Vel::AttributeRecord::constructorArg},
       {"vaultKeyManager", vaultKeyManagerType(), vaultKeyManagerAttribute,
        Vel::AttributeRecord::constructorArg},
       {"statusManager", statusManagerType(), statusManagerAttribute,
        Vel::AttributeRecord::constructorArg},
       {"defaultMatchSpec", IngressMirrorLagGroupMatchSpec::typeRecord(),
        defaultMatchSpecAttribute},
       {"entry", IngressMirrorLagGroupTableEntry::typeRecord(), entryAttribute,
        Vel::AttributeRecord::collection | Vel::AttributeRecord::readWrite,
        &IngressMirrorLagGroupMatchSpec::typeRecord()},
       {"entryByHandle", IngressMirrorLagGroupTableEntry::typeRecord(), entryByHandleAttribute,
        Vel::AttributeRecord::collection, &Vel::BuiltinType<std::uint32_t>::instance()}},
      {.attribute = &attribute});
  return record;
}

const Vel::TypeRecord* IngressMirrorLagGroupTable::fwkType() const {
  return &typeRecord();
}

}  // namespace BfIngressMirrorLagGroup
