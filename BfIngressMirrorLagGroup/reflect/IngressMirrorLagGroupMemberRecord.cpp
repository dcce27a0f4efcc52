// The reflective record of a group member: its id, read only, and its active
// flag, written through activeIs so that the change is notified.

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMember.h"
#include "BfIngressMirrorLagGroup/reflect/IngressMirrorLagGroupMemberGenericNotifiee.h"
#include "BfIngressMirrorLagGroup/reflect/PlatformTypeRecords.h"
#include "Vel/BuiltinType.h"
#include "Vel/EntityType.h"
#include "Vel/GenericCall.h"

namespace BfIngressMirrorLagGroup {

namespace {

using Member = IngressMirrorLagGroupMember;

constexpr unsigned memberIdAttribute = 258;

Vel::GenericReply attribute(Vel::GenericCall& call) {
  Member& member = call.object<Member>();
  switch (call.attributeNumber()) {
    case memberIdAttribute:
      return call.answerRead(member.memberId());
    case Member::activeAttribute:
      switch (call.op()) {
        case Vel::GenericIf::opRead:
          return call.answer(member.active());
        case Vel::GenericIf::opWrite:
          member.activeIs(call.arg<bool>(0));
          return call.done();
      }
      return call.notSupported();
  }
  return call.notOwned();
}

}  // namespace

const Vel::TypeRecord& IngressMirrorLagGroupMember::typeRecord() {
  static const Vel::TypeRecord record(
      "BfIngressMirrorLagGroup::IngressMirrorLagGroupMember", Vel::TypeRecord::Kind::entity,
      &Vel::entityType(),
      {{"memberId", bfnMemberIdType(), memberIdAttribute, Vel::AttributeRecord::constructorArg},
       {"active", Vel::BuiltinType<bool>::instance(), activeAttribute,
        Vel::AttributeRecord::readWrite | Vel::AttributeRecord::notifying}},
      {.attribute = &attribute, .notifiee = &IngressMirrorLagGroupMemberGenericNotifiee::factory});
  return record;
}

const Vel::TypeRecord* IngressMirrorLagGroupMember::fwkType() const {
  return &typeRecord();
}

}  // namespace BfIngressMirrorLagGroup
