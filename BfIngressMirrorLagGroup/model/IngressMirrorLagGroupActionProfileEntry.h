#pragma once

#include "Vel/TypeRecord.h"

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupBaseActionProfileSpec.h"
#include "BfnTable/BfnMemberId.h"
#include "Vel/Entity.h"
#include "Vel/Ptr.h"

namespace BfIngressMirrorLagGroup {

// One action-profile member as configured: its member id, fixed for life, and
// the action it carries.
class IngressMirrorLagGroupActionProfileEntry : public Vel::Entity {
 public:
  class NotifieeConst;

  using ActionSpec = Vel::Ptr<const IngressMirrorLagGroupBaseActionProfileSpec>;

  // Number of the `action` attribute in notifications.
  static constexpr unsigned actionAttribute = 260;

  // Named after its member id.
  IngressMirrorLagGroupActionProfileEntry(BfnTable::BfnMemberId memberId, const ActionSpec& action);
  // The framework's record of this type (see reflect/).
  static const Vel::TypeRecord& typeRecord();
  const Vel::TypeRecord* fwkType() const override;

  BfnTable::BfnMemberId memberId() const noexcept { return memberId_; }
  const ActionSpec& action() const noexcept { return action_; }
  // Takes another action spec; the notifiees are told (onAction) only when it
  // is another object than the one held.
  void actionIs(const ActionSpec& action);

 private:
  void actionNotify();

  BfnTable::BfnMemberId memberId_;
  ActionSpec action_;
};

}  // namespace BfIngressMirrorLagGroup
