#pragma once

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileEntryNotifieeConst.h"
#include "Vel/GenericNotifieeAdapter.h"

namespace BfIngressMirrorLagGroup {

// Carries every notification of an action-profile entry to a generic
// notifiee: `action` (260).
class IngressMirrorLagGroupActionProfileEntryGenericNotifiee
    : public Vel::GenericNotifieeAdapter<IngressMirrorLagGroupActionProfileEntryGenericNotifiee,
                                         IngressMirrorLagGroupActionProfileEntry::NotifieeConst> {
 public:
  void onAction() override;
};

}  // namespace BfIngressMirrorLagGroup
