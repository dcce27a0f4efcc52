#include "BfIngressMirrorLagGroup/actionprofile/VelActionProfile.h"

#include <exception>

#include "BfIngressMirrorLagGroup/actionprofile/ReactorState.h"
#include "BfIngressMirrorLagGroup/hw/DeviceTarget.h"
#include "BfIngressMirrorLagGroup/hw/PdCall.h"
#include "BfIngressMirrorLagGroup/hw/PluginTrace.h"
#include "BfIngressMirrorLagGroup/hw/TableSourcePath.h"
#include "Quill/Assert.h"

namespace BfIngressMirrorLagGroup {

namespace {

using PdLib = IngressMirrorLagGroupTableHelper::PdLib;
using PdActionSpec = p4_pd_kestro_switch_setLagMemberSelector_action_spec_t;

// Lines of the table description at which the handlers trace and assert.
constexpr unsigned addLine = 329;
constexpr unsigned delLine = 388;
constexpr unsigned delHandleLine = 392;

constexpr const char* addSignature =
    "void BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::VelActionProfile::"
    "handleActionProfileAdd()";
constexpr const char* delSignature =
    "void BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::VelActionProfile::"
    "handleActionProfileDel()";

// Only the setLagMemberSelector action is programmed; a member without an
// action, or with another one, is left alone.
bool programmable(const IngressMirrorLagGroupActionProfileEntry::ActionSpec& action) noexcept {
  return action != nullptr && action->actionType() == setLagMemberSelectorActionProfileSpec;
}

PdActionSpec pdActionSpecOf(const IngressMirrorLagGroupBaseActionProfileSpec& action) noexcept {
  return PdActionSpec{action.lagMemberSelector()};
}

}  // namespace

IngressMirrorLagGroupActionProfileSm::VelActionProfile::VelActionProfile(
    const Vel::Ptr<const IngressMirrorLagGroupActionProfileEntry>& entry,
    IngressMirrorLagGroupActionProfileSm* sm)
    : sm_(sm), memberId_(entry->memberId()) {
  reactorNotifierIs(*this, entry);
  isRegisteredNotifieeIs(true);
  handleActionProfileAdd();
}

IngressMirrorLagGroupActionProfileSm::VelActionProfile::~VelActionProfile() {
  try {
    velDoZombieReactors(true);
  } catch (...) {
    std::terminate();
  }
}

void IngressMirrorLagGroupActionProfileSm::VelActionProfile::hasNotificationActiveIs(bool active) {
  reactorNotificationIs(*this, active);
}

void IngressMirrorLagGroupActionProfileSm::VelActionProfile::notifierIs(
    const Vel::Ptr<const Vel::PtrInterface>& notifier) {
  const auto entry = Vel::ptr_cast<const IngressMirrorLagGroupActionProfileEntry>(notifier);
  if (entry == actionProfile())
    return;
  reactorNotifierIs(*this, entry);
  if (entry != nullptr && !velMarkedForDeletion())
    handleActionProfileAdd();
  isRegisteredNotifieeIs(true);
}

void IngressMirrorLagGroupActionProfileSm::VelActionProfile::onAction() {
  if (velMarkedForDeletion())
    return;
  handleActionProfileAdd();
}

void IngressMirrorLagGroupActionProfileSm::VelActionProfile::velDoZombieReactors(bool zombie) {
  reactorZombieIs(*this, zombie, [this] {
    if (sm_ == nullptr)
      return;
    // A reactor being destroyed has no reference left to lend its owner.
    if (references() == 0)
      handleActionProfileDel();
    else
      sm_->vel_handleActionProfile(Vel::Ptr<VelActionProfile>(this));
  });
}

void IngressMirrorLagGroupActionProfileSm::VelActionProfile::handleActionProfileAdd() {
  tracePoint(9, addLine, "handleActionProfileAdd", addSignature);
  if (sm_->statusManager())
    sm_->statusManager()->initAdtStatus(memberId_);
  const IngressMirrorLagGroupActionProfileEntry::ActionSpec action = actionProfile()->action();
  if (!programmable(action))
    return;
  if (sm_->helper()->sdkHandles()->member(memberId_) != 0)
    modifyMember(*action);
  else
    addMember(*action);
}

void IngressMirrorLagGroupActionProfileSm::VelActionProfile::modifyMember(
    const IngressMirrorLagGroupBaseActionProfileSpec& action) {
  const PdActionSpec spec = pdActionSpecOf(action);
  const Vel::Ptr<IngressMirrorLagGroupTableHelper>& helper = sm_->helper();
  pdCall(
      helper,
      "p4_pd_kestro_switch_mirrorLagPortActionProfile_modify_member_with_setLagMemberSelector",
      [&](PdLib& pd) {
        return pd
            .p4_pd_kestro_switch_mirrorLagPortActionProfile_modify_member_with_setLagMemberSelector(
                sm_->sessionHandle(), deviceId(*helper), helper->sdkHandles()->member(memberId_),
                &spec);
      });
}

void IngressMirrorLagGroupActionProfileSm::VelActionProfile::addMember(
    const IngressMirrorLagGroupBaseActionProfileSpec& action) {
  // The key the PD layer records the new member under; not needed here.
  if (sm_->vaultKeyManager())
    sm_->vaultKeyManager()->allocAnon(memberId_.value());
  const PdActionSpec spec = pdActionSpecOf(action);
  const Vel::Ptr<IngressMirrorLagGroupTableHelper>& helper = sm_->helper();
  BfnTable::BfnSdkMemberHandle memberHandle = 0;
  pdCall(helper,
         "p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector",
         [&](PdLib& pd) {
           return pd
               .p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector(
                   pd.sessionId(), deviceTarget(*helper), &spec, &memberHandle);
         });
  helper->sdkHandles()->memberIs(memberId_, memberHandle);
}

void IngressMirrorLagGroupActionProfileSm::VelActionProfile::handleActionProfileDel() {
  tracePoint(9, delLine, "handleActionProfileDel", delSignature);
  if (sm_->statusManager())
    sm_->statusManager()->initAdtStatus(memberId_);
  const Vel::Ptr<IngressMirrorLagGroupTableHelper>& helper = sm_->helper();
  const BfnTable::BfnSdkMemberHandle memberHandle = helper->sdkHandles()->member(memberId_);
  QUILL_ASSERT_AT(memberHandle != 0,
                  "ingressMirrorLagGroupActionProfileSm()->helper()->sdkHandles()->member( "
                  "actionProfile()->memberId() )",
                  tableSourcePath, delHandleLine);
  pdCall(helper, "p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member", [&](PdLib& pd) {
    return pd.p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member(
        sm_->sessionHandle(), deviceId(*helper), memberHandle);
  });
  helper->sdkHandles()->memberDel(memberId_);
}

}  // namespace BfIngressMirrorLagGroup
