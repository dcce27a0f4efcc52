// The reflective records of the action specs: the base's action type and
// selector, read and written as plain values; the setLagMemberSelector spec
// lists them again and answers nothing itself.

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileType.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupBaseActionProfileSpec.h"
#include "BfIngressMirrorLagGroup/model/SetLagMemberSelectorActionProfileSpec.h"
#include "Vel/BuiltinType.h"
#include "Vel/GenericCall.h"

namespace BfIngressMirrorLagGroup {

namespace {

constexpr unsigned actionTypeAttribute = 130;
constexpr unsigned lagMemberSelectorAttribute = 131;

Vel::GenericReply attribute(Vel::GenericCall& call) {
  auto& spec = call.object<IngressMirrorLagGroupBaseActionProfileSpec>();
  switch (call.attributeNumber()) {
    case actionTypeAttribute:
      switch (call.op()) {
        case Vel::GenericIf::opRead:
          return call.answer(spec.actionType());
        case Vel::GenericIf::opWrite:
          spec.actionTypeIs(call.arg<IngressMirrorLagGroupActionProfileType>(0));
          return call.done();
      }
      return call.notSupported();
    case lagMemberSelectorAttribute:
      switch (call.op()) {
        case Vel::GenericIf::opRead:
          return call.answer(spec.lagMemberSelector());
        case Vel::GenericIf::opWrite:
          spec.lagMemberSelectorIs(call.arg<std::uint16_t>(0));
          return call.done();
      }
      return call.notSupported();
  }
  return call.notOwned();
}

// The two attributes, as the base declares them and the derived spec lists them again.
#define BF_ACTION_SPEC_ATTRIBUTES                                                                 \
  {"actionType", ingressMirrorLagGroupActionProfileTypeRecord(), actionTypeAttribute,             \
   Vel::AttributeRecord::readWrite},                                                              \
  {                                                                                               \
    "lagMemberSelector", Vel::BuiltinType<std::uint16_t>::instance(), lagMemberSelectorAttribute, \
        Vel::AttributeRecord::readWrite                                                           \
  }

}  // namespace

const Vel::TypeRecord& IngressMirrorLagGroupBaseActionProfileSpec::typeRecord() {
  static const Vel::TypeRecord record(
      "BfIngressMirrorLagGroup::IngressMirrorLagGroupBaseActionProfileSpec",
      Vel::TypeRecord::Kind::object, nullptr, {BF_ACTION_SPEC_ATTRIBUTES},
      {.attribute = &attribute});
  return record;
}

const Vel::TypeRecord* IngressMirrorLagGroupBaseActionProfileSpec::fwkType() const {
  return &typeRecord();
}

const Vel::TypeRecord& SetLagMemberSelectorActionProfileSpec::typeRecord() {
  static const Vel::TypeRecord record(
      "BfIngressMirrorLagGroup::SetLagMemberSelectorActionProfileSpec",
      Vel::TypeRecord::Kind::object, &IngressMirrorLagGroupBaseActionProfileSpec::typeRecord(),
      {BF_ACTION_SPEC_ATTRIBUTES}, {});
  return record;
}

const Vel::TypeRecord* SetLagMemberSelectorActionProfileSpec::fwkType() const {
  return &typeRecord();
}

}  // namespace BfIngressMirrorLagGroup
