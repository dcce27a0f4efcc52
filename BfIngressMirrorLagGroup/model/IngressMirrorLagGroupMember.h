#pragma once

#include "Vel/TypeRecord.h"

#include "BfnTable/BfnMemberId.h"
#include "Vel/Entity.h"
#include "Vel/HashMapLink.h"

namespace BfIngressMirrorLagGroup {

// One member of a selector group: which action-profile member takes part in
// the group, and whether the chip may select it. Held by its group's member
// collection, under the group's `member` attribute.
class IngressMirrorLagGroupMember : public Vel::Entity,
                                    public Vel::HashMapLink<IngressMirrorLagGroupMember> {
 public:
  class NotifieeConst;

  // Number of the `active` attribute in notifications.
  static constexpr unsigned activeAttribute = 259;

  // A new member is active; it is named after its member id.
  explicit IngressMirrorLagGroupMember(BfnTable::BfnMemberId memberId);
  // The framework's record of this type (see reflect/).
  static const Vel::TypeRecord& typeRecord();
  const Vel::TypeRecord* fwkType() const override;

  BfnTable::BfnMemberId memberId() const noexcept { return memberId_; }
  // The key of the member in its group's member collection.
  BfnTable::BfnMemberId fwkKey() const noexcept { return memberId_; }

  bool active() const noexcept { return active_; }
  // Switches the member in or out of selection; the notifiees are told
  // (onActive) only when the value changes.
  void activeIs(bool active);

 private:
  void activeNotify();

  BfnTable::BfnMemberId memberId_;
  bool active_ = true;
};

}  // namespace BfIngressMirrorLagGroup
