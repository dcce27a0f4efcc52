// The reflective record of the action-profile state machine: the entity it
// follows and its parts, read only; its session handle, read and written (the
// host has no other way to set it); and its two reactor collections, seen as
// the entries and groups that the reactors follow.

#include "BfIngressMirrorLagGroup/actionprofile/IngressMirrorLagGroupActionProfileSm.h"
#include "BfIngressMirrorLagGroup/actionprofile/VelActionProfile.h"
#include "BfIngressMirrorLagGroup/actionprofile/VelGroup.h"
#include "BfIngressMirrorLagGroup/reflect/CollectionOperation.h"
#include "BfIngressMirrorLagGroup/reflect/PlatformTypeRecords.h"
#include "Vel/BuiltinType.h"

namespace BfIngressMirrorLagGroup {

namespace {

using Sm = IngressMirrorLagGroupActionProfileSm;
using GroupId = BfnTable::BfnGroupId;
using MemberId = BfnTable::BfnMemberId;

constexpr unsigned profileAttribute = 130;
constexpr unsigned helperAttribute = 131;
constexpr unsigned vaultKeyManagerAttribute = 132;
constexpr unsigned statusManagerAttribute = 133;
constexpr unsigned sessionHandleAttribute = 134;
constexpr unsigned actionProfileAttribute = 135;
constexpr unsigned groupAttribute = 137;

Vel::GenericReply actionProfileOperation(Vel::GenericCall& call, Sm& sm) {
  return collectionOperation<MemberId>(
      call, sm.actionProfiles(), sm.actionProfileBuckets(),
      [&](MemberId id) -> Vel::Ptr<const Sm::Entry> {
        const auto reactor = sm.actionProfile(id);
        return reactor != nullptr ? reactor->actionProfile() : nullptr;
      },
      [&] {
        const auto entry = call.arg<Vel::Ptr<const Sm::Entry>>(0);
        sm.actionProfileIs(entry);
        return entry;
      },
      [&](MemberId id) { return sm.actionProfileDel(id); });
}

Vel::GenericReply groupOperation(Vel::GenericCall& call, Sm& sm) {
  return collectionOperation<GroupId>(
      call, sm.groups(), sm.groupBuckets(),
      [&](GroupId id) -> Vel::Ptr<const Sm::Group> {
        const auto reactor = sm.group(id);
        return reactor != nullptr ? reactor->group() : nullptr;
      },
      [&] {
        const auto group = call.arg<Vel::Ptr<const Sm::Group>>(0);
        sm.groupIs(group);
        return group;
      },
      [&](GroupId id) { return sm.groupDel(id); });
}

Vel::GenericReply attribute(Vel::GenericCall& call) {
  Sm& sm = call.object<Sm>();
  switch (call.attributeNumber()) {
    case profileAttribute:
      return call.answerRead(sm.ingressMirrorLagGroupActionProfile());
    case helperAttribute:
      return call.answerRead(sm.helper());
    case vaultKeyManagerAttribute:
      return call.answerRead(sm.vaultKeyManager());
    case statusManagerAttribute:
      return call.answerRead(sm.statusManager());
    case sessionHandleAttribute:
      switch (call.op()) {
        case Vel::GenericIf::opRead:
          return call.answer(sm.sessionHandle());
        case Vel::GenericIf::opWrite:
          sm.sessionHandleIs(call.arg<std::uint32_t>(0));
          return call.done();
      }
      return call.notSupported();
    case actionProfileAttribute:
      return actionProfileOperation(call, sm);
    case groupAttribute:
      return groupOperation(call, sm);
  }
  return call.notOwned();
}

constexpr unsigned collectionFlags =
    Vel::AttributeRecord::collection | Vel::AttributeRecord::readWrite;

}  // namespace

const Vel::TypeRecord& IngressMirrorLagGroupActionProfileSm::typeRecord() {
  static const Vel::TypeRecord record(
      "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm",
      Vel::TypeRecord::Kind::object, nullptr,
      {{"ingressMirrorLagGroupActionProfile", IngressMirrorLagGroupActionProfile::typeRecord(),
        profileAttribute, Vel::AttributeRecord::constructorArg},
       {"helper", IngressMirrorLagGroupTableHelper::typeRecord(), helperAttribute,
        Vel::AttributeRecord::constructorArg},
       {"vaultKeyManager", vaultKeyManagerType(), vaultKeyManagerAttribute,
        Vel::AttributeRecord::constructorArg},
       {"statusManager", statusManagerType(), statusManagerAttribute,
        Vel::AttributeRecord::constructorArg},
       {"sessionHandle", Vel::BuiltinType<std::uint32_t>::instance(), sessionHandleAttribute,
        Vel::AttributeRecord::readWrite},
       {"actionProfile", IngressMirrorLagGroupActionProfileEntry::typeRecord(),
        actionProfileAttribute, collectionFlags, &bfnMemberIdType()},
       {"group", IngressMirrorLagGroupGroup::typeRecord(), groupAttribute, collectionFlags,
        &bfnGroupIdType()}},
      {.attribute = &attribute});
  return record;
}

const Vel::TypeRecord* IngressMirrorLagGroupActionProfileSm::fwkType() const {
  return &typeRecord();
}

}  // namespace BfIngressMirrorLagGroup
