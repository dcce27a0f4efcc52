#pragma once

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfile.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileNotifieeConst.h"
#include "Vel/Ptr.h"

namespace BfIngressMirrorLagGroup {

// Observer of the action profile that may change it: the same callbacks and
// registration as the const observer, with a notifier it can edit.
class IngressMirrorLagGroupActionProfile::Notifiee
    : public IngressMirrorLagGroupActionProfile::NotifieeConst {
 public:
  Vel::Ptr<IngressMirrorLagGroupActionProfile> notifier() const noexcept;
};

}  // namespace BfIngressMirrorLagGroup
