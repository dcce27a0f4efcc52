#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileEntry.h"

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileEntryNotifieeConst.h"
#include "Vel/ValueToStrep.h"

namespace BfIngressMirrorLagGroup {

IngressMirrorLagGroupActionProfileEntry::IngressMirrorLagGroupActionProfileEntry(
    BfnTable::BfnMemberId memberId, const ActionSpec& action)
    : Vel::Entity(Vel::valueToStrep(memberId.value())), memberId_(memberId), action_(action) {}

void IngressMirrorLagGroupActionProfileEntry::actionIs(const ActionSpec& action) {
  if (action == action_)
    return;
  action_ = action;
  actionNotify();
}

void IngressMirrorLagGroupActionProfileEntry::actionNotify() {
  notify<NotifieeConst>(actionAttribute, [](NotifieeConst& notifiee) { notifiee.onAction(); });
}

}  // namespace BfIngressMirrorLagGroup
