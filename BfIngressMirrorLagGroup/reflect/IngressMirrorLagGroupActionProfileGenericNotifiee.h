#pragma once

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileNotifieeConst.h"
#include "Vel/GenericNotifieeAdapter.h"

namespace BfIngressMirrorLagGroup {

// Carries every notification of an action profile to a generic notifiee:
// `group` (258) and `entry` (259), the keyed forms with their id.
class IngressMirrorLagGroupActionProfileGenericNotifiee
    : public Vel::GenericNotifieeAdapter<IngressMirrorLagGroupActionProfileGenericNotifiee,
                                         IngressMirrorLagGroupActionProfile::NotifieeConst> {
 public:
  void onGroup(BfnTable::BfnGroupId groupId) override;
  void onGroupvelImmediate() override;
  void onGroup() override;
  void onEntry(BfnTable::BfnMemberId memberId) override;
  void onEntryvelImmediate() override;
  void onEntry() override;
};

}  // namespace BfIngressMirrorLagGroup
