#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupTableEntry.h"

#include "BfIngressMirrorLagGroup/model/ValueFromWholeText.h"
#include "Vel/Format.h"
#include "Vel/TextParse.h"
#include "Vel/ValueToStrep.h"

namespace BfIngressMirrorLagGroup {

IngressMirrorLagGroupTableEntry::IngressMirrorLagGroupTableEntry(
    Vel::String::IteratorConst& pos, const Vel::String::IteratorConst& end) {
  // Reads through a cursor of its own so that a failure leaves pos alone. A
  // failure after the match was read destroys match_ with the half-built entry,
  // so the reference is released before the exception leaves.
  Vel::String::IteratorConst cursor = pos;
  Vel::needString(cursor, end,
                  "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry', ** {");
  Vel::needString(cursor, end, "'match': ");
  Vel::deserializeAttr(cursor, end, "match", &match_);
  Vel::needString(cursor, end, ", 'memberOrGroup': ");
  Vel::deserializeAttr(cursor, end, "memberOrGroup", &memberOrGroup_);
  Vel::needString(cursor, end, "})");
  pos = cursor;
}

IngressMirrorLagGroupTableEntry IngressMirrorLagGroupTableEntry::fromText(const Vel::String& text) {
  return valueFromWholeText<IngressMirrorLagGroupTableEntry>(text);
}

Vel::String valueToStrep(const IngressMirrorLagGroupTableEntry& entry) {
  const Vel::String memberOrGroup = valueToStrep(entry.memberOrGroup());
  const Vel::String match =
      Vel::valueToStrepOfRawPtr(entry.match().get(), &IngressMirrorLagGroupMatchSpec::typeRecord());
  return Vel::format(
      "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry', ** {'match': %s, "
      "'memberOrGroup': %s})",
      match.c_str(), memberOrGroup.c_str());
}

std::ostream& operator<<(std::ostream& out, const IngressMirrorLagGroupTableEntry& entry) {
  return out << valueToStrep(entry);
}

}  // namespace BfIngressMirrorLagGroup
