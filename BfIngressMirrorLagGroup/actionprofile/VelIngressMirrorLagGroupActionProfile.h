#pragma once

#include "BfIngressMirrorLagGroup/actionprofile/IngressMirrorLagGroupActionProfileSm.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfile.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileNotifiee.h"
#include "BfnTable/BfnGroupId.h"
#include "BfnTable/BfnMemberId.h"
#include "Vel/Ptr.h"

namespace BfIngressMirrorLagGroup {

// The state machine's reactor on the configuration entity as a whole: an
// entry or a group added to or removed from the entity makes or drops the
// state machine's reactor of that id at once. The key-less forms (after a
// bulk change, or delivered later by the activity manager) bring the whole
// collection in line with the entity.
class IngressMirrorLagGroupActionProfileSm::VelIngressMirrorLagGroupActionProfile
    : public IngressMirrorLagGroupActionProfile::Notifiee {
 public:
  // Registers on `entity`; makes no member or group reactor by itself.
  VelIngressMirrorLagGroupActionProfile(const Vel::Ptr<IngressMirrorLagGroupActionProfile>& entity,
                                        IngressMirrorLagGroupActionProfileSm* sm);

  bool velReactor() const override { return true; }
  Vel::PtrInterface* actsm() const override { return sm_; }

  IngressMirrorLagGroupActionProfileSm* ingressMirrorLagGroupActionProfileSm() const noexcept {
    return sm_;
  }
  void ingressMirrorLagGroupActionProfileSmIs(IngressMirrorLagGroupActionProfileSm* sm) noexcept {
    sm_ = sm;
  }

  // Passed to the framework only when it changes the flag.
  void hasNotificationActiveIs(bool active) override;
  // Follows another entity (one that is not an action profile counts as
  // null) and brings both collections of the state machine in line with it.
  void notifierIs(const Vel::Ptr<const Vel::PtrInterface>& notifier) override;

  void onGroup(BfnTable::BfnGroupId groupId) override;
  void onGroupvelImmediate() override;
  void onGroup() override;
  void onEntry(BfnTable::BfnMemberId memberId) override;
  void onEntryvelImmediate() override;
  void onEntry() override;

  // Flips its own marked-for-deletion bit when it differs.
  virtual void velDoZombieReactors(bool zombie);

 private:
  IngressMirrorLagGroupActionProfileSm* sm_;
};

}  // namespace BfIngressMirrorLagGroup
