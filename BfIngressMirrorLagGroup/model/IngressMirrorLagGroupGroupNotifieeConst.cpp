#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupGroupNotifieeConst.h"

namespace BfIngressMirrorLagGroup {

void IngressMirrorLagGroupGroup::NotifieeConst::onMember(BfnTable::BfnMemberId) {}

void IngressMirrorLagGroupGroup::NotifieeConst::onMembervelImmediate() {}

void IngressMirrorLagGroupGroup::NotifieeConst::onMember() {}

void IngressMirrorLagGroupGroup::NotifieeConst::handleNotification(unsigned attributeNumber,
                                                                   Vel::NotificationKind kind) {
  if (attributeNumber != memberAttribute) {
    TypedEntityNotifieeConst::handleNotification(attributeNumber, kind);
    return;
  }
  if (kind == Vel::NotificationKind::immediate)
    onMembervelImmediate();
  else
    onMember();
}

}  // namespace BfIngressMirrorLagGroup
