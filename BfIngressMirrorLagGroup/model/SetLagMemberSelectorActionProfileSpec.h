#pragma once

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupBaseActionProfileSpec.h"

namespace BfIngressMirrorLagGroup {

// The action spec of the action setLagMemberSelector: the base's selector, with
// the action type set to this action.
class SetLagMemberSelectorActionProfileSpec : public IngressMirrorLagGroupBaseActionProfileSpec {
 public:
  SetLagMemberSelectorActionProfileSpec() { actionTypeIs(setLagMemberSelectorActionProfileSpec); }
};

}  // namespace BfIngressMirrorLagGroup
