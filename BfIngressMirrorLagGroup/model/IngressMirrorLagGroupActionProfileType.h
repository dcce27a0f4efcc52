#pragma once

#include <ostream>

#include "Vel/EnumType.h"
#include "Vel/String.h"

namespace BfIngressMirrorLagGroup {

// The action of an action-profile member: which action spec it carries.
enum IngressMirrorLagGroupActionProfileType : unsigned int {
  setLagMemberSelectorActionProfileSpec = 0,
};

// The enumeration's registration record; every conversion below is the
// framework's enumeration service on it.
const Vel::EnumType<unsigned int>& ingressMirrorLagGroupActionProfileTypeRecord();

Vel::String stringValue(IngressMirrorLagGroupActionProfileType type);
Vel::String valueToStrep(IngressMirrorLagGroupActionProfileType type);
std::ostream& operator<<(std::ostream& out, IngressMirrorLagGroupActionProfileType type);
IngressMirrorLagGroupActionProfileType IngressMirrorLagGroupActionProfileTypeInstance(
    unsigned int value);
IngressMirrorLagGroupActionProfileType IngressMirrorLagGroupActionProfileTypeInstance(
    const Vel::String& name);
void sequenceToValue(Vel::String::IteratorConst& pos, const Vel::String::IteratorConst& end,
                     IngressMirrorLagGroupActionProfileType* out);

}  // namespace BfIngressMirrorLagGroup
