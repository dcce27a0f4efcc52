#pragma once

#include "BfIngressMirrorLagGroup/actionprofile/VelGroup.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMember.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMemberNotifieeConst.h"
#include "BfnTable/BfnMemberId.h"
#include "Vel/HashMapLink.h"
#include "Vel/Ptr.h"

namespace BfIngressMirrorLagGroup {

// The reactor of one member of a selector group: made by its group reactor
// when the member joins the configured group, it adds the (already
// programmed) action-profile member to the hardware group, and sets it
// inactive there at once when it joins inactive. Each change of the member's
// `active` flag sets its state in the hardware group; turning into a zombie
// takes it out of the hardware group, which never loses its last member that
// way. Programming-order faults (a member or group not in the chip, an action
// of another type) stop the process with an assertion.
class IngressMirrorLagGroupActionProfileSm::VelGroup::VelGroupMember
    : public IngressMirrorLagGroupMember::NotifieeConst,
      public Vel::HashMapLink<VelGroupMember> {
 public:
  // Registers on `member` and adds it to the hardware group; a PD failure
  // throws and leaves no reactor.
  VelGroupMember(const Vel::Ptr<const IngressMirrorLagGroupMember>& member, VelGroup* velGroup);
  // A reactor that is not a zombie yet leaves the hardware group on the way out.
  ~VelGroupMember() override;

  bool velReactor() const override { return true; }
  Vel::PtrInterface* actsm() const override {
    return velGroup_ != nullptr ? velGroup_->ingressMirrorLagGroupActionProfileSm() : nullptr;
  }

  // The member followed.
  Vel::Ptr<const IngressMirrorLagGroupMember> groupMember() const noexcept { return notifier(); }
  // The key in the group reactor's collection: the member id.
  BfnTable::BfnMemberId fwkKey() const noexcept { return memberId_; }

  VelGroup* velGroup() const noexcept { return velGroup_; }
  void velGroupIs(VelGroup* velGroup) noexcept { velGroup_ = velGroup; }
  bool initialized() const noexcept { return initialized_; }
  void initializedIs(bool initialized) noexcept { initialized_ = initialized; }

  // Passed to the framework only when it changes the flag.
  void hasNotificationActiveIs(bool active) override;
  // Follows another member of the same id and sets its state in the hardware
  // group, unless the reactor is a zombie; an object that is not a group
  // member counts as null.
  void notifierIs(const Vel::Ptr<const Vel::PtrInterface>& notifier) override;
  // The member's flag changed: its hardware state follows, unless the
  // reactor is a zombie.
  void onActive() override;
  // On becoming a zombie the member leaves the hardware group (through the
  // group reactor's vel_handleGroupMember) before the bit changes.
  virtual void velDoZombieReactors(bool zombie);

  // Adds the member to the hardware group.
  void handleMemberAdd();
  // Takes the member out of the hardware group.
  void handleMemberDel();
  // Sets the member active or inactive in the hardware group.
  void handleActive();

 private:
  BfnTable::BfnSdkMemberHandle memberHandle() const;
  BfnTable::BfnSdkGroupHandle groupHandle() const;
  void memberStateIs(std::int32_t state);
  // Takes the member out of the hardware group.
  void leaveGroup(BfnTable::BfnSdkGroupHandle grp_hdl, BfnTable::BfnSdkMemberHandle mbr_hdl);
  void initSelGroupStatus() const;

  VelGroup* velGroup_;
  BfnTable::BfnMemberId memberId_;
  bool initialized_ = false;
};

}  // namespace BfIngressMirrorLagGroup
