#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileType.h"

namespace BfIngressMirrorLagGroup {

namespace {

using Type = IngressMirrorLagGroupActionProfileType;

const Vel::EnumType<unsigned int>& record() {
  return ingressMirrorLagGroupActionProfileTypeRecord();
}

}  // namespace

const Vel::EnumType<unsigned int>& ingressMirrorLagGroupActionProfileTypeRecord() {
  static const Vel::EnumType<unsigned int> type(
      "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileType",
      {{"setLagMemberSelectorActionProfileSpec", setLagMemberSelectorActionProfileSpec}});
  return type;
}

Vel::String stringValue(Type type) {
  return record().stringValue(type);
}

Vel::String valueToStrep(Type type) {
  return record().valueToStrep(type);
}

std::ostream& operator<<(std::ostream& out, Type type) {
  return record().print(out, type);
}

Type IngressMirrorLagGroupActionProfileTypeInstance(unsigned int value) {
  return static_cast<Type>(record().instance(value));
}

Type IngressMirrorLagGroupActionProfileTypeInstance(const Vel::String& name) {
  return static_cast<Type>(record().instance(name));
}

void sequenceToValue(Vel::String::IteratorConst& pos, const Vel::String::IteratorConst& end,
                     Type* out) {
  record().sequenceToValue(pos, end, out);
}

}  // namespace BfIngressMirrorLagGroup
