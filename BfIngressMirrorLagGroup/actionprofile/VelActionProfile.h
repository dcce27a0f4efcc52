#pragma once

#include "BfIngressMirrorLagGroup/actionprofile/IngressMirrorLagGroupActionProfileSm.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileEntry.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileEntryNotifieeConst.h"
#include "BfnTable/BfnMemberId.h"
#include "Vel/HashMapLink.h"
#include "Vel/Ptr.h"

namespace BfIngressMirrorLagGroup {

// The reactor of one action-profile member: it follows one configured entry
// and keeps the chip's member in line with it. Made by the state machine's
// actionProfileIs, it adds the member at once (or modifies it, when the
// registry already holds a handle for the id, as after a restart); every
// change of the entry's action programs it again; turning into a zombie when
// the state machine drops it deletes the member. The member handle lives in
// the helper's registry, written only after the chip said yes.
class IngressMirrorLagGroupActionProfileSm::VelActionProfile
    : public IngressMirrorLagGroupActionProfileEntry::NotifieeConst,
      public Vel::HashMapLink<VelActionProfile> {
 public:
  // Registers on `entry` and programs its member; a PD failure throws and
  // leaves no reactor.
  VelActionProfile(const Vel::Ptr<const IngressMirrorLagGroupActionProfileEntry>& entry,
                   IngressMirrorLagGroupActionProfileSm* sm);
  // A reactor that is not a zombie yet deletes its member on the way out.
  ~VelActionProfile() override;

  bool velReactor() const override { return true; }
  Vel::PtrInterface* actsm() const override { return sm_; }

  // The entry followed.
  Vel::Ptr<const IngressMirrorLagGroupActionProfileEntry> actionProfile() const noexcept {
    return notifier();
  }
  // The key in the state machine's collection: the entry's member id.
  BfnTable::BfnMemberId fwkKey() const noexcept { return memberId_; }

  IngressMirrorLagGroupActionProfileSm* ingressMirrorLagGroupActionProfileSm() const noexcept {
    return sm_;
  }
  void ingressMirrorLagGroupActionProfileSmIs(IngressMirrorLagGroupActionProfileSm* sm) noexcept {
    sm_ = sm;
  }
  bool initialized() const noexcept { return initialized_; }
  void initializedIs(bool initialized) noexcept { initialized_ = initialized; }

  // Passed to the framework only when it changes the flag.
  void hasNotificationActiveIs(bool active) override;
  // Follows another entry of the same member id and programs it, unless the
  // reactor is a zombie; an object that is not an entry counts as null, and
  // null programs and deletes nothing.
  void notifierIs(const Vel::Ptr<const Vel::PtrInterface>& notifier) override;
  // The entry's action changed: the member is programmed again.
  void onAction() override;
  // On every change of the marked-for-deletion bit the member is deleted
  // (through the state machine's vel_handleActionProfile) before the bit
  // changes; a PD failure leaves the bit and the notification as they were.
  virtual void velDoZombieReactors(bool zombie);

  // Adds the member, or modifies it when the registry holds its handle.
  void handleActionProfileAdd();
  // Deletes the member and its registry handle.
  void handleActionProfileDel();

 private:
  void modifyMember(const IngressMirrorLagGroupBaseActionProfileSpec& action);
  void addMember(const IngressMirrorLagGroupBaseActionProfileSpec& action);

  IngressMirrorLagGroupActionProfileSm* sm_;
  BfnTable::BfnMemberId memberId_;
  bool initialized_ = false;
};

}  // namespace BfIngressMirrorLagGroup
