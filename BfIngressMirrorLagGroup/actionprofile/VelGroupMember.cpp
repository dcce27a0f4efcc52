#include "BfIngressMirrorLagGroup/actionprofile/VelGroupMember.h"

#include <exception>

#include "BfIngressMirrorLagGroup/actionprofile/ReactorState.h"
#include "BfIngressMirrorLagGroup/actionprofile/VelActionProfile.h"
#include "BfIngressMirrorLagGroup/hw/DeviceTarget.h"
#include "BfIngressMirrorLagGroup/hw/PdCall.h"
#include "BfIngressMirrorLagGroup/hw/PluginTrace.h"
#include "BfIngressMirrorLagGroup/hw/TableSourcePath.h"
#include "Quill/Assert.h"

namespace BfIngressMirrorLagGroup {

namespace {

using PdLib = IngressMirrorLagGroupTableHelper::PdLib;
using VelGroupMember = IngressMirrorLagGroupActionProfileSm::VelGroup::VelGroupMember;

// Lines of the table description at which the handlers trace and assert.
constexpr unsigned addLine = 451;
constexpr unsigned addMemberHandleLine = 456;
constexpr unsigned addGroupHandleLine = 457;
constexpr unsigned addTapLine = 459;
constexpr unsigned addActionTypeLine = 460;
constexpr unsigned delLine = 471;
constexpr unsigned delMemberHandleLine = 476;
constexpr unsigned delLastMemberLine = 480;
constexpr unsigned activeLine = 492;
constexpr unsigned inactiveMemberHandleLine = 498;
constexpr unsigned inactiveGroupHandleLine = 499;
constexpr unsigned activeMemberHandleLine = 509;
constexpr unsigned activeGroupHandleLine = 510;

constexpr const char* addSignature =
    "void BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::VelGroup::VelGroupMember::"
    "handleMemberAdd()";
constexpr const char* delSignature =
    "void BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::VelGroup::VelGroupMember::"
    "handleMemberDel()";
constexpr const char* activeSignature =
    "void BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::VelGroup::VelGroupMember::"
    "handleActive()";

// The texts of the handle assertions.
constexpr const char* memberHandleText =
    "actionProfileSm->helper()->sdkHandles()->member( groupMember()->memberId() )";
constexpr const char* groupHandleText =
    "actionProfileSm->helper()->sdkHandles()->group( velGroup()->groupId() )";

// The action type of an action-profile member's action; none without an action.
bool sameActionType(const IngressMirrorLagGroupActionProfileEntry::ActionSpec& action,
                    IngressMirrorLagGroupActionProfileType type) noexcept {
  return action != nullptr && action->actionType() == type;
}

}  // namespace

VelGroupMember::VelGroupMember(const Vel::Ptr<const IngressMirrorLagGroupMember>& member,
                               VelGroup* velGroup)
    : velGroup_(velGroup), memberId_(member->memberId()) {
  reactorNotifierIs(*this, member);
  isRegisteredNotifieeIs(true);
  handleMemberAdd();
}

VelGroupMember::~VelGroupMember() {
  try {
    velDoZombieReactors(true);
  } catch (...) {
    std::terminate();
  }
}

void VelGroupMember::hasNotificationActiveIs(bool active) {
  reactorNotificationIs(*this, active);
}

void VelGroupMember::notifierIs(const Vel::Ptr<const Vel::PtrInterface>& notifier) {
  const auto member = Vel::ptr_cast<const IngressMirrorLagGroupMember>(notifier);
  if (member == groupMember())
    return;
  reactorNotifierIs(*this, member);
  if (member != nullptr && !velMarkedForDeletion())
    handleActive();
  isRegisteredNotifieeIs(true);
}

void VelGroupMember::onActive() {
  if (velMarkedForDeletion())
    return;
  handleActive();
}

void VelGroupMember::velDoZombieReactors(bool zombie) {
  reactorZombieIs(*this, zombie, [this, zombie] {
    if (!zombie || velGroup_ == nullptr)
      return;
    // A reactor being destroyed has no reference left to lend its owner.
    if (references() == 0)
      handleMemberDel();
    else
      velGroup_->vel_handleGroupMember(Vel::Ptr<VelGroupMember>(this));
  });
}

void VelGroupMember::handleMemberAdd() {
  tracePoint(9, addLine, "handleMemberAdd", addSignature);
  initSelGroupStatus();
  IngressMirrorLagGroupActionProfileSm* actionProfileSm =
      velGroup_->ingressMirrorLagGroupActionProfileSm();
  const BfnTable::BfnSdkMemberHandle mbr_hdl = memberHandle();
  QUILL_ASSERT_AT(mbr_hdl != 0, memberHandleText, tableSourcePath, addMemberHandleLine);
  const BfnTable::BfnSdkGroupHandle grp_hdl = groupHandle();
  QUILL_ASSERT_AT(grp_hdl != 0, groupHandleText, tableSourcePath, addGroupHandleLine);
  const Vel::Ptr<IngressMirrorLagGroupActionProfileSm::VelActionProfile> tap =
      actionProfileSm->actionProfile(memberId_);
  QUILL_ASSERT_AT(tap != nullptr, "tap", tableSourcePath, addTapLine);
  QUILL_ASSERT_AT(
      sameActionType(tap->actionProfile()->action(), velGroup_->group()->actionType()),
      "tap->actionProfile()->action()->actionType() == velGroup()->group()->actionType()",
      tableSourcePath, addActionTypeLine);
  const Vel::Ptr<IngressMirrorLagGroupTableHelper>& helper = actionProfileSm->helper();
  pdCall(helper, "p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_to_group",
         [&](PdLib& pd) {
           return pd.p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_to_group(
               actionProfileSm->sessionHandle(), deviceId(*helper), grp_hdl, mbr_hdl);
         });
  // A member joins a hardware group active; one configured inactive is set
  // so at once, so that the chip follows the configuration from the start.
  if (groupMember()->active())
    return;
  try {
    memberStateIs(P4_PD_GROUP_MEMBER_INACTIVE);
  } catch (...) {
    // Not left in the hardware group, where the chip would select it against
    // the configuration and no reactor would ever take it out.
    leaveGroup(grp_hdl, mbr_hdl);
    throw;
  }
}

void VelGroupMember::handleMemberDel() {
  tracePoint(9, delLine, "handleMemberDel", delSignature);
  initSelGroupStatus();
  IngressMirrorLagGroupActionProfileSm* actionProfileSm =
      velGroup_ != nullptr ? velGroup_->ingressMirrorLagGroupActionProfileSm() : nullptr;
  if (actionProfileSm == nullptr)
    return;
  const BfnTable::BfnSdkMemberHandle mbr_hdl = memberHandle();
  QUILL_ASSERT_AT(mbr_hdl != 0, memberHandleText, tableSourcePath, delMemberHandleLine);
  const Vel::Ptr<IngressMirrorLagGroupActionProfileSm::VelGroup> owner =
      actionProfileSm->group(velGroup_->groupId());
  if (owner == nullptr || owner->group() == nullptr)
    return;
  QUILL_ASSERT_AT(owner->group()->members() > 0,
                  "actionProfileSm->group( velGroup()->groupId() )->members() > 0 && \"deleting "
                  "the last member is not allowed\"",
                  tableSourcePath, delLastMemberLine);
  leaveGroup(groupHandle(), mbr_hdl);
}

void VelGroupMember::leaveGroup(BfnTable::BfnSdkGroupHandle grp_hdl,
                                BfnTable::BfnSdkMemberHandle mbr_hdl) {
  IngressMirrorLagGroupActionProfileSm* actionProfileSm =
      velGroup_->ingressMirrorLagGroupActionProfileSm();
  const Vel::Ptr<IngressMirrorLagGroupTableHelper>& helper = actionProfileSm->helper();
  pdCall(helper, "p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member_from_group",
         [&](PdLib& pd) {
           return pd.p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member_from_group(
               actionProfileSm->sessionHandle(), deviceId(*helper), grp_hdl, mbr_hdl);
         });
}

void VelGroupMember::handleActive() {
  tracePoint(9, activeLine, "handleActive", activeSignature);
  initSelGroupStatus();
  if (!groupMember()->active()) {
    QUILL_ASSERT_AT(memberHandle() != 0, memberHandleText, tableSourcePath,
                    inactiveMemberHandleLine);
    QUILL_ASSERT_AT(groupHandle() != 0, groupHandleText, tableSourcePath, inactiveGroupHandleLine);
    memberStateIs(P4_PD_GROUP_MEMBER_INACTIVE);
  } else {
    QUILL_ASSERT_AT(memberHandle() != 0, memberHandleText, tableSourcePath, activeMemberHandleLine);
    QUILL_ASSERT_AT(groupHandle() != 0, groupHandleText, tableSourcePath, activeGroupHandleLine);
    memberStateIs(P4_PD_GROUP_MEMBER_ACTIVE);
  }
}

BfnTable::BfnSdkMemberHandle VelGroupMember::memberHandle() const {
  return velGroup_->ingressMirrorLagGroupActionProfileSm()->helper()->sdkHandles()->member(
      memberId_);
}

BfnTable::BfnSdkGroupHandle VelGroupMember::groupHandle() const {
  return velGroup_->ingressMirrorLagGroupActionProfileSm()->helper()->sdkHandles()->group(
      velGroup_->groupId());
}

void VelGroupMember::memberStateIs(std::int32_t state) {
  IngressMirrorLagGroupActionProfileSm* actionProfileSm =
      velGroup_->ingressMirrorLagGroupActionProfileSm();
  const Vel::Ptr<IngressMirrorLagGroupTableHelper>& helper = actionProfileSm->helper();
  const BfnTable::BfnSdkMemberHandle mbr_hdl = memberHandle();
  const BfnTable::BfnSdkGroupHandle grp_hdl = groupHandle();
  pdCall(helper, "p4_pd_kestro_switch_mirrorLagPortActionProfile_group_member_state_set",
         [&](PdLib& pd) {
           return pd.p4_pd_kestro_switch_mirrorLagPortActionProfile_group_member_state_set(
               actionProfileSm->sessionHandle(), deviceId(*helper), grp_hdl, mbr_hdl, state);
         });
}

void VelGroupMember::initSelGroupStatus() const {
  IngressMirrorLagGroupActionProfileSm* actionProfileSm =
      velGroup_ != nullptr ? velGroup_->ingressMirrorLagGroupActionProfileSm() : nullptr;
  if (actionProfileSm != nullptr && actionProfileSm->statusManager())
    actionProfileSm->statusManager()->initSelGroupStatus(velGroup_->groupId());
}

}  // namespace BfIngressMirrorLagGroup
