#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMemberNotifieeConst.h"

namespace BfIngressMirrorLagGroup {

void IngressMirrorLagGroupMember::NotifieeConst::onActive() {}

// The flag has no key, so the keyed call is onActive() itself; the deferred
// form would only repeat it and is not delivered.
void IngressMirrorLagGroupMember::NotifieeConst::handleNotification(unsigned attributeNumber,
                                                                    Vel::NotificationKind kind) {
  if (attributeNumber == activeAttribute && kind == Vel::NotificationKind::immediate) {
    onActive();
    return;
  }
  TypedEntityNotifieeConst::handleNotification(attributeNumber, kind);
}

}  // namespace BfIngressMirrorLagGroup
