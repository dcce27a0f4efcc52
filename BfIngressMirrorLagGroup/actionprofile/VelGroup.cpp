#include "BfIngressMirrorLagGroup/actionprofile/VelGroup.h"

#include <algorithm>
#include <exception>
#include <vector>

#include "BfIngressMirrorLagGroup/actionprofile/ReactorState.h"
#include "BfIngressMirrorLagGroup/actionprofile/VelGroupMember.h"
#include "BfIngressMirrorLagGroup/hw/DeviceTarget.h"
#include "BfIngressMirrorLagGroup/hw/PdCall.h"
#include "BfIngressMirrorLagGroup/hw/PluginTrace.h"
#include "BfIngressMirrorLagGroup/hw/TableSourcePath.h"
#include "Quill/Assert.h"
#include "Vel/Allocate.h"
#include "Vel/RangeException.h"

namespace BfIngressMirrorLagGroup {

namespace {

using PdLib = IngressMirrorLagGroupTableHelper::PdLib;
using VelGroup = IngressMirrorLagGroupActionProfileSm::VelGroup;

// Initial bucket count of the member reactor collection.
constexpr std::uint32_t groupMemberInitialSize = 4;

// Lines of the table description at which the handlers trace and assert.
constexpr unsigned addLine = 404;
constexpr unsigned delLine = 433;
constexpr unsigned delHandleLine = 437;

constexpr const char* addSignature =
    "void BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::VelGroup::"
    "handleGroupAdd()";
constexpr const char* delSignature =
    "void BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::VelGroup::"
    "handleGroupDel()";

}  // namespace

VelGroup::VelGroup(const Vel::Ptr<const IngressMirrorLagGroupGroup>& group,
                   IngressMirrorLagGroupActionProfileSm* sm)
    : sm_(sm), groupId_(group->groupId()), groupMember_(groupMemberInitialSize) {
  reactorNotifierIs(*this, group);
  isRegisteredNotifieeIs(true);
  try {
    groupMembersAreFrom(*group);
    handleGroupAdd();
  } catch (...) {
    // The member reactors made so far must not outlive their group reactor.
    dropGroupMembers();
    throw;
  }
}

VelGroup::~VelGroup() {
  try {
    velDoZombieReactors(true);
  } catch (...) {
    std::terminate();
  }
  dropGroupMembers();
}

void VelGroup::dropGroupMembers() noexcept {
  for (auto reactor = groupMember_.iterator(); reactor.valid(); ++reactor)
    reactor.ptr()->velGroupIs(nullptr);
  groupMember_.deleteAll();
}

Vel::Ptr<VelGroup::VelGroupMember> VelGroup::groupMember(BfnTable::BfnMemberId memberId) {
  return groupMember_.find(memberId);
}

Vel::Ptr<const VelGroup::VelGroupMember> VelGroup::groupMember(
    BfnTable::BfnMemberId memberId) const {
  return groupMember_.find(memberId);
}

VelGroup::GroupMemberMap::Iterator VelGroup::groupMemberIterator() {
  return groupMember_.iterator();
}

VelGroup::GroupMemberMap::IteratorConst VelGroup::groupMemberIteratorConst() const {
  return groupMember_.iteratorConst();
}

Vel::Ptr<VelGroup::VelGroupMember> VelGroup::groupMemberIs(
    const Vel::Ptr<const IngressMirrorLagGroupMember>& member) {
  if (member == nullptr) {
    Vel::throwRangeException(
        "null _groupMember parameter to mutator for "
        "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::VelGroup::groupMember not "
        "allowed\"");
  }
  Vel::Ptr<VelGroupMember> reactor = groupMember_.find(member->memberId());
  if (reactor == nullptr) {
    reactor = newGroupMember(member);
  } else if (reactor->groupMember() == member) {
    return reactor;
  } else {
    reactor->notifierIs(member);
  }
  reactor->velDoZombieReactors(velMarkedForDeletion());
  return reactor;
}

Vel::Ptr<VelGroup::VelGroupMember> VelGroup::newGroupMember(
    const Vel::Ptr<const IngressMirrorLagGroupMember>& member) {
  const Vel::Ptr<VelGroupMember> reactor = Vel::allocate<VelGroupMember>(member, this);
  reactor->hasNotificationActiveIs(true);
  groupMember_.insert(reactor);
  return reactor;
}

// The reactor leaves the hardware group while it is still held, so that a
// refused removal leaves it where it was.
Vel::Ptr<VelGroup::VelGroupMember> VelGroup::groupMemberDel(BfnTable::BfnMemberId memberId) {
  const Vel::Ptr<VelGroupMember> reactor = groupMember_.find(memberId);
  if (reactor == nullptr)
    return nullptr;
  reactor->velDoZombieReactors(true);
  groupMember_.remove(memberId);
  reactor->velGroupIs(nullptr);
  reactor->hasNotificationActiveIs(false);
  return reactor;
}

void VelGroup::groupMemberDelAll() {
  for (auto reactor = groupMember_.iterator(); reactor.valid(); ++reactor)
    groupMemberDel(reactor.key());
}

void VelGroup::groupMemberNotify(BfnTable::BfnMemberId) {}

// Once the hardware group is gone, its members have nothing left to leave.
void VelGroup::vel_handleGroupMember(const Vel::Ptr<VelGroupMember>& reactor) {
  if (!velMarkedForDeletion())
    reactor->handleMemberDel();
}

void VelGroup::hasNotificationActiveIs(bool active) {
  reactorNotificationIs(*this, active);
  for (auto reactor = groupMember_.iterator(); reactor.valid(); ++reactor)
    reactor.ptr()->hasNotificationActiveIs(active);
}

void VelGroup::notifierIs(const Vel::Ptr<const Vel::PtrInterface>& notifier) {
  const auto group = Vel::ptr_cast<const IngressMirrorLagGroupGroup>(notifier);
  if (group == this->group())
    return;
  reactorNotifierIs(*this, group);
  if (group != nullptr && !velMarkedForDeletion())
    groupMembersAreFrom(*group);
  isRegisteredNotifieeIs(true);
}

void VelGroup::onMember(BfnTable::BfnMemberId memberId) {
  const Vel::Ptr<const IngressMirrorLagGroupGroup> group = this->group();
  if (group == nullptr)
    return;
  if (const Vel::Ptr<const IngressMirrorLagGroupMember> member = group->member(memberId))
    groupMemberIs(member);
  else
    groupMemberDel(memberId);
}

void VelGroup::onMembervelImmediate() {
  if (const Vel::Ptr<const IngressMirrorLagGroupGroup> group = this->group())
    groupMembersAreFrom(*group);
}

void VelGroup::onMember() {
  onMembervelImmediate();
}

void VelGroup::groupMembersAreFrom(const IngressMirrorLagGroupGroup& group) {
  for (auto member = group.memberIteratorConst(); member.valid(); ++member)
    groupMemberIs(member.ptr());
  std::vector<BfnTable::BfnMemberId> gone;
  for (auto reactor = groupMember_.iteratorConst(); reactor.valid(); ++reactor) {
    if (group.member(reactor.key()) == nullptr)
      gone.push_back(reactor.key());
  }
  for (const BfnTable::BfnMemberId memberId : gone)
    groupMemberDel(memberId);
}

void VelGroup::velDoZombieReactors(bool zombie) {
  reactorZombieIs(*this, zombie, [this, zombie] {
    if (!zombie || sm_ == nullptr)
      return;
    // A reactor being destroyed has no reference left to lend its owner.
    if (references() == 0)
      handleGroupDel();
    else
      sm_->vel_handleGroup(Vel::Ptr<VelGroup>(this));
  });
  // The members follow; once the hardware group is gone, they have nothing
  // left to leave (vel_handleGroupMember).
  for (auto reactor = groupMember_.iterator(); reactor.valid(); ++reactor)
    reactor.ptr()->velDoZombieReactors(zombie);
}

void VelGroup::handleGroupAdd() {
  tracePoint(9, addLine, "handleGroupAdd", addSignature);
  // The key the PD layer records the new group under; not needed here.
  if (sm_->vaultKeyManager())
    sm_->vaultKeyManager()->allocAnon(groupId_.value());
  const Vel::Ptr<const IngressMirrorLagGroupGroup> group = this->group();
  const std::uint32_t maxGroupSize =
      std::min<std::uint32_t>(group->groupSize(), group->maxGroupSize());
  if (sm_->statusManager())
    sm_->statusManager()->initSelGroupStatus(groupId_);
  createGroup(maxGroupSize);
  const Vel::Ptr<IngressMirrorLagGroupActionProfile> profile =
      sm_->ingressMirrorLagGroupActionProfile();
  QUILL_ASSERT(profile != nullptr);
  const Vel::Ptr<IngressMirrorLagGroupGroup> configured = profile->group(groupId_);
  QUILL_ASSERT(configured != nullptr);
  const BfnTable::BfnMemberId initialMemberId(group->initialMemberId());
  const bool initialMemberAdded = configured->member(initialMemberId) == nullptr;
  try {
    configured->memberIs(initialMemberId);
  } catch (...) {
    // The group is created with its initial member or not at all: neither the
    // hardware group nor its handle, nor the member given to the configured
    // group, outlives the refusal, so that the group can be programmed again.
    if (initialMemberAdded)
      configured->memberDel(initialMemberId);
    deleteGroup();
    throw;
  }
}

void VelGroup::createGroup(std::uint32_t maxGroupSize) {
  const Vel::Ptr<IngressMirrorLagGroupTableHelper>& helper = sm_->helper();
  BfnTable::BfnSdkGroupHandle groupHandle = 0;
  pdCall(helper, "p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group", [&](PdLib& pd) {
    return pd.p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group(
        sm_->sessionHandle(), deviceTarget(*helper), maxGroupSize, &groupHandle);
  });
  helper->sdkHandles()->groupIs(groupId_, groupHandle);
}

void VelGroup::handleGroupDel() {
  tracePoint(9, delLine, "handleGroupDel", delSignature);
  if (sm_->statusManager())
    sm_->statusManager()->initSelGroupStatus(groupId_);
  const Vel::Ptr<IngressMirrorLagGroupTableHelper>& helper = sm_->helper();
  QUILL_ASSERT_AT(helper->sdkHandles()->group(groupId_) != 0,
                  "ingressMirrorLagGroupActionProfileSm()->helper()->sdkHandles()->group( "
                  "group()->groupId() )",
                  tableSourcePath, delHandleLine);
  // The members taken out so far. When the chip refuses a later call, they
  // are put back, so that the hardware group is again what the reactors
  // describe and the delete can be asked for again.
  std::vector<Vel::Ptr<VelGroupMember>> takenOut;
  try {
    for (auto reactor = groupMember_.iterator(); reactor.valid(); ++reactor) {
      reactor.ptr()->handleMemberDel();
      takenOut.push_back(reactor.ptr());
    }
    deleteGroup();
  } catch (...) {
    for (const Vel::Ptr<VelGroupMember>& member : takenOut)
      member->handleMemberAdd();
    throw;
  }
}

void VelGroup::deleteGroup() {
  const Vel::Ptr<IngressMirrorLagGroupTableHelper>& helper = sm_->helper();
  pdCall(helper, "p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group", [&](PdLib& pd) {
    return pd.p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group(
        sm_->sessionHandle(), deviceId(*helper), helper->sdkHandles()->group(groupId_));
  });
  helper->sdkHandles()->groupDel(groupId_);
}

}  // namespace BfIngressMirrorLagGroup
