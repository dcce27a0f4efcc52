#pragma once

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileEntry.h"
#include "BfIngressMirrorLagGroup/model/TypedEntityNotifieeConst.h"
#include "Vel/NotificationKind.h"

namespace BfIngressMirrorLagGroup {

// Observer of an action-profile entry: told when the entry's action changes.
class IngressMirrorLagGroupActionProfileEntry::NotifieeConst
    : public TypedEntityNotifieeConst<IngressMirrorLagGroupActionProfileEntry> {
 public:
  // The entry holds another action spec.
  virtual void onAction();

  // A bulk change of `action` that changed it ends in one onAction().
  void handleNotification(unsigned attributeNumber, Vel::NotificationKind kind) override;
};

}  // namespace BfIngressMirrorLagGroup
