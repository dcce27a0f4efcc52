#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileNotifieeConst.h"

namespace BfIngressMirrorLagGroup {

void IngressMirrorLagGroupActionProfile::NotifieeConst::onGroup(BfnTable::BfnGroupId) {}

void IngressMirrorLagGroupActionProfile::NotifieeConst::onGroupvelImmediate() {}

void IngressMirrorLagGroupActionProfile::NotifieeConst::onGroup() {}

void IngressMirrorLagGroupActionProfile::NotifieeConst::onEntry(BfnTable::BfnMemberId) {}

void IngressMirrorLagGroupActionProfile::NotifieeConst::onEntryvelImmediate() {}

void IngressMirrorLagGroupActionProfile::NotifieeConst::onEntry() {}

void IngressMirrorLagGroupActionProfile::NotifieeConst::handleNotification(
    unsigned attributeNumber, Vel::NotificationKind kind) {
  const bool immediate = kind == Vel::NotificationKind::immediate;
  switch (attributeNumber) {
    case groupAttribute:
      if (immediate)
        onGroupvelImmediate();
      else
        onGroup();
      return;
    case entryAttribute:
      if (immediate)
        onEntryvelImmediate();
      else
        onEntry();
      return;
    default:
      TypedEntityNotifieeConst::handleNotification(attributeNumber, kind);
  }
}

}  // namespace BfIngressMirrorLagGroup
