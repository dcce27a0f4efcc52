#pragma once

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfile.h"
#include "BfIngressMirrorLagGroup/model/TypedEntityNotifieeConst.h"
#include "BfnTable/BfnGroupId.h"
#include "BfnTable/BfnMemberId.h"
#include "Vel/NotificationKind.h"

namespace BfIngressMirrorLagGroup {

// Observer of the action profile: told when a selector group or an entry is
// added, replaced or removed.
class IngressMirrorLagGroupActionProfile::NotifieeConst
    : public TypedEntityNotifieeConst<IngressMirrorLagGroupActionProfile> {
 public:
  // The group of this id was added or removed; called at once.
  virtual void onGroup(BfnTable::BfnGroupId groupId);
  // Groups changed in a bulk change that has just ended.
  virtual void onGroupvelImmediate();
  // Groups changed; delivered later by the activity manager.
  virtual void onGroup();
  // The entry of this member id was added, replaced or removed; called at once.
  virtual void onEntry(BfnTable::BfnMemberId memberId);
  // Entries changed in a bulk change that has just ended.
  virtual void onEntryvelImmediate();
  // Entries changed; delivered later by the activity manager.
  virtual void onEntry();

  // Routes the key-less notifications of `group` and `entry` to their forms above.
  void handleNotification(unsigned attributeNumber, Vel::NotificationKind kind) override;
};

}  // namespace BfIngressMirrorLagGroup
