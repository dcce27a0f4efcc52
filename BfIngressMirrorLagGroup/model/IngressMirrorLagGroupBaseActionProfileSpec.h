#pragma once

#include "Vel/TypeRecord.h"

#include <cstdint>

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileType.h"
#include "Vel/PtrInterface.h"

namespace BfIngressMirrorLagGroup {

// Base of the action specs of the action profile: which action a member
// carries, and the action's parameter. Consumers switch on actionType() before
// narrowing to the concrete spec. Held as a constant spec: a changed action is
// a new spec object.
class IngressMirrorLagGroupBaseActionProfileSpec : public Vel::PtrInterface {
 public:
  // The framework's record of this type (see reflect/).
  static const Vel::TypeRecord& typeRecord();
  const Vel::TypeRecord* fwkType() const override;
  IngressMirrorLagGroupActionProfileType actionType() const noexcept { return actionType_; }
  void actionTypeIs(IngressMirrorLagGroupActionProfileType type) noexcept { actionType_ = type; }
  // The selector value handed to the hardware action setLagMemberSelector.
  std::uint16_t lagMemberSelector() const noexcept { return lagMemberSelector_; }
  void lagMemberSelectorIs(std::uint16_t selector) noexcept { lagMemberSelector_ = selector; }

 private:
  IngressMirrorLagGroupActionProfileType actionType_ = setLagMemberSelectorActionProfileSpec;
  std::uint16_t lagMemberSelector_ = 0;
};

}  // namespace BfIngressMirrorLagGroup
