#pragma once

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupGroup.h"
#include "BfIngressMirrorLagGroup/model/TypedEntityNotifieeConst.h"
#include "BfnTable/BfnMemberId.h"
#include "Vel/NotificationKind.h"

namespace BfIngressMirrorLagGroup {

// Observer of a selector group: told when a member is added to or removed from
// the group.
class IngressMirrorLagGroupGroup::NotifieeConst
    : public TypedEntityNotifieeConst<IngressMirrorLagGroupGroup> {
 public:
  // The member with this id was added or removed; called at once.
  virtual void onMember(BfnTable::BfnMemberId memberId);
  // Members changed in a bulk change that has just ended.
  virtual void onMembervelImmediate();
  // Members changed; delivered later by the activity manager.
  virtual void onMember();

  // Routes the key-less notifications of `member` to the two forms above.
  void handleNotification(unsigned attributeNumber, Vel::NotificationKind kind) override;
};

}  // namespace BfIngressMirrorLagGroup
