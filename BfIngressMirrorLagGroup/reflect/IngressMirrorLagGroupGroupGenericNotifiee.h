#pragma once

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupGroupNotifieeConst.h"
#include "Vel/GenericNotifieeAdapter.h"

namespace BfIngressMirrorLagGroup {

// Carries every notification of a selector group to a generic notifiee:
// `member` (263), the keyed form with the member id.
class IngressMirrorLagGroupGroupGenericNotifiee
    : public Vel::GenericNotifieeAdapter<IngressMirrorLagGroupGroupGenericNotifiee,
                                         IngressMirrorLagGroupGroup::NotifieeConst> {
 public:
  void onMember(BfnTable::BfnMemberId memberId) override;
  void onMembervelImmediate() override;
  void onMember() override;
};

}  // namespace BfIngressMirrorLagGroup
