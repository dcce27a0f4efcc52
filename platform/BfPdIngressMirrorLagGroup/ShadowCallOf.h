#pragma once

#include "BfPdIngressMirrorLagGroup/PdFunctionId.h"
#include "BfPdIngressMirrorLagGroup/ShadowCall.h"
#include "Pd/KestroSwitchPd.h"

namespace BfPdIngressMirrorLagGroup {

// Which PD calls the shadow tables record, and what their arguments mean to
// them: ShadowCallOf<id>::kRecorded, and for a recorded function of(args...)
// with the function's own arguments. Functions not listed here (modifies,
// group membership, properties, reads) change no record: a modify keeps the
// entry's or member's handle, so its record stays valid.
template <PdFunctionId Id>
struct ShadowCallOf {
  static constexpr bool kRecorded = false;
};

namespace shadow_call {

using Op = Vault::MbbPostcodef::ShadowOp;
using MatchSpec = p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t;
using ActionSpec = p4_pd_kestro_switch_setLagMemberSelector_action_spec_t;

// A call that creates an object in the chip and gives its handle.
inline ShadowCall create(Op op, p4_pd_device_target_t target, const std::uint32_t* newHandle) {
  ShadowCall call;
  call.op = op;
  call.devPipeId = target.pipe_id;
  call.newHandle = newHandle;
  return call;
}

// An entry add, found again in the chip by its match key.
inline ShadowCall entryAdd(p4_pd_device_target_t target, const MatchSpec* match,
                           const std::uint32_t* newHandle) {
  ShadowCall call = create(Op::entryAdd, target, newHandle);
  call.ingMirrorMdMirrorSession = match != nullptr ? match->ingMirrorMdMirrorSession : 0;
  return call;
}

// A call that deletes the object of a handle.
inline ShadowCall remove(Op op, std::uint32_t handle) {
  ShadowCall call;
  call.op = op;
  call.handle = handle;
  return call;
}

}  // namespace shadow_call

using shadow_call::ActionSpec;
using shadow_call::MatchSpec;
using shadow_call::Op;

template <>
struct ShadowCallOf<PdFunctionId::p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry> {
  static constexpr bool kRecorded = true;
  static ShadowCall of(p4_pd_session_handle_t, p4_pd_device_target_t target, const MatchSpec* match,
                       p4_pd_member_handle_t, p4_pd_entry_handle_t* entry) noexcept {
    return shadow_call::entryAdd(target, match, entry);
  }
};

template <>
struct ShadowCallOf<
    PdFunctionId::p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_with_selector> {
  static constexpr bool kRecorded = true;
  static ShadowCall of(p4_pd_session_handle_t, p4_pd_device_target_t target, const MatchSpec* match,
                       p4_pd_group_handle_t, p4_pd_entry_handle_t* entry) noexcept {
    return shadow_call::entryAdd(target, match, entry);
  }
};

template <>
struct ShadowCallOf<PdFunctionId::p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry> {
  static constexpr bool kRecorded = true;
  static ShadowCall of(p4_pd_session_handle_t, p4_pd_device_target_t target, p4_pd_member_handle_t,
                       p4_pd_entry_handle_t* entry) noexcept {
    return shadow_call::create(Op::defaultEntrySet, target, entry);
  }
};

template <>
struct ShadowCallOf<
    PdFunctionId::p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry_with_selector> {
  static constexpr bool kRecorded = true;
  static ShadowCall of(p4_pd_session_handle_t, p4_pd_device_target_t target, p4_pd_group_handle_t,
                       p4_pd_entry_handle_t* entry) noexcept {
    return shadow_call::create(Op::defaultEntrySet, target, entry);
  }
};

template <>
struct ShadowCallOf<PdFunctionId::p4_pd_kestro_switch_ingressMirrorLagGroup_table_delete> {
  static constexpr bool kRecorded = true;
  static ShadowCall of(p4_pd_session_handle_t, p4_pd_device_id_t,
                       p4_pd_entry_handle_t entry) noexcept {
    return shadow_call::remove(Op::entryDelete, entry);
  }
};

template <>
struct ShadowCallOf<
    PdFunctionId::p4_pd_kestro_switch_ingressMirrorLagGroup_table_reset_default_entry> {
  static constexpr bool kRecorded = true;
  static ShadowCall of(p4_pd_session_handle_t, p4_pd_device_target_t target) noexcept {
    ShadowCall call = shadow_call::remove(Op::defaultEntryReset, 0);
    call.devPipeId = target.pipe_id;
    return call;
  }
};

template <>
struct ShadowCallOf<
    PdFunctionId::
        p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector> {
  static constexpr bool kRecorded = true;
  static ShadowCall of(p4_pd_session_handle_t, p4_pd_device_target_t target, const ActionSpec*,
                       p4_pd_member_handle_t* member) noexcept {
    return shadow_call::create(Op::memberAdd, target, member);
  }
};

template <>
struct ShadowCallOf<PdFunctionId::p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member> {
  static constexpr bool kRecorded = true;
  static ShadowCall of(p4_pd_session_handle_t, p4_pd_device_id_t,
                       p4_pd_member_handle_t member) noexcept {
    return shadow_call::remove(Op::memberDelete, member);
  }
};

template <>
struct ShadowCallOf<PdFunctionId::p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group> {
  static constexpr bool kRecorded = true;
  static ShadowCall of(p4_pd_session_handle_t, p4_pd_device_target_t target,
                       std::uint32_t maxGroupSize, p4_pd_group_handle_t* group) noexcept {
    ShadowCall call = shadow_call::create(Op::groupCreate, target, group);
    call.maxGroupSize = maxGroupSize;
    return call;
  }
};

template <>
struct ShadowCallOf<PdFunctionId::p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group> {
  static constexpr bool kRecorded = true;
  static ShadowCall of(p4_pd_session_handle_t, p4_pd_device_id_t,
                       p4_pd_group_handle_t group) noexcept {
    return shadow_call::remove(Op::groupDelete, group);
  }
};

}  // namespace BfPdIngressMirrorLagGroup
