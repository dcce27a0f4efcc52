// The reflective record of an action-profile entry: its member id, read only,
// and its action, written through actionIs so that the change is notified
// (and a following state machine programs the member again).

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileEntry.h"
#include "BfIngressMirrorLagGroup/reflect/IngressMirrorLagGroupActionProfileEntryGenericNotifiee.h"
#include "BfIngressMirrorLagGroup/reflect/PlatformTypeRecords.h"
#include "Vel/EntityType.h"
#include "Vel/GenericCall.h"

namespace BfIngressMirrorLagGroup {

namespace {

using Entry = IngressMirrorLagGroupActionProfileEntry;

constexpr unsigned memberIdAttribute = 258;

Vel::GenericReply attribute(Vel::GenericCall& call) {
  Entry& entry = call.object<Entry>();
  switch (call.attributeNumber()) {
    case memberIdAttribute:
      return call.answerRead(entry.memberId());
    case Entry::actionAttribute:
      switch (call.op()) {
        case Vel::GenericIf::opRead:
          return call.answer(entry.action());
        case Vel::GenericIf::opWrite:
          entry.actionIs(call.arg<Entry::ActionSpec>(0));
          return call.done();
      }
      return call.notSupported();
  }
  return call.notOwned();
}

}  // namespace

const Vel::TypeRecord& IngressMirrorLagGroupActionProfileEntry::typeRecord() {
  static const Vel::TypeRecord record(
      "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileEntry",
      Vel::TypeRecord::Kind::entity, &Vel::entityType(),
      {{"memberId", bfnMemberIdType(), memberIdAttribute, Vel::AttributeRecord::constructorArg},
       {"action", IngressMirrorLagGroupBaseActionProfileSpec::typeRecord(), actionAttribute,
        Vel::AttributeRecord::readWrite | Vel::AttributeRecord::constructorArg |
            Vel::AttributeRecord::notifying}},
      {.attribute = &attribute,
       .notifiee = &IngressMirrorLagGroupActionProfileEntryGenericNotifiee::factory});
  return record;
}

const Vel::TypeRecord* IngressMirrorLagGroupActionProfileEntry::fwkType() const {
  return &typeRecord();
}

}  // namespace BfIngressMirrorLagGroup
