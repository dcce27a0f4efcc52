#pragma once

#include "Vel/TypeRecord.h"

#include <cstdint>

#include "BfIngressMirrorLagGroup/hw/IngressMirrorLagGroupTableHelper.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfile.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileEntry.h"
#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupGroup.h"
#include "BfnTable/BfnGroupId.h"
#include "BfnTable/BfnMemberId.h"
#include "BfnTableStatusManager/StatusManager.h"
#include "MbbVaultKey/VaultKeyManager.h"
#include "Vel/HashMap.h"
#include "Vel/Ptr.h"
#include "Vel/PtrInterface.h"

namespace BfIngressMirrorLagGroup {

// The action-profile state machine: it follows the action-profile
// configuration entity and keeps the chip in line with it, one reactor per
// configured member (VelActionProfile) and per selector group (VelGroup, which
// keeps one VelGroupMember per member of its group). Every edit of the entity
// is programmed before the edit returns; a PD failure throws out of the edit.
//
// Made once per table by ingressMirrorLagGroupActionProfileFactory and kept
// for the life of the process. Made directly (IngressMirrorLagGroupActionProfileSmIs)
// on an entity that already holds members and groups, it programs every member
// before any group. Going away, or turning into a zombie, it deletes the
// members from the chip first, then the groups.
class IngressMirrorLagGroupActionProfileSm : public Vel::PtrInterface {
 public:
  class VelIngressMirrorLagGroupActionProfile;
  class VelActionProfile;
  class VelGroup;

  using Entity = IngressMirrorLagGroupActionProfile;
  using Entry = IngressMirrorLagGroupActionProfileEntry;
  using Group = IngressMirrorLagGroupGroup;
  using ActionProfileMap = Vel::HashMap<VelActionProfile, BfnTable::BfnMemberId, Entry>;
  using GroupMap = Vel::HashMap<VelGroup, BfnTable::BfnGroupId, Group>;

  // Makes the state machine on `entity` (may be null: then it follows
  // nothing) and switches its notification on. `vaultKeyManager` and
  // `statusManager` may be null.
  static Vel::Ptr<IngressMirrorLagGroupActionProfileSm> IngressMirrorLagGroupActionProfileSmIs(
      const Vel::Ptr<Entity>& entity, const Vel::Ptr<IngressMirrorLagGroupTableHelper>& helper,
      const Vel::Ptr<MbbVaultKey::VaultKeyManager>& vaultKeyManager,
      const Vel::Ptr<BfnTableStatusManager::StatusManager>& statusManager);

  IngressMirrorLagGroupActionProfileSm(
      const Vel::Ptr<Entity>& entity, const Vel::Ptr<IngressMirrorLagGroupTableHelper>& helper,
      const Vel::Ptr<MbbVaultKey::VaultKeyManager>& vaultKeyManager,
      const Vel::Ptr<BfnTableStatusManager::StatusManager>& statusManager);
  // Turns into a zombie (members, then groups, are deleted from the chip) and
  // drops every reactor. A PD failure here ends the process.
  ~IngressMirrorLagGroupActionProfileSm() override;
  IngressMirrorLagGroupActionProfileSm(const IngressMirrorLagGroupActionProfileSm&) = delete;
  IngressMirrorLagGroupActionProfileSm& operator=(const IngressMirrorLagGroupActionProfileSm&) =
      delete;
  // The framework's record of this type (see reflect/).
  static const Vel::TypeRecord& typeRecord();
  const Vel::TypeRecord* fwkType() const override;

  // The reactor on the configuration entity; null when none is followed.
  const Vel::Ptr<VelIngressMirrorLagGroupActionProfile>& ingressMirrorLagGroupActionProfileReactor()
      const noexcept {
    return ingressMirrorLagGroupActionProfile_;
  }
  // The configuration entity that is followed; null when none is.
  Vel::Ptr<Entity> ingressMirrorLagGroupActionProfile() const;
  const Vel::Ptr<IngressMirrorLagGroupTableHelper>& helper() const noexcept { return helper_; }
  const Vel::Ptr<MbbVaultKey::VaultKeyManager>& vaultKeyManager() const noexcept {
    return vaultKeyManager_;
  }
  const Vel::Ptr<BfnTableStatusManager::StatusManager>& statusManager() const noexcept {
    return statusManager_;
  }
  // The session that member modifies and deletes and every group and
  // group-member call pass; 0 until the host sets it.
  std::uint32_t sessionHandle() const noexcept { return sessionHandle_; }
  void sessionHandleIs(std::uint32_t sessionHandle) noexcept { sessionHandle_ = sessionHandle; }

  // The member reactors, keyed by member id.
  Vel::Ptr<VelActionProfile> actionProfile(BfnTable::BfnMemberId memberId);
  Vel::Ptr<const VelActionProfile> actionProfile(BfnTable::BfnMemberId memberId) const;
  std::size_t actionProfiles() const noexcept { return actionProfile_.size(); }
  std::size_t actionProfileBuckets() const noexcept { return actionProfile_.buckets(); }
  ActionProfileMap::Iterator actionProfileIterator();
  ActionProfileMap::IteratorConst actionProfileIteratorConst() const;
  // Makes the reactor of `entry`'s member id, which programs the member, or
  // re-points the existing one at `entry`, which programs it again. A null
  // entry is a range exception.
  Vel::Ptr<VelActionProfile> actionProfileIs(const Vel::Ptr<const Entry>& entry);
  // Drops the reactor of `memberId`, which deletes the member from the chip;
  // gives back the entry it followed (null for an unknown id). When the chip
  // refuses the delete, the exception passes on and the reactor stays.
  Vel::Ptr<const Entry> actionProfileDel(BfnTable::BfnMemberId memberId);
  void actionProfileDelAll();

  // The group reactors, keyed by group id.
  Vel::Ptr<VelGroup> group(BfnTable::BfnGroupId groupId);
  Vel::Ptr<const VelGroup> group(BfnTable::BfnGroupId groupId) const;
  std::size_t groups() const noexcept { return group_.size(); }
  std::size_t groupBuckets() const noexcept { return group_.buckets(); }
  GroupMap::Iterator groupIterator();
  GroupMap::IteratorConst groupIteratorConst() const;
  // Makes the reactor of `group`'s id, which creates the group in the chip and
  // gives it its initial member, or re-points the existing one at `group`. A
  // null group is a range exception.
  Vel::Ptr<VelGroup> groupIs(const Vel::Ptr<const Group>& group);
  // Drops the reactor of `groupId`, which takes every member out of the
  // hardware group and deletes it; gives back the group it followed (null for
  // an unknown id). When the chip refuses, the exception passes on and the
  // reactor stays.
  Vel::Ptr<const Group> groupDel(BfnTable::BfnGroupId groupId);
  void groupDelAll();

  // Brings the member reactors in line with `entity`'s entries: a reactor
  // made or re-pointed for every entry, in the collection's order, then those
  // of ids the entity no longer holds dropped. groupsAreFrom does the same
  // for the selector groups.
  void actionProfilesAreFrom(const Entity& entity);
  void groupsAreFrom(const Entity& entity);

  // Follows another configuration entity: the collections are brought in line
  // with it (members first). A null entity drops the configuration reactor.
  void ingressMirrorLagGroupActionProfileIs(const Vel::Ptr<Entity>& entity);
  // Stops following the entity and gives it back; no reactor is touched, so
  // nothing leaves the chip.
  Vel::Ptr<Entity> ingressMirrorLagGroupActionProfileDel();

  // Sets its own flag, then the configuration reactor's, then each member
  // reactor's, then each group reactor's.
  void hasNotificationActiveIs(bool active) override;
  // Moves the whole tree of reactors into (true) or out of the zombie state:
  // the configuration reactor, the member reactors, the group reactors, then
  // itself. Nothing happens when the state is already `zombie`.
  virtual void velDoZombieReactors(bool zombie);

  // Runs the delete of a member reactor that is turning into a zombie.
  void vel_handleActionProfile(const Vel::Ptr<VelActionProfile>& reactor);
  // Runs the delete of a group reactor that is turning into a zombie.
  void vel_handleGroup(const Vel::Ptr<VelGroup>& reactor);

 private:
  void dropReactors() noexcept;

  Vel::Ptr<VelIngressMirrorLagGroupActionProfile> ingressMirrorLagGroupActionProfile_;
  Vel::Ptr<IngressMirrorLagGroupTableHelper> helper_;
  Vel::Ptr<MbbVaultKey::VaultKeyManager> vaultKeyManager_;
  Vel::Ptr<BfnTableStatusManager::StatusManager> statusManager_;
  std::uint32_t sessionHandle_ = 0;
  ActionProfileMap actionProfile_;
  GroupMap group_;
};

}  // namespace BfIngressMirrorLagGroup
