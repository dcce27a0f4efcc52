#include "BfIngressMirrorLagGroup/actionprofile/VelIngressMirrorLagGroupActionProfile.h"

#include "BfIngressMirrorLagGroup/actionprofile/ReactorState.h"
#include "BfIngressMirrorLagGroup/actionprofile/VelActionProfile.h"
#include "BfIngressMirrorLagGroup/actionprofile/VelGroup.h"

namespace BfIngressMirrorLagGroup {

using Reactor = IngressMirrorLagGroupActionProfileSm::VelIngressMirrorLagGroupActionProfile;

Reactor::VelIngressMirrorLagGroupActionProfile(
    const Vel::Ptr<IngressMirrorLagGroupActionProfile>& entity,
    IngressMirrorLagGroupActionProfileSm* sm)
    : sm_(sm) {
  reactorNotifierIs(*this, entity);
  isRegisteredNotifieeIs(true);
}

void Reactor::hasNotificationActiveIs(bool active) {
  reactorNotificationIs(*this, active);
}

void Reactor::notifierIs(const Vel::Ptr<const Vel::PtrInterface>& notifier) {
  const auto entity = Vel::ptr_cast<const IngressMirrorLagGroupActionProfile>(notifier);
  if (entity == Notifiee::notifier())
    return;
  reactorNotifierIs(*this, entity);
  if (entity == nullptr || sm_ == nullptr)
    return;
  sm_->actionProfilesAreFrom(*entity);
  sm_->groupsAreFrom(*entity);
}

void Reactor::onGroup(BfnTable::BfnGroupId groupId) {
  const Vel::Ptr<IngressMirrorLagGroupActionProfile> entity = notifier();
  if (entity == nullptr || sm_ == nullptr)
    return;
  if (const Vel::Ptr<IngressMirrorLagGroupGroup> group = entity->group(groupId))
    sm_->groupIs(group);
  else
    sm_->groupDel(groupId);
}

void Reactor::onGroupvelImmediate() {
  const Vel::Ptr<IngressMirrorLagGroupActionProfile> entity = notifier();
  if (entity != nullptr && sm_ != nullptr)
    sm_->groupsAreFrom(*entity);
}

void Reactor::onGroup() {
  onGroupvelImmediate();
}

void Reactor::onEntry(BfnTable::BfnMemberId memberId) {
  const Vel::Ptr<IngressMirrorLagGroupActionProfile> entity = notifier();
  if (entity == nullptr || sm_ == nullptr)
    return;
  if (const Vel::Ptr<IngressMirrorLagGroupActionProfileEntry> entry = entity->entry(memberId))
    sm_->actionProfileIs(entry);
  else
    sm_->actionProfileDel(memberId);
}

void Reactor::onEntryvelImmediate() {
  const Vel::Ptr<IngressMirrorLagGroupActionProfile> entity = notifier();
  if (entity != nullptr && sm_ != nullptr)
    sm_->actionProfilesAreFrom(*entity);
}

void Reactor::onEntry() {
  onEntryvelImmediate();
}

void Reactor::velDoZombieReactors(bool zombie) {
  if (velMarkedForDeletion() != zombie)
    velMarkedForDeletionIs(zombie);
}

}  // namespace BfIngressMirrorLagGroup
