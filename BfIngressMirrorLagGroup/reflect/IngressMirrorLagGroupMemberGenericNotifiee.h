#pragma once

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMemberNotifieeConst.h"
#include "Vel/GenericNotifieeAdapter.h"

namespace BfIngressMirrorLagGroup {

// Carries every notification of a group member to a generic notifiee: `active` (259).
class IngressMirrorLagGroupMemberGenericNotifiee
    : public Vel::GenericNotifieeAdapter<IngressMirrorLagGroupMemberGenericNotifiee,
                                         IngressMirrorLagGroupMember::NotifieeConst> {
 public:
  void onActive() override;
};

}  // namespace BfIngressMirrorLagGroup
