#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMember.h"

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMemberNotifieeConst.h"
#include "Vel/ValueToStrep.h"

namespace BfIngressMirrorLagGroup {

IngressMirrorLagGroupMember::IngressMirrorLagGroupMember(BfnTable::BfnMemberId memberId)
    : Vel::Entity(Vel::valueToStrep(memberId.value())), memberId_(memberId) {}

void IngressMirrorLagGroupMember::activeIs(bool active) {
  if (active == active_)
    return;
  active_ = active;
  activeNotify();
}

void IngressMirrorLagGroupMember::activeNotify() {
  notify<NotifieeConst>(activeAttribute, [](NotifieeConst& notifiee) { notifiee.onActive(); });
}

}  // namespace BfIngressMirrorLagGroup
