// The reflective records of the hardware access layer: the helper's device,
// pipe, registry and PD object, read only; the registry's three handle maps,
// looked up, edited and counted by key.

#include "BfIngressMirrorLagGroup/hw/IngressMirrorLagGroupTableHandles.h"
#include "BfIngressMirrorLagGroup/hw/IngressMirrorLagGroupTableHelper.h"
#include "BfIngressMirrorLagGroup/reflect/CollectionOperation.h"
#include "BfIngressMirrorLagGroup/reflect/PlatformTypeRecords.h"
#include "Vel/BuiltinType.h"
#include "Vel/EntityType.h"

namespace BfIngressMirrorLagGroup {

namespace {

using Helper = IngressMirrorLagGroupTableHelper;
using Handles = IngressMirrorLagGroupTableHandles;
using Handle = std::uint32_t;

constexpr unsigned deviceIdAttribute = 130;
constexpr unsigned devPipeIdAttribute = 131;
constexpr unsigned sdkHandlesAttribute = 132;
constexpr unsigned pdLibAttribute = 133;

constexpr unsigned entryAttribute = 258;
constexpr unsigned groupAttribute = 259;
constexpr unsigned memberAttribute = 260;

Vel::GenericReply helperAttribute(Vel::GenericCall& call) {
  Helper& helper = call.object<Helper>();
  switch (call.attributeNumber()) {
    case deviceIdAttribute:
      return call.answerRead(helper.deviceId());
    case devPipeIdAttribute:
      return call.answerRead(helper.devPipeId());
    case sdkHandlesAttribute:
      return call.answerRead(helper.sdkHandles());
    case pdLibAttribute:
      return call.answerRead(helper.pdLib());
  }
  return call.notOwned();
}

// One handle map of the registry: code 1 stores (key, handle), code 2 answers
// the handle removed (0 when the key was absent).
template <class Key, class Map, class Find, class Store, class Remove>
Vel::GenericReply handleOperation(Vel::GenericCall& call, const Map& map, Find find, Store store,
                                  Remove remove) {
  return collectionOperation<Key>(
      call, map.size(), map.buckets(), find,
      [&] {
        store(call.arg<Key>(0), call.arg<Handle>(1));
        return call.arg<Handle>(1);
      },
      remove);
}

Vel::GenericReply handlesAttribute(Vel::GenericCall& call) {
  Handles& handles = call.object<Handles>();
  using Match = Handles::MatchSpec;
  switch (call.attributeNumber()) {
    case entryAttribute:
      return handleOperation<Match>(
          call, handles.entries(), [&](const Match& key) { return handles.entry(key); },
          [&](const Match& key, Handle h) { handles.entryIs(key, h); },
          [&](const Match& key) { return handles.entryDel(key); });
    case groupAttribute:
      return handleOperation<BfnTable::BfnGroupId>(
          call, handles.groups(), [&](BfnTable::BfnGroupId key) { return handles.group(key); },
          [&](BfnTable::BfnGroupId key, Handle h) { handles.groupIs(key, h); },
          [&](BfnTable::BfnGroupId key) { return handles.groupDel(key); });
    case memberAttribute:
      return handleOperation<BfnTable::BfnMemberId>(
          call, handles.members(), [&](BfnTable::BfnMemberId key) { return handles.member(key); },
          [&](BfnTable::BfnMemberId key, Handle h) { handles.memberIs(key, h); },
          [&](BfnTable::BfnMemberId key) { return handles.memberDel(key); });
  }
  return call.notOwned();
}

constexpr unsigned mapFlags = Vel::AttributeRecord::collection | Vel::AttributeRecord::readWrite;

}  // namespace

const Vel::TypeRecord& IngressMirrorLagGroupTableHelper::typeRecord() {
  static const Vel::TypeRecord record(
      "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableHelper", Vel::TypeRecord::Kind::object,
      nullptr,
      {{"deviceId", Vel::BuiltinType<std::uint8_t>::instance(), deviceIdAttribute,
        Vel::AttributeRecord::constructorArg},
       {"devPipeId", Vel::BuiltinType<std::uint16_t>::instance(), devPipeIdAttribute,
        Vel::AttributeRecord::constructorArg},
       {"sdkHandles", IngressMirrorLagGroupTableHandles::typeRecord(), sdkHandlesAttribute},
       {"pdLib", pdIntfType(), pdLibAttribute}},
      {.attribute = &helperAttribute});
  return record;
}

const Vel::TypeRecord* IngressMirrorLagGroupTableHelper::fwkType() const {
  return &typeRecord();
}

const Vel::TypeRecord& IngressMirrorLagGroupTableHandles::typeRecord() {
  static const Vel::TypeRecord record(
      "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableHandles", Vel::TypeRecord::Kind::entity,
      &Vel::entityType(),
      {{"entry", Vel::BuiltinType<Handle>::instance(), entryAttribute, mapFlags,
        &IngressMirrorLagGroupMatchSpec::typeRecord()},
       {"group", Vel::BuiltinType<Handle>::instance(), groupAttribute, mapFlags, &bfnGroupIdType()},
       {"member", Vel::BuiltinType<Handle>::instance(), memberAttribute, mapFlags,
        &bfnMemberIdType()}},
      {.attribute = &handlesAttribute});
  return record;
}

const Vel::TypeRecord* IngressMirrorLagGroupTableHandles::fwkType() const {
  return &typeRecord();
}

}  // namespace BfIngressMirrorLagGroup
