// The reflective record of the table-entry value: its match is read only (the
// key reference cannot be replaced reflectively), its memberOrGroup read and
// written; the value itself answers operator! and ==, is built from a raw
// pointer, from its whole text or from (match, memberOrGroup), prints its text
// form and cannot be hashed.

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupTableEntry.h"
#include "Vel/GenericCall.h"
#include "Vel/ValueOperations.h"

namespace BfIngressMirrorLagGroup {

namespace {

using Value = IngressMirrorLagGroupTableEntry;

constexpr unsigned matchAttribute = 2;
constexpr unsigned memberOrGroupAttribute = 3;

Vel::GenericReply attribute(Vel::GenericCall& call) {
  Value& value = call.value<Value>();
  switch (call.attributeNumber()) {
    case matchAttribute:
      return call.answerRead(value.match());
    case memberOrGroupAttribute:
      switch (call.op()) {
        case Vel::GenericIf::opRead:
          return call.answer(value.memberOrGroup());
        case Vel::GenericIf::opWrite:
          value.memberOrGroupIs(call.arg<IngressMirrorLagGroupMemberOrGroupOrNone>(0));
          return call.done();
      }
      return call.notSupported();
  }
  return call.notOwned();
}

// Is-default is the entry's operator!; equality its ==.
Vel::GenericReply valueOperation(Vel::GenericCall& call) {
  const Value& value = call.value<Value>();
  switch (call.op()) {
    case Vel::GenericIf::opIsDefault:
      return call.answerBool(!value);
    case Vel::GenericIf::opEqual:
      return call.answerBool(value == call.arg<Value>(0));
  }
  return call.notSupported();
}

Vel::GenericValue fromArgs(const Vel::TypeRecord& type, const Vel::GenericArgs& args) {
  return Vel::GenericValue(type, Value(args.get<Value::MatchSpec>(0),
                                       args.get<IngressMirrorLagGroupMemberOrGroupOrNone>(1)));
}

}  // namespace

const Vel::TypeRecord& IngressMirrorLagGroupTableEntry::typeRecord() {
  static const Vel::TypeRecord record(
      "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry", Vel::TypeRecord::Kind::value,
      nullptr,
      {{"match", IngressMirrorLagGroupMatchSpec::typeRecord(), matchAttribute,
        Vel::AttributeRecord::constructorArg},
       {"memberOrGroup", IngressMirrorLagGroupMemberOrGroupOrNone::typeRecord(),
        memberOrGroupAttribute,
        Vel::AttributeRecord::readWrite | Vel::AttributeRecord::constructorArg}},
      {.attribute = &attribute,
       .value = &valueOperation,
       .fromRawPtr = &Vel::ValueOperations<Value>::fromRawPtr,
       .fromText = &Vel::ValueOperations<Value>::fromText,
       .fromArgs = &fromArgs,
       .toText = &Vel::ValueOperations<Value>::toText,
       .hash = &Vel::TypeRecord::unhashable});
  return record;
}

}  // namespace BfIngressMirrorLagGroup
