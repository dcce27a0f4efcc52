#pragma once

#include "Vel/TypeRecord.h"

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupBaseActionProfileSpec.h"

namespace BfIngressMirrorLagGroup {

// The action spec of the action setLagMemberSelector: the base's selector, with
// the action type set to this action.
class SetLagMemberSelectorActionProfileSpec : public IngressMirrorLagGroupBaseActionProfileSpec {
 public:
  SetLagMemberSelectorActionProfileSpec() { actionTypeIs(setLagMemberSelectorActionProfileSpec); }
  // The framework's record of this type (see reflect/).
  static const Vel::TypeRecord& typeRecord();
  const Vel::TypeRecord* fwkType() const override;
};

}  // namespace BfIngressMirrorLagGroup
