#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileEntryNotifieeConst.h"

namespace BfIngressMirrorLagGroup {

void IngressMirrorLagGroupActionProfileEntry::NotifieeConst::onAction() {}

// The action has no key, so the keyed call is onAction() itself; the deferred
// form would only repeat it and is not delivered.
void IngressMirrorLagGroupActionProfileEntry::NotifieeConst::handleNotification(
    unsigned attributeNumber, Vel::NotificationKind kind) {
  if (attributeNumber == actionAttribute && kind == Vel::NotificationKind::immediate) {
    onAction();
    return;
  }
  TypedEntityNotifieeConst::handleNotification(attributeNumber, kind);
}

}  // namespace BfIngressMirrorLagGroup
