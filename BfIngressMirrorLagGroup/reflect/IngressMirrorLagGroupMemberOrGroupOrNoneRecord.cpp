// The reflective record of the member-or-group value: id and member, read
// only; the value itself answers the is-default test and equality, is built
// from a raw pointer, from its whole text or from (id, member), prints its
// text form and cannot be hashed.

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMemberOrGroupOrNone.h"
#include "Vel/BuiltinType.h"
#include "Vel/GenericCall.h"
#include "Vel/ValueOperations.h"

namespace BfIngressMirrorLagGroup {

namespace {

using Value = IngressMirrorLagGroupMemberOrGroupOrNone;

constexpr unsigned idAttribute = 2;
constexpr unsigned memberAttribute = 3;

Vel::GenericReply attribute(Vel::GenericCall& call) {
  const Value& value = call.value<Value>();
  switch (call.attributeNumber()) {
    case idAttribute:
      return call.answerRead(value.id);
    case memberAttribute:
      return call.answerRead(value.member);
  }
  return call.notOwned();
}

Vel::GenericValue fromArgs(const Vel::TypeRecord& type, const Vel::GenericArgs& args) {
  // Read in order, so that a wrong list is reported by its first bad argument.
  const auto id = args.get<std::uint32_t>(0);
  const auto member = args.get<bool>(1);
  return Vel::GenericValue(type, Value(id, member));
}

}  // namespace

const Vel::TypeRecord& IngressMirrorLagGroupMemberOrGroupOrNone::typeRecord() {
  static const Vel::TypeRecord record(
      "BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone",
      Vel::TypeRecord::Kind::value, nullptr,
      {{"id", Vel::BuiltinType<std::uint32_t>::instance(), idAttribute,
        Vel::AttributeRecord::constructorArg},
       {"member", Vel::BuiltinType<bool>::instance(), memberAttribute,
        Vel::AttributeRecord::constructorArg}},
      {.attribute = &attribute,
       .value = &Vel::ValueOperations<Value>::operation,
       .fromRawPtr = &Vel::ValueOperations<Value>::fromRawPtr,
       .fromText = &Vel::ValueOperations<Value>::fromText,
       .fromArgs = &fromArgs,
       .toText = &Vel::ValueOperations<Value>::toText,
       .hash = &Vel::TypeRecord::unhashable});
  return record;
}

}  // namespace BfIngressMirrorLagGroup
