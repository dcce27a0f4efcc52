#pragma once

#include <cstdint>

#include "BfIngressMirrorLagGroup/actionprofile/IngressMirrorLagGroupActionProfileSm.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupGroup.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupGroupNotifieeConst.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMember.h"
#include "BfnTable/BfnGroupId.h"
#include "BfnTable/BfnMemberId.h"
#include "Vel/HashMap.h"
#include "Vel/HashMapLink.h"
#include "Vel/Ptr.h"

namespace BfIngressMirrorLagGroup {

// The reactor of one selector group. Made by the state machine's groupIs, it
// creates the group in the chip (at most 120 members, whatever size is
// configured) and then puts the group's initial member into the configured
// group, whose notification makes that member join the hardware group. It
// keeps one VelGroupMember per member of the configured group: members
// added to or removed from the group join or leave the hardware group at
// once. Turning into a zombie when the state machine drops it, it takes every
// member out of the hardware group and deletes the group.
//
// A group is always created anew: a handle refilled from the shadow tables
// after a restart is overwritten by the new group's.
class IngressMirrorLagGroupActionProfileSm::VelGroup
    : public IngressMirrorLagGroupGroup::NotifieeConst,
      public Vel::HashMapLink<VelGroup> {
 public:
  class VelGroupMember;

  using GroupMemberMap =
      Vel::HashMap<VelGroupMember, BfnTable::BfnMemberId, IngressMirrorLagGroupMember>;

  // Registers on `group`, makes the reactors of the members it already holds,
  // then creates the group in the chip. A PD failure throws and leaves no reactor.
  VelGroup(const Vel::Ptr<const IngressMirrorLagGroupGroup>& group,
           IngressMirrorLagGroupActionProfileSm* sm);
  // A reactor that is not a zombie yet deletes its group on the way out.
  ~VelGroup() override;

  bool velReactor() const override { return true; }
  Vel::PtrInterface* actsm() const override { return sm_; }

  // The group followed.
  Vel::Ptr<const IngressMirrorLagGroupGroup> group() const noexcept { return notifier(); }
  BfnTable::BfnGroupId groupId() const noexcept { return groupId_; }
  // The key in the state machine's collection: the group's id.
  BfnTable::BfnGroupId fwkKey() const noexcept { return groupId_; }

  IngressMirrorLagGroupActionProfileSm* ingressMirrorLagGroupActionProfileSm() const noexcept {
    return sm_;
  }
  void ingressMirrorLagGroupActionProfileSmIs(IngressMirrorLagGroupActionProfileSm* sm) noexcept {
    sm_ = sm;
  }
  bool initialized() const noexcept { return initialized_; }
  void initializedIs(bool initialized) noexcept { initialized_ = initialized; }

  // The member reactors, keyed by member id.
  Vel::Ptr<VelGroupMember> groupMember(BfnTable::BfnMemberId memberId);
  Vel::Ptr<const VelGroupMember> groupMember(BfnTable::BfnMemberId memberId) const;
  std::size_t groupMembers() const noexcept { return groupMember_.size(); }
  GroupMemberMap::Iterator groupMemberIterator();
  GroupMemberMap::IteratorConst groupMemberIteratorConst() const;

  // The reactor of `member`'s id: the existing one when it follows `member`,
  // the existing one re-pointed at `member` when it follows another member of
  // that id, else a new one (which adds the member to the hardware group). A
  // null member is a range exception.
  virtual Vel::Ptr<VelGroupMember> groupMemberIs(
      const Vel::Ptr<const IngressMirrorLagGroupMember>& member);
  // Makes, switches on and holds a new member reactor.
  Vel::Ptr<VelGroupMember> newGroupMember(
      const Vel::Ptr<const IngressMirrorLagGroupMember>& member);
  // Drops the reactor of `memberId`, which takes the member out of the
  // hardware group; gives it back (null for an unknown id). When the chip
  // refuses, the exception passes on and the reactor stays.
  virtual Vel::Ptr<VelGroupMember> groupMemberDel(BfnTable::BfnMemberId memberId);
  // Drops every member reactor, in the collection's order.
  void groupMemberDelAll();
  // The framework's hook on changes of the member collection; nothing to do.
  virtual void groupMemberNotify(BfnTable::BfnMemberId memberId);

  // Runs the hardware removal of a member reactor that is turning into a zombie.
  void vel_handleGroupMember(const Vel::Ptr<VelGroupMember>& reactor);

  // Sets its own flag, then each member reactor's.
  void hasNotificationActiveIs(bool active) override;
  // Follows another group of the same id (one that is not a group counts as
  // null) and brings the member reactors in line with its members.
  void notifierIs(const Vel::Ptr<const Vel::PtrInterface>& notifier) override;
  // A member joined or left the group.
  void onMember(BfnTable::BfnMemberId memberId) override;
  // The member reactors are brought in line with the group's members.
  void onMembervelImmediate() override;
  void onMember() override;
  // On becoming a zombie, the group leaves the chip (through the state
  // machine's vel_handleGroup) before the bit changes; a PD failure leaves
  // the bit and the notification as they were.
  virtual void velDoZombieReactors(bool zombie);

  // Creates the group in the chip and gives it its initial member.
  void handleGroupAdd();
  // Takes every member out of the hardware group, then deletes the group.
  void handleGroupDel();

 private:
  void groupMembersAreFrom(const IngressMirrorLagGroupGroup& group);
  void createGroup(std::uint32_t maxGroupSize);
  // Deletes the hardware group and forgets its handle.
  void deleteGroup();
  void dropGroupMembers() noexcept;

  IngressMirrorLagGroupActionProfileSm* sm_;
  BfnTable::BfnGroupId groupId_;
  bool initialized_ = false;
  GroupMemberMap groupMember_;
};

}  // namespace BfIngressMirrorLagGroup
