#pragma once

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMember.h"
#include "BfIngressMirrorLagGroup/model/TypedEntityNotifieeConst.h"
#include "Vel/NotificationKind.h"

namespace BfIngressMirrorLagGroup {

// Observer of a selector group member: told when the member is switched in or
// out of selection.
class IngressMirrorLagGroupMember::NotifieeConst
    : public TypedEntityNotifieeConst<IngressMirrorLagGroupMember> {
 public:
  // The member's `active` flag has changed.
  virtual void onActive();

  // A bulk change of `active` that changed the flag ends in one onActive().
  void handleNotification(unsigned attributeNumber, Vel::NotificationKind kind) override;
};

}  // namespace BfIngressMirrorLagGroup
