// The reflective record of the match spec: one attribute, the mirror session,
// read and written as a plain number.

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMatchSpec.h"
#include "BfIngressMirrorLagGroup/reflect/PlatformTypeRecords.h"
#include "Vel/BuiltinType.h"
#include "Vel/GenericCall.h"

namespace BfIngressMirrorLagGroup {

namespace {

constexpr unsigned sessionAttribute = 130;

Vel::GenericReply attribute(Vel::GenericCall& call) {
  auto& match = call.object<IngressMirrorLagGroupMatchSpec>();
  if (call.attributeNumber() != sessionAttribute)
    return call.notOwned();
  switch (call.op()) {
    case Vel::GenericIf::opRead:
      return call.answer(match.ingMirrorMdMirrorSession());
    case Vel::GenericIf::opWrite:
      match.ingMirrorMdMirrorSessionIs(call.arg<std::uint16_t>(0));
      return call.done();
  }
  return call.notSupported();
}

}  // namespace

const Vel::TypeRecord& IngressMirrorLagGroupMatchSpec::typeRecord() {
  static const Vel::TypeRecord record(
      "BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec", Vel::TypeRecord::Kind::object,
      &matchSpecBaseType(),
      {{"ingMirrorMdMirrorSession", Vel::BuiltinType<std::uint16_t>::instance(), sessionAttribute,
        Vel::AttributeRecord::readWrite}},
      {.attribute = &attribute});
  return record;
}

const Vel::TypeRecord* IngressMirrorLagGroupMatchSpec::fwkType() const {
  return &typeRecord();
}

}  // namespace BfIngressMirrorLagGroup
