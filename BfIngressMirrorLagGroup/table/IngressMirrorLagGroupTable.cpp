#include "BfIngressMirrorLagGroup/table/IngressMirrorLagGroupTable.h"

#include <utility>

#include "BfIngressMirrorLagGroup/hw/DeviceTarget.h"
#include "BfIngressMirrorLagGroup/hw/PdCall.h"
#include "BfIngressMirrorLagGroup/hw/PluginTrace.h"
#include "BfIngressMirrorLagGroup/hw/TableSourcePath.h"
#include "Pd/PipeStatus.h"
#include "Quill/Assert.h"
#include "Vel/Allocate.h"

namespace BfIngressMirrorLagGroup {

namespace {

using PdLib = IngressMirrorLagGroupTableHelper::PdLib;
using PdMatchSpec = p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t;

// Lines of the table description at which the operations trace and assert.
constexpr unsigned entryByHandleLine = 110;
constexpr unsigned entryByHandleMemberLine = 146;
constexpr unsigned entryByHandleGroupLine = 161;
constexpr unsigned entryLine = 169;
constexpr unsigned entryIsLine = 179;
constexpr unsigned entryIsMatchLine = 180;
constexpr unsigned defaultMemberLine = 194;
constexpr unsigned defaultGroupLine = 212;
constexpr unsigned modifyMemberLine = 228;
constexpr unsigned modifyMemberEntryLine = 231;
constexpr unsigned addMemberLine = 247;
constexpr unsigned modifyGroupLine = 264;
constexpr unsigned modifyGroupEntryLine = 267;
constexpr unsigned addGroupLine = 283;
constexpr unsigned entryDelLine = 302;
constexpr unsigned entryDelHandleLine = 303;

// The signatures the operations trace on entry.
constexpr const char* entryIsSignature =
    "void BfIngressMirrorLagGroup::IngressMirrorLagGroupTable::entryIs(const "
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry&)";
constexpr const char* entryDelSignature =
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry "
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTable::entryDel(const Vel::Ptr<const "
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec>&)";
constexpr const char* entrySignature =
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry "
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTable::entry(const Vel::Ptr<const "
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec>&) const";
constexpr const char* entryByHandleSignature =
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry "
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTable::entryByHandle(BfnTable::"
    "BfnSdkEntryHandle) const";

PdMatchSpec pdMatchSpecOf(const IngressMirrorLagGroupMatchSpec& match) noexcept {
  return PdMatchSpec{match.ingMirrorMdMirrorSession()};
}

}  // namespace

IngressMirrorLagGroupTable::IngressMirrorLagGroupTable(
    Vel::Ptr<IngressMirrorLagGroupTableHelper> helper,
    Vel::Ptr<MbbVaultKey::VaultKeyManager> vaultKeyManager,
    Vel::Ptr<BfnTableStatusManager::StatusManager> statusManager)
    : helper_(std::move(helper)),
      vaultKeyManager_(std::move(vaultKeyManager)),
      statusManager_(std::move(statusManager)) {}

IngressMirrorLagGroupTable::~IngressMirrorLagGroupTable() = default;

// The handle look-ups and their assertions stay in this one body, so that a
// failed assertion names the operation that the caller called.
void IngressMirrorLagGroupTable::entryIs(const IngressMirrorLagGroupTableEntry& entry) {
  tracePoint(9, entryIsLine, "entryIs", entryIsSignature);
  QUILL_ASSERT_AT(entry.match() != nullptr, "entry.match() != __null", tableSourcePath,
                  entryIsMatchLine);
  if (statusManager_)
    statusManager_->initStatus(entry.match());
  const MatchSpec& match = entry.match();
  const IngressMirrorLagGroupMemberOrGroupOrNone target = entry.memberOrGroup();
  const IngressMirrorLagGroupTableHandles& handles = *helper_->sdkHandles();

  if (match == defaultMatchSpec_) {
    allocShadowKey(match);
    if (target.member) {
      const BfnTable::BfnSdkMemberHandle mbr_hdl = handles.member(target.id);
      QUILL_ASSERT_AT(mbr_hdl != 0, "mbr_hdl", tableSourcePath, defaultMemberLine);
      setDefaultEntry(mbr_hdl);
    } else {
      const BfnTable::BfnSdkGroupHandle grp_hdl = handles.group(target.id);
      QUILL_ASSERT_AT(grp_hdl != 0, "grp_hdl", tableSourcePath, defaultGroupLine);
      setDefaultEntryWithSelector(grp_hdl);
    }
    return;
  }

  // Present exactly when the registry holds a non-zero handle for this match
  // object; a key stored with handle 0 counts as absent and is added.
  const bool present = handles.entry(match) != 0;
  if (target.member) {
    if (present) {
      const BfnTable::BfnSdkMemberHandle mbr_hdl = handles.member(target.id);
      QUILL_ASSERT_AT(mbr_hdl != 0, "mbr_hdl", tableSourcePath, modifyMemberLine);
      const BfnTable::BfnSdkEntryHandle entry_hdl = handles.entry(match);
      QUILL_ASSERT_AT(entry_hdl != 0, "entry_hdl", tableSourcePath, modifyMemberEntryLine);
      modifyEntry(entry_hdl, mbr_hdl);
    } else {
      allocShadowKey(match);
      const BfnTable::BfnSdkMemberHandle mbr_hdl = handles.member(target.id);
      QUILL_ASSERT_AT(mbr_hdl != 0, "mbr_hdl", tableSourcePath, addMemberLine);
      addEntry(match, mbr_hdl);
    }
  } else {
    if (present) {
      const BfnTable::BfnSdkGroupHandle grp_hdl = handles.group(target.id);
      QUILL_ASSERT_AT(grp_hdl != 0, "grp_hdl", tableSourcePath, modifyGroupLine);
      const BfnTable::BfnSdkEntryHandle entry_hdl = handles.entry(match);
      QUILL_ASSERT_AT(entry_hdl != 0, "entry_hdl", tableSourcePath, modifyGroupEntryLine);
      modifyEntryWithSelector(entry_hdl, grp_hdl);
    } else {
      allocShadowKey(match);
      const BfnTable::BfnSdkGroupHandle grp_hdl = handles.group(target.id);
      QUILL_ASSERT_AT(grp_hdl != 0, "grp_hdl", tableSourcePath, addGroupLine);
      addEntryWithSelector(match, grp_hdl);
    }
  }
}

IngressMirrorLagGroupTableEntry IngressMirrorLagGroupTable::entryDel(
    const Vel::Ptr<const IngressMirrorLagGroupMatchSpec>& match) {
  tracePoint(9, entryDelLine, "entryDel", entryDelSignature);
  const BfnTable::BfnSdkEntryHandle entry_hdl = helper_->sdkHandles()->entry(match);
  QUILL_ASSERT_AT(entry_hdl != 0, "helper()->sdkHandles()->entry( match )", tableSourcePath,
                  entryDelHandleLine);
  if (statusManager_)
    statusManager_->initStatus(match);
  if (match == defaultMatchSpec_)
    tableResetDefaultEntry(match);
  else
    tableDelete(match, entry_hdl);
  // Every successful delete answers the same empty entry, whatever was removed.
  return IngressMirrorLagGroupTableEntry();
}

IngressMirrorLagGroupTableEntry IngressMirrorLagGroupTable::entry(
    const Vel::Ptr<const IngressMirrorLagGroupMatchSpec>& match) const {
  tracePoint(9, entryLine, "entry", entrySignature);
  if (match == nullptr)
    return IngressMirrorLagGroupTableEntry();
  const BfnTable::BfnSdkEntryHandle handle = helper_->sdkHandles()->entry(match);
  if (handle == 0)
    return IngressMirrorLagGroupTableEntry();
  return entryByHandle(handle);
}

IngressMirrorLagGroupTableEntry IngressMirrorLagGroupTable::entryByHandle(
    BfnTable::BfnSdkEntryHandle handle) const {
  tracePoint(9, entryByHandleLine, "entryByHandle", entryByHandleSignature);
  PdMatchSpec readKey{};
  std::uint32_t mbr_or_grp_hdl = 0;
  bool isGroup = false;
  // A read is not a change: a handle the chip does not know reads as an empty
  // entry, without an exception.
  const pipe_status status = pdCallStatus(helper_, [&](PdLib& pd) {
    return pd.p4_pd_kestro_switch_ingressMirrorLagGroup_get_entry(
        pd.sessionId(), deviceId(*helper_), handle, false, &readKey, &mbr_or_grp_hdl, &isGroup);
  });
  if (status != PIPE_STATUS_SUCCESS)
    return IngressMirrorLagGroupTableEntry();
  const Vel::Ptr<IngressMirrorLagGroupMatchSpec> match =
      Vel::allocate<IngressMirrorLagGroupMatchSpec>();
  match->ingMirrorMdMirrorSessionIs(readKey.ingMirrorMdMirrorSession);
  return IngressMirrorLagGroupTableEntry(
      match, isGroup ? groupOf(handle, mbr_or_grp_hdl) : memberOf(handle, mbr_or_grp_hdl));
}

IngressMirrorLagGroupTable::MatchSpec IngressMirrorLagGroupTable::defaultMatchSpecIs() {
  if (!defaultMatchSpec_)
    defaultMatchSpec_ = Vel::allocate<IngressMirrorLagGroupMatchSpec>();
  return defaultMatchSpec_;
}

IngressMirrorLagGroupTable::MatchSpec IngressMirrorLagGroupTable::defaultMatchSpecDel() {
  return std::exchange(defaultMatchSpec_, nullptr);
}

void IngressMirrorLagGroupTable::allocShadowKey(const MatchSpec& match) const {
  // The key's record is written by the PD layer once the chip has the entry;
  // the key itself is not needed here.
  if (vaultKeyManager_)
    vaultKeyManager_->alloc(match, false);
}

void IngressMirrorLagGroupTable::addEntry(const MatchSpec& match,
                                          BfnTable::BfnSdkMemberHandle mbr_hdl) {
  BfnTable::BfnSdkEntryHandle entry_hdl = 0;
  pdCall(helper_, "p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry", [&](PdLib& pd) {
    const PdMatchSpec spec = pdMatchSpecOf(*match);
    return pd.p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry(
        pd.sessionId(), deviceTarget(*helper_), &spec, mbr_hdl, &entry_hdl);
  });
  helper_->sdkHandles()->entryIs(match, entry_hdl);
}

void IngressMirrorLagGroupTable::addEntryWithSelector(const MatchSpec& match,
                                                      BfnTable::BfnSdkGroupHandle grp_hdl) {
  BfnTable::BfnSdkEntryHandle entry_hdl = 0;
  pdCall(helper_, "p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_with_selector",
         [&](PdLib& pd) {
           const PdMatchSpec spec = pdMatchSpecOf(*match);
           return pd.p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_with_selector(
               pd.sessionId(), deviceTarget(*helper_), &spec, grp_hdl, &entry_hdl);
         });
  helper_->sdkHandles()->entryIs(match, entry_hdl);
}

void IngressMirrorLagGroupTable::modifyEntry(BfnTable::BfnSdkEntryHandle entry_hdl,
                                             BfnTable::BfnSdkMemberHandle mbr_hdl) {
  pdCall(helper_, "p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry", [&](PdLib& pd) {
    return pd.p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry(
        pd.sessionId(), deviceId(*helper_), entry_hdl, mbr_hdl);
  });
}

void IngressMirrorLagGroupTable::modifyEntryWithSelector(BfnTable::BfnSdkEntryHandle entry_hdl,
                                                         BfnTable::BfnSdkGroupHandle grp_hdl) {
  pdCall(helper_, "p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry_with_selector",
         [&](PdLib& pd) {
           return pd.p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry_with_selector(
               pd.sessionId(), deviceId(*helper_), entry_hdl, grp_hdl);
         });
}

void IngressMirrorLagGroupTable::setDefaultEntry(BfnTable::BfnSdkMemberHandle mbr_hdl) {
  BfnTable::BfnSdkEntryHandle entry_hdl = 0;
  pdCall(helper_, "p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry", [&](PdLib& pd) {
    return pd.p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry(
        pd.sessionId(), deviceTarget(*helper_), mbr_hdl, &entry_hdl);
  });
  helper_->sdkHandles()->entryIs(defaultMatchSpec_, entry_hdl);
}

void IngressMirrorLagGroupTable::setDefaultEntryWithSelector(BfnTable::BfnSdkGroupHandle grp_hdl) {
  BfnTable::BfnSdkEntryHandle entry_hdl = 0;
  pdCall(helper_, "p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry_with_selector",
         [&](PdLib& pd) {
           return pd.p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry_with_selector(
               pd.sessionId(), deviceTarget(*helper_), grp_hdl, &entry_hdl);
         });
  helper_->sdkHandles()->entryIs(defaultMatchSpec_, entry_hdl);
}

void IngressMirrorLagGroupTable::tableDelete(const MatchSpec& match,
                                             BfnTable::BfnSdkEntryHandle entry_hdl) {
  pdCall(helper_, "p4_pd_kestro_switch_ingressMirrorLagGroup_table_delete", [&](PdLib& pd) {
    return pd.p4_pd_kestro_switch_ingressMirrorLagGroup_table_delete(pd.sessionId(),
                                                                     deviceId(*helper_), entry_hdl);
  });
  helper_->sdkHandles()->entryDel(match);
}

void IngressMirrorLagGroupTable::tableResetDefaultEntry(const MatchSpec& match) {
  pdCall(helper_, "p4_pd_kestro_switch_ingressMirrorLagGroup_table_reset_default_entry",
         [&](PdLib& pd) {
           return pd.p4_pd_kestro_switch_ingressMirrorLagGroup_table_reset_default_entry(
               pd.sessionId(), deviceTarget(*helper_));
         });
  helper_->sdkHandles()->entryDel(match);
}

IngressMirrorLagGroupMemberOrGroupOrNone IngressMirrorLagGroupTable::memberOf(
    BfnTable::BfnSdkEntryHandle handle, BfnTable::BfnSdkMemberHandle mbr_hdl) const {
  const BfnTable::BfnMemberId memberId = helper_->sdkHandles()->memberIdOf(mbr_hdl);
  if (auto trace = Vel::TraceHelper::createIfEnabled(pluginTrace(), 8)) {
    *trace << "entryByHandle"
           << ": sdkHandle=" << handle << " mbr_hdl=" << mbr_hdl
           << " memberId=" << memberId.value();
    trace->trace(tableSourcePath, entryByHandleMemberLine, "entryByHandle");
  }
  return IngressMirrorLagGroupMemberOrGroupOrNone(memberId.value(), true);
}

IngressMirrorLagGroupMemberOrGroupOrNone IngressMirrorLagGroupTable::groupOf(
    BfnTable::BfnSdkEntryHandle handle, BfnTable::BfnSdkGroupHandle grp_hdl) const {
  const BfnTable::BfnGroupId groupId = helper_->sdkHandles()->groupIdOf(grp_hdl);
  if (auto trace = Vel::TraceHelper::createIfEnabled(pluginTrace(), 8)) {
    *trace << "entryByHandle"
           << ": sdkHandle=" << handle << " grp_hdl=" << grp_hdl << " groupId=" << groupId.value();
    trace->trace(tableSourcePath, entryByHandleGroupLine, "entryByHandle");
  }
  return IngressMirrorLagGroupMemberOrGroupOrNone(groupId.value(), false);
}

}  // namespace BfIngressMirrorLagGroup
