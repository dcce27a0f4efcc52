#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileNotifiee.h"

namespace BfIngressMirrorLagGroup {

// The profile is followed as a constant object, as every notifier is; a
// mutating observer was given it to edit.
Vel::Ptr<IngressMirrorLagGroupActionProfile>
IngressMirrorLagGroupActionProfile::Notifiee::notifier() const noexcept {
  return Vel::const_ptr_cast<IngressMirrorLagGroupActionProfile>(NotifieeConst::notifier());
}

}  // namespace BfIngressMirrorLagGroup
