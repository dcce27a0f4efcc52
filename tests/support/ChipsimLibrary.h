#pragma once

#include <Pd/KestroSwitchPd.h>

#include "chipsim/chipsim.h"

namespace chipsim_test {

// The chip's shared library, loaded with dlopen from its build path and
// reached through dlsym'd function pointers, as a host reaches a PD library.
struct ChipsimLibrary {
  p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_fn addEntry;
  p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_with_selector_fn addEntryWithSelector;
  p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry_fn modifyEntry;
  p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry_with_selector_fn modifyEntryWithSelector;
  p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry_fn setDefaultEntry;
  p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry_with_selector_fn
      setDefaultEntryWithSelector;
  p4_pd_kestro_switch_ingressMirrorLagGroup_table_delete_fn tableDelete;
  p4_pd_kestro_switch_ingressMirrorLagGroup_table_reset_default_entry_fn tableResetDefaultEntry;
  p4_pd_kestro_switch_ingressMirrorLagGroup_set_property_fn setProperty;
  p4_pd_kestro_switch_ingressMirrorLagGroup_get_entry_fn getEntry;
  p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_to_entry_hdl_fn matchSpecToEntryHdl;
  p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector_fn addMember;
  p4_pd_kestro_switch_mirrorLagPortActionProfile_modify_member_with_setLagMemberSelector_fn
      modifyMember;
  p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member_fn delMember;
  p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group_fn createGroup;
  p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group_fn delGroup;
  p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_to_group_fn addMemberToGroup;
  p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member_from_group_fn delMemberFromGroup;
  p4_pd_kestro_switch_mirrorLagPortActionProfile_group_member_state_set_fn groupMemberStateSet;
  p4_pd_kestro_switch_mirrorLagPortActionProfile_get_first_member_fn getFirstMember;
  p4_pd_kestro_switch_mirrorLagPortActionProfile_get_next_member_fn getNextMember;
  p4_pd_kestro_switch_mirrorLagPortActionProfile_get_first_group_fn getFirstGroup;
  p4_pd_kestro_switch_mirrorLagPortActionProfile_get_next_group_fn getNextGroup;

  decltype(&chipsim_config_default) configDefault;
  decltype(&chipsim_configure) configure;
  decltype(&chipsim_config_get) configGet;
  decltype(&chipsim_attach) attach;
  decltype(&chipsim_attach_existing) attachExisting;
  decltype(&chipsim_unlink) unlink;
  decltype(&chipsim_name) name;
  decltype(&chipsim_reset) reset;
  decltype(&chipsim_fail_next) failNext;
  decltype(&chipsim_calls) calls;
  decltype(&chipsim_entries) entries;
  decltype(&chipsim_members) members;
  decltype(&chipsim_groups) groups;
  decltype(&chipsim_lookup_on_pipe) lookupOnPipe;
  decltype(&chipsim_lookup) lookup;
  decltype(&chipsim_log_count) logCount;
  decltype(&chipsim_log_line) logLine;
  decltype(&chipsim_log_clear) logClear;
  decltype(&chipsim_dump) dump;
  decltype(&chipsim_check) check;
  decltype(&chipsim_examine) examine;
  decltype(&chipsim_last_fault) lastFault;
  decltype(&chipsim_hold_lock_for_test) holdLockForTest;
  decltype(&chipsim_kill_after_changes_for_test) killAfterChangesForTest;
};

// The library, loaded on first use; a missing symbol fails the test run.
const ChipsimLibrary& chipsim();

}  // namespace chipsim_test
