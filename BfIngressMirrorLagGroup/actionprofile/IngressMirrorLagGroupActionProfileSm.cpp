#include "BfIngressMirrorLagGroup/actionprofile/IngressMirrorLagGroupActionProfileSm.h"

#include <utility>
#include <vector>

#include "BfIngressMirrorLagGroup/actionprofile/VelActionProfile.h"
#include "BfIngressMirrorLagGroup/actionprofile/VelGroup.h"
#include "BfIngressMirrorLagGroup/actionprofile/VelIngressMirrorLagGroupActionProfile.h"
#include "Vel/Allocate.h"
#include "Vel/RangeException.h"
#include "Vel/String.h"

namespace BfIngressMirrorLagGroup {

namespace {

using Sm = IngressMirrorLagGroupActionProfileSm;

// Refuses a null element handed to the mutator of a collection attribute.
[[noreturn]] void throwNullParameter(const char* attribute) {
  Vel::throwRangeException(Vel::String("null _") + attribute + " parameter to mutator for " +
                           "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::" +
                           attribute + " not allowed\"");
}

// The ids of `map`'s reactors whose key `stillWanted` refuses, in the map's
// order: taken before any is dropped, so that dropping does not disturb the walk.
template <class Map, class Wanted>
std::vector<typename Map::Key> keysNotIn(const Map& map, Wanted stillWanted) {
  std::vector<typename Map::Key> gone;
  for (auto reactor = map.iteratorConst(); reactor.valid(); ++reactor) {
    if (!stillWanted(reactor.key()))
      gone.push_back(reactor.key());
  }
  return gone;
}

// Takes a reactor out of the state machine: off its back pointer, notification off.
template <class Reactor>
void detach(Reactor& reactor) {
  reactor.ingressMirrorLagGroupActionProfileSmIs(nullptr);
  reactor.hasNotificationActiveIs(false);
}

}  // namespace

Vel::Ptr<Sm> Sm::IngressMirrorLagGroupActionProfileSmIs(
    const Vel::Ptr<Entity>& entity, const Vel::Ptr<IngressMirrorLagGroupTableHelper>& helper,
    const Vel::Ptr<MbbVaultKey::VaultKeyManager>& vaultKeyManager,
    const Vel::Ptr<BfnTableStatusManager::StatusManager>& statusManager) {
  Vel::Ptr<Sm> sm = Vel::allocate<Sm>(entity, helper, vaultKeyManager, statusManager);
  sm->hasNotificationActiveIs(true);
  return sm;
}

Sm::IngressMirrorLagGroupActionProfileSm(
    const Vel::Ptr<Entity>& entity, const Vel::Ptr<IngressMirrorLagGroupTableHelper>& helper,
    const Vel::Ptr<MbbVaultKey::VaultKeyManager>& vaultKeyManager,
    const Vel::Ptr<BfnTableStatusManager::StatusManager>& statusManager)
    : helper_(helper), vaultKeyManager_(vaultKeyManager), statusManager_(statusManager) {
  if (entity == nullptr)
    return;
  ingressMirrorLagGroupActionProfile_ =
      Vel::allocate<VelIngressMirrorLagGroupActionProfile>(entity, this);
  try {
    actionProfilesAreFrom(*entity);
    groupsAreFrom(*entity);
  } catch (...) {
    // What was programmed stays in the chip; the reactors must not outlive
    // their state machine.
    dropReactors();
    throw;
  }
}

Sm::~IngressMirrorLagGroupActionProfileSm() {
  try {
    velDoZombieReactors(true);
  } catch (...) {
    std::terminate();
  }
  dropReactors();
}

void Sm::dropReactors() noexcept {
  for (auto reactor = actionProfile_.iterator(); reactor.valid(); ++reactor)
    reactor.ptr()->ingressMirrorLagGroupActionProfileSmIs(nullptr);
  for (auto reactor = group_.iterator(); reactor.valid(); ++reactor)
    reactor.ptr()->ingressMirrorLagGroupActionProfileSmIs(nullptr);
  actionProfile_.deleteAll();
  group_.deleteAll();
  if (ingressMirrorLagGroupActionProfile_ != nullptr)
    detach(*std::exchange(ingressMirrorLagGroupActionProfile_, nullptr));
}

Vel::Ptr<IngressMirrorLagGroupActionProfile> Sm::ingressMirrorLagGroupActionProfile() const {
  return ingressMirrorLagGroupActionProfile_ != nullptr
             ? ingressMirrorLagGroupActionProfile_->notifier()
             : nullptr;
}

Vel::Ptr<Sm::VelActionProfile> Sm::actionProfile(BfnTable::BfnMemberId memberId) {
  return actionProfile_.find(memberId);
}

Vel::Ptr<const Sm::VelActionProfile> Sm::actionProfile(BfnTable::BfnMemberId memberId) const {
  return actionProfile_.find(memberId);
}

Sm::ActionProfileMap::Iterator Sm::actionProfileIterator() {
  return actionProfile_.iterator();
}

Sm::ActionProfileMap::IteratorConst Sm::actionProfileIteratorConst() const {
  return actionProfile_.iteratorConst();
}

Vel::Ptr<Sm::VelActionProfile> Sm::actionProfileIs(const Vel::Ptr<const Entry>& entry) {
  if (entry == nullptr)
    throwNullParameter("actionProfile");
  Vel::Ptr<VelActionProfile> reactor = actionProfile_.find(entry->memberId());
  if (reactor == nullptr) {
    reactor = Vel::allocate<VelActionProfile>(entry, this);
    reactor->hasNotificationActiveIs(true);
    actionProfile_.insert(reactor);
  } else if (reactor->actionProfile() == entry) {
    return reactor;
  } else {
    reactor->notifierIs(entry);
  }
  reactor->velDoZombieReactors(velMarkedForDeletion());
  return reactor;
}

// The reactor is made a zombie (the member deleted) while it is still held,
// so that a refused delete leaves it where it was.
Vel::Ptr<const Sm::Entry> Sm::actionProfileDel(BfnTable::BfnMemberId memberId) {
  const Vel::Ptr<VelActionProfile> reactor = actionProfile_.find(memberId);
  if (reactor == nullptr)
    return nullptr;
  reactor->velDoZombieReactors(true);
  actionProfile_.remove(memberId);
  detach(*reactor);
  return reactor->actionProfile();
}

void Sm::actionProfileDelAll() {
  for (auto reactor = actionProfile_.iterator(); reactor.valid(); ++reactor)
    actionProfileDel(reactor.key());
}

Vel::Ptr<Sm::VelGroup> Sm::group(BfnTable::BfnGroupId groupId) {
  return group_.find(groupId);
}

Vel::Ptr<const Sm::VelGroup> Sm::group(BfnTable::BfnGroupId groupId) const {
  return group_.find(groupId);
}

Sm::GroupMap::Iterator Sm::groupIterator() {
  return group_.iterator();
}

Sm::GroupMap::IteratorConst Sm::groupIteratorConst() const {
  return group_.iteratorConst();
}

Vel::Ptr<Sm::VelGroup> Sm::groupIs(const Vel::Ptr<const Group>& group) {
  if (group == nullptr)
    throwNullParameter("group");
  Vel::Ptr<VelGroup> reactor = group_.find(group->groupId());
  if (reactor == nullptr) {
    reactor = Vel::allocate<VelGroup>(group, this);
    reactor->hasNotificationActiveIs(true);
    group_.insert(reactor);
  } else if (reactor->group() == group) {
    return reactor;
  } else {
    reactor->notifierIs(group);
  }
  reactor->velDoZombieReactors(velMarkedForDeletion());
  return reactor;
}

// As for members, the group reactor is disposed of while it is still held:
// its members find it when they leave the hardware group.
Vel::Ptr<const Sm::Group> Sm::groupDel(BfnTable::BfnGroupId groupId) {
  const Vel::Ptr<VelGroup> reactor = group_.find(groupId);
  if (reactor == nullptr)
    return nullptr;
  reactor->velDoZombieReactors(true);
  group_.remove(groupId);
  detach(*reactor);
  return reactor->group();
}

void Sm::groupDelAll() {
  for (auto reactor = group_.iterator(); reactor.valid(); ++reactor)
    groupDel(reactor.key());
}

void Sm::actionProfilesAreFrom(const Entity& entity) {
  for (auto entry = entity.entryIteratorConst(); entry.valid(); ++entry)
    actionProfileIs(entry.value());
  for (const BfnTable::BfnMemberId memberId :
       keysNotIn(actionProfile_, [&entity](BfnTable::BfnMemberId id) { return entity.entry(id); }))
    actionProfileDel(memberId);
}

void Sm::groupsAreFrom(const Entity& entity) {
  for (auto group = entity.groupIteratorConst(); group.valid(); ++group)
    groupIs(group.ptr());
  for (const BfnTable::BfnGroupId groupId :
       keysNotIn(group_, [&entity](BfnTable::BfnGroupId id) { return entity.group(id); }))
    groupDel(groupId);
}

void Sm::ingressMirrorLagGroupActionProfileIs(const Vel::Ptr<Entity>& entity) {
  if (entity == nullptr) {
    ingressMirrorLagGroupActionProfileDel();
    return;
  }
  if (ingressMirrorLagGroupActionProfile_ == nullptr) {
    ingressMirrorLagGroupActionProfile_ =
        Vel::allocate<VelIngressMirrorLagGroupActionProfile>(entity, this);
    ingressMirrorLagGroupActionProfile_->hasNotificationActiveIs(hasNotificationActive());
    actionProfilesAreFrom(*entity);
    groupsAreFrom(*entity);
  } else {
    ingressMirrorLagGroupActionProfile_->notifierIs(entity);
  }
  ingressMirrorLagGroupActionProfile_->velDoZombieReactors(velMarkedForDeletion());
}

Vel::Ptr<IngressMirrorLagGroupActionProfile> Sm::ingressMirrorLagGroupActionProfileDel() {
  const Vel::Ptr<VelIngressMirrorLagGroupActionProfile> reactor =
      std::exchange(ingressMirrorLagGroupActionProfile_, nullptr);
  if (reactor == nullptr)
    return nullptr;
  reactor->velDoZombieReactors(true);
  detach(*reactor);
  return reactor->notifier();
}

void Sm::hasNotificationActiveIs(bool active) {
  PtrInterface::hasNotificationActiveIs(active);
  if (ingressMirrorLagGroupActionProfile_ != nullptr)
    ingressMirrorLagGroupActionProfile_->hasNotificationActiveIs(active);
  for (auto reactor = actionProfile_.iterator(); reactor.valid(); ++reactor)
    reactor.ptr()->hasNotificationActiveIs(active);
  for (auto reactor = group_.iterator(); reactor.valid(); ++reactor)
    reactor.ptr()->hasNotificationActiveIs(active);
}

void Sm::velDoZombieReactors(bool zombie) {
  if (velMarkedForDeletion() == zombie)
    return;
  if (ingressMirrorLagGroupActionProfile_ != nullptr)
    ingressMirrorLagGroupActionProfile_->velDoZombieReactors(zombie);
  for (auto reactor = actionProfile_.iterator(); reactor.valid(); ++reactor)
    reactor.ptr()->velDoZombieReactors(zombie);
  for (auto reactor = group_.iterator(); reactor.valid(); ++reactor)
    reactor.ptr()->velDoZombieReactors(zombie);
  velMarkedForDeletionIs(zombie);
}

void Sm::vel_handleActionProfile(const Vel::Ptr<VelActionProfile>& reactor) {
  reactor->handleActionProfileDel();
}

void Sm::vel_handleGroup(const Vel::Ptr<VelGroup>& reactor) {
  reactor->handleGroupDel();
}

}  // namespace BfIngressMirrorLagGroup
