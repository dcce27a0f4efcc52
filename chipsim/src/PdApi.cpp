// The PD functions of the chip, exported by their C names. Each describes its
// call and lets PdCall run the matching operation of the chip's tables.

#pragma GCC visibility push(default)
#include <Pd/KestroSwitchPd.h>
#pragma GCC visibility pop

#include "ActionRef.h"
#include "Chip.h"
#include "PdCall.h"
#include "PdFunction.h"

using chipsim::ActionRef;
using chipsim::Chip;
using chipsim::LogLabel;
using chipsim::PdCall;
using chipsim::PdFunction;

using MatchSpec = p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t;
using ActionSpec = p4_pd_kestro_switch_setLagMemberSelector_action_spec_t;

extern "C" {

pipe_status p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry(p4_pd_session_handle_t sess_hdl,
                                                                p4_pd_device_target_t dev_tgt,
                                                                const MatchSpec* match_spec,
                                                                p4_pd_member_handle_t mbr_hdl,
                                                                p4_pd_entry_handle_t* entry_hdl) {
  return PdCall(PdFunction::addEntry)
      .session(sess_hdl)
      .target(dev_tgt)
      .matchSpec(match_spec)
      .handle(LogLabel::mbr, mbr_hdl)
      .handleOut(LogLabel::entry, entry_hdl)
      .run([&](Chip& chip) {
        return chip.table().add(dev_tgt, match_spec, ActionRef::member(mbr_hdl), entry_hdl);
      });
}

pipe_status p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_with_selector(
    p4_pd_session_handle_t sess_hdl, p4_pd_device_target_t dev_tgt, const MatchSpec* match_spec,
    p4_pd_group_handle_t grp_hdl, p4_pd_entry_handle_t* entry_hdl) {
  return PdCall(PdFunction::addEntryWithSelector)
      .session(sess_hdl)
      .target(dev_tgt)
      .matchSpec(match_spec)
      .handle(LogLabel::grp, grp_hdl)
      .handleOut(LogLabel::entry, entry_hdl)
      .run([&](Chip& chip) {
        return chip.table().add(dev_tgt, match_spec, ActionRef::group(grp_hdl), entry_hdl);
      });
}

pipe_status p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry(p4_pd_session_handle_t sess_hdl,
                                                                   p4_pd_device_id_t dev_id,
                                                                   p4_pd_entry_handle_t entry_hdl,
                                                                   p4_pd_member_handle_t mbr_hdl) {
  return PdCall(PdFunction::modifyEntry)
      .session(sess_hdl)
      .device(dev_id)
      .handle(LogLabel::entry, entry_hdl)
      .handle(LogLabel::mbr, mbr_hdl)
      .run([&](Chip& chip) {
        return chip.table().modify(dev_id, entry_hdl, ActionRef::member(mbr_hdl));
      });
}

pipe_status p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry_with_selector(
    p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id, p4_pd_entry_handle_t entry_hdl,
    p4_pd_group_handle_t grp_hdl) {
  return PdCall(PdFunction::modifyEntryWithSelector)
      .session(sess_hdl)
      .device(dev_id)
      .handle(LogLabel::entry, entry_hdl)
      .handle(LogLabel::grp, grp_hdl)
      .run([&](Chip& chip) {
        return chip.table().modify(dev_id, entry_hdl, ActionRef::group(grp_hdl));
      });
}

pipe_status p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry(
    p4_pd_session_handle_t sess_hdl, p4_pd_device_target_t dev_tgt, p4_pd_member_handle_t mbr_hdl,
    p4_pd_entry_handle_t* entry_hdl) {
  return PdCall(PdFunction::setDefaultEntry)
      .session(sess_hdl)
      .target(dev_tgt)
      .handle(LogLabel::mbr, mbr_hdl)
      .handleOut(LogLabel::entry, entry_hdl)
      .run([&](Chip& chip) {
        return chip.table().setDefault(dev_tgt, ActionRef::member(mbr_hdl), entry_hdl);
      });
}

pipe_status p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry_with_selector(
    p4_pd_session_handle_t sess_hdl, p4_pd_device_target_t dev_tgt, p4_pd_group_handle_t grp_hdl,
    p4_pd_entry_handle_t* entry_hdl) {
  return PdCall(PdFunction::setDefaultEntryWithSelector)
      .session(sess_hdl)
      .target(dev_tgt)
      .handle(LogLabel::grp, grp_hdl)
      .handleOut(LogLabel::entry, entry_hdl)
      .run([&](Chip& chip) {
        return chip.table().setDefault(dev_tgt, ActionRef::group(grp_hdl), entry_hdl);
      });
}

pipe_status p4_pd_kestro_switch_ingressMirrorLagGroup_table_delete(p4_pd_session_handle_t sess_hdl,
                                                                   p4_pd_device_id_t dev_id,
                                                                   p4_pd_entry_handle_t entry_hdl) {
  return PdCall(PdFunction::tableDelete)
      .session(sess_hdl)
      .device(dev_id)
      .handle(LogLabel::entry, entry_hdl)
      .run([&](Chip& chip) { return chip.table().remove(dev_id, entry_hdl); });
}

pipe_status p4_pd_kestro_switch_ingressMirrorLagGroup_table_reset_default_entry(
    p4_pd_session_handle_t sess_hdl, p4_pd_device_target_t dev_tgt) {
  return PdCall(PdFunction::tableResetDefaultEntry)
      .session(sess_hdl)
      .target(dev_tgt)
      .run([&](Chip& chip) { return chip.table().resetDefault(dev_tgt); });
}

pipe_status p4_pd_kestro_switch_ingressMirrorLagGroup_set_property(p4_pd_session_handle_t sess_hdl,
                                                                   p4_pd_device_id_t dev_id,
                                                                   uint32_t property,
                                                                   uint32_t value) {
  return PdCall(PdFunction::setProperty)
      .session(sess_hdl)
      .device(dev_id)
      .number(LogLabel::property, property)
      .number(LogLabel::value, value)
      .run([&](Chip& chip) { return chip.table().setProperty(dev_id, property, value); });
}

pipe_status p4_pd_kestro_switch_ingressMirrorLagGroup_get_entry(
    p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id, p4_pd_entry_handle_t entry_hdl,
    bool read_from_hw, MatchSpec* match_spec, uint32_t* member_or_group_hdl, bool* is_group) {
  return PdCall(PdFunction::getEntry)
      .session(sess_hdl)
      .device(dev_id)
      .handle(LogLabel::entry, entry_hdl)
      .flag(LogLabel::readFromHw, read_from_hw)
      .matchSpecOut(match_spec)
      .handleOut(LogLabel::mbrOrGrp, member_or_group_hdl)
      .flagOut(LogLabel::isGroup, is_group)
      .run([&](Chip& chip) {
        return chip.table().read(dev_id, entry_hdl, match_spec, member_or_group_hdl, is_group);
      });
}

pipe_status p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_to_entry_hdl(
    p4_pd_session_handle_t sess_hdl, p4_pd_device_target_t dev_tgt, const MatchSpec* match_spec,
    p4_pd_entry_handle_t* entry_hdl) {
  return PdCall(PdFunction::matchSpecToEntryHdl)
      .session(sess_hdl)
      .target(dev_tgt)
      .matchSpec(match_spec)
      .handleOut(LogLabel::entry, entry_hdl)
      .run([&](Chip& chip) { return chip.table().lookup(dev_tgt, match_spec, entry_hdl); });
}

pipe_status p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector(
    p4_pd_session_handle_t sess_hdl, p4_pd_device_target_t dev_tgt, const ActionSpec* action_spec,
    p4_pd_member_handle_t* mbr_hdl) {
  return PdCall(PdFunction::addMember)
      .session(sess_hdl)
      .target(dev_tgt)
      .actionSpec(action_spec)
      .handleOut(LogLabel::mbr, mbr_hdl)
      .run([&](Chip& chip) { return chip.members().add(dev_tgt, action_spec, mbr_hdl); });
}

pipe_status p4_pd_kestro_switch_mirrorLagPortActionProfile_modify_member_with_setLagMemberSelector(
    p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id, p4_pd_member_handle_t mbr_hdl,
    const ActionSpec* action_spec) {
  return PdCall(PdFunction::modifyMember)
      .session(sess_hdl)
      .device(dev_id)
      .handle(LogLabel::mbr, mbr_hdl)
      .actionSpec(action_spec)
      .run([&](Chip& chip) { return chip.members().modify(dev_id, mbr_hdl, action_spec); });
}

pipe_status p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member(
    p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id, p4_pd_member_handle_t mbr_hdl) {
  return PdCall(PdFunction::delMember)
      .session(sess_hdl)
      .device(dev_id)
      .handle(LogLabel::mbr, mbr_hdl)
      .run([&](Chip& chip) { return chip.members().remove(dev_id, mbr_hdl); });
}

pipe_status p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group(
    p4_pd_session_handle_t sess_hdl, p4_pd_device_target_t dev_tgt, uint32_t max_grp_size,
    p4_pd_group_handle_t* grp_hdl) {
  return PdCall(PdFunction::createGroup)
      .session(sess_hdl)
      .target(dev_tgt)
      .number(LogLabel::size, max_grp_size)
      .handleOut(LogLabel::grp, grp_hdl)
      .run([&](Chip& chip) { return chip.groups().create(dev_tgt, max_grp_size, grp_hdl); });
}

pipe_status p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group(
    p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id, p4_pd_group_handle_t grp_hdl) {
  return PdCall(PdFunction::delGroup)
      .session(sess_hdl)
      .device(dev_id)
      .handle(LogLabel::grp, grp_hdl)
      .run([&](Chip& chip) { return chip.groups().remove(dev_id, grp_hdl); });
}

pipe_status p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_to_group(
    p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id, p4_pd_group_handle_t grp_hdl,
    p4_pd_member_handle_t mbr_hdl) {
  return PdCall(PdFunction::addMemberToGroup)
      .session(sess_hdl)
      .device(dev_id)
      .handle(LogLabel::grp, grp_hdl)
      .handle(LogLabel::mbr, mbr_hdl)
      .run([&](Chip& chip) { return chip.groups().addMember(dev_id, grp_hdl, mbr_hdl); });
}

pipe_status p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member_from_group(
    p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id, p4_pd_group_handle_t grp_hdl,
    p4_pd_member_handle_t mbr_hdl) {
  return PdCall(PdFunction::delMemberFromGroup)
      .session(sess_hdl)
      .device(dev_id)
      .handle(LogLabel::grp, grp_hdl)
      .handle(LogLabel::mbr, mbr_hdl)
      .run([&](Chip& chip) { return chip.groups().removeMember(dev_id, grp_hdl, mbr_hdl); });
}

pipe_status p4_pd_kestro_switch_mirrorLagPortActionProfile_group_member_state_set(
    p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id, p4_pd_group_handle_t grp_hdl,
    p4_pd_member_handle_t mbr_hdl, int32_t state) {
  return PdCall(PdFunction::groupMemberStateSet)
      .session(sess_hdl)
      .device(dev_id)
      .handle(LogLabel::grp, grp_hdl)
      .handle(LogLabel::mbr, mbr_hdl)
      .state(state)
      .run([&](Chip& chip) {
        return chip.groups().setMemberState(dev_id, grp_hdl, mbr_hdl, state);
      });
}

pipe_status p4_pd_kestro_switch_mirrorLagPortActionProfile_get_first_member(
    p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id, p4_pd_member_handle_t* mbr_hdl) {
  return PdCall(PdFunction::getFirstMember)
      .startsWalk()
      .session(sess_hdl)
      .device(dev_id)
      .handleOut(LogLabel::mbr, mbr_hdl)
      .run([&](Chip& chip) { return chip.members().next(dev_id, 0, mbr_hdl); });
}

pipe_status p4_pd_kestro_switch_mirrorLagPortActionProfile_get_next_member(
    p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id, p4_pd_member_handle_t mbr_hdl,
    p4_pd_member_handle_t* next_mbr_hdl) {
  return PdCall(PdFunction::getNextMember)
      .session(sess_hdl)
      .device(dev_id)
      .handle(LogLabel::mbr, mbr_hdl)
      .handleOut(LogLabel::mbr, next_mbr_hdl)
      .run([&](Chip& chip) {
        // Handle 0 starts a walk in the pool; here it names no member.
        return mbr_hdl == 0 ? chipsim::kNotFound
                            : chip.members().next(dev_id, mbr_hdl, next_mbr_hdl);
      });
}

pipe_status p4_pd_kestro_switch_mirrorLagPortActionProfile_get_first_group(
    p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id, p4_pd_group_handle_t* grp_hdl) {
  return PdCall(PdFunction::getFirstGroup)
      .startsWalk()
      .session(sess_hdl)
      .device(dev_id)
      .handleOut(LogLabel::grp, grp_hdl)
      .run([&](Chip& chip) { return chip.groups().next(dev_id, 0, grp_hdl); });
}

pipe_status p4_pd_kestro_switch_mirrorLagPortActionProfile_get_next_group(
    p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id, p4_pd_group_handle_t grp_hdl,
    p4_pd_group_handle_t* next_grp_hdl) {
  return PdCall(PdFunction::getNextGroup)
      .session(sess_hdl)
      .device(dev_id)
      .handle(LogLabel::grp, grp_hdl)
      .handleOut(LogLabel::grp, next_grp_hdl)
      .run([&](Chip& chip) {
        return grp_hdl == 0 ? chipsim::kNotFound
                            : chip.groups().next(dev_id, grp_hdl, next_grp_hdl);
      });
}

}  // extern "C"
