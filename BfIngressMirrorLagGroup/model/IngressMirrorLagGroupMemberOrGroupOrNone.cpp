#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMemberOrGroupOrNone.h"

#include "BfIngressMirrorLagGroup/model/ValueFromWholeText.h"
#include "Vel/Format.h"
#include "Vel/TextParse.h"
#include "Vel/ValueToStrep.h"

namespace BfIngressMirrorLagGroup {

IngressMirrorLagGroupMemberOrGroupOrNone::IngressMirrorLagGroupMemberOrGroupOrNone(
    Vel::String::IteratorConst& pos, const Vel::String::IteratorConst& end) {
  // Reads through a cursor of its own so that a failure leaves pos alone.
  Vel::String::IteratorConst cursor = pos;
  Vel::needString(
      cursor, end,
      "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone', ** {");
  Vel::needString(cursor, end, "'id': ");
  Vel::deserializeAttr(cursor, end, "id", &id);
  Vel::needString(cursor, end, ", 'member': ");
  Vel::deserializeAttr(cursor, end, "member", &member);
  Vel::needString(cursor, end, "})");
  pos = cursor;
}

IngressMirrorLagGroupMemberOrGroupOrNone IngressMirrorLagGroupMemberOrGroupOrNone::fromText(
    const Vel::String& text) {
  return valueFromWholeText<IngressMirrorLagGroupMemberOrGroupOrNone>(text);
}

Vel::String valueToStrep(const IngressMirrorLagGroupMemberOrGroupOrNone& value) {
  const Vel::String id = Vel::valueToStrep(value.id);
  const Vel::String member = Vel::valueToStrep(value.member);
  return Vel::format(
      "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone', ** {'id': %s, "
      "'member': %s})",
      id.c_str(), member.c_str());
}

std::ostream& operator<<(std::ostream& out, const IngressMirrorLagGroupMemberOrGroupOrNone& value) {
  return out << valueToStrep(value);
}

void sequenceToValue(Vel::String::IteratorConst& pos, const Vel::String::IteratorConst& end,
                     IngressMirrorLagGroupMemberOrGroupOrNone* out) {
  *out = IngressMirrorLagGroupMemberOrGroupOrNone(pos, end);
}

}  // namespace BfIngressMirrorLagGroup
