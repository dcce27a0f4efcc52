#pragma once

#include "Pd/KestroSwitchPd.h"

// Calls X(name) for every PD function of the ingressMirrorLagGroup table and its
// action profile, in the order of the PD header.
#define BF_PD_INGRESS_MIRROR_LAG_GROUP_FUNCTIONS(X)                                         \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry)                                    \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_with_selector)                      \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry)                                 \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry_with_selector)                   \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry)                            \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry_with_selector)              \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_table_delete)                                 \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_table_reset_default_entry)                    \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_set_property)                                 \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_get_entry)                                    \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_to_entry_hdl)                      \
  X(p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector)    \
  X(p4_pd_kestro_switch_mirrorLagPortActionProfile_modify_member_with_setLagMemberSelector) \
  X(p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member)                              \
  X(p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group)                            \
  X(p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group)                               \
  X(p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_to_group)                     \
  X(p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member_from_group)                   \
  X(p4_pd_kestro_switch_mirrorLagPortActionProfile_group_member_state_set)
