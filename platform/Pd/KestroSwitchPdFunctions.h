/*
 * The PD functions of <Pd/KestroSwitchPd.h>, listed once, in the order of the
 * header. Every other list of them (the PD interface object's function table,
 * the chip model's function numbers and names, the loaders of tests and
 * benchmarks) is made from these by X-macro:
 *
 *   X(name, shortName)
 *
 * name is the function's exported C name (its pointer type is name##_fn);
 * shortName is the lower camel-case name that code which counts, logs or
 * loads the functions uses for it.
 *
 * Adding a PD function: declare it in KestroSwitchPd.h, list it here, and
 * write the code that uses it (its chip model, its call in the plug-in).
 */
#ifndef PD_KESTRO_SWITCH_PD_FUNCTIONS_H
#define PD_KESTRO_SWITCH_PD_FUNCTIONS_H

/* The functions of the table and its action profile: every PD library has them. */
#define KESTRO_SWITCH_PD_TABLE_FUNCTIONS(X)                                                        \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry, addEntry)                                 \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_with_selector, addEntryWithSelector)       \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry, modifyEntry)                           \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry_with_selector, modifyEntryWithSelector) \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry, setDefaultEntry)                  \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry_with_selector,                     \
    setDefaultEntryWithSelector)                                                                   \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_table_delete, tableDelete)                           \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_table_reset_default_entry, tableResetDefaultEntry)   \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_set_property, setProperty)                           \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_get_entry, getEntry)                                 \
  X(p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_to_entry_hdl, matchSpecToEntryHdl)        \
  X(p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector,           \
    addMember)                                                                                     \
  X(p4_pd_kestro_switch_mirrorLagPortActionProfile_modify_member_with_setLagMemberSelector,        \
    modifyMember)                                                                                  \
  X(p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member, delMember)                          \
  X(p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group, createGroup)                      \
  X(p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group, delGroup)                            \
  X(p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_to_group, addMemberToGroup)          \
  X(p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member_from_group, delMemberFromGroup)      \
  X(p4_pd_kestro_switch_mirrorLagPortActionProfile_group_member_state_set, groupMemberStateSet)

/* The action profile's read-back: a PD library may leave them out. */
#define KESTRO_SWITCH_PD_READ_BACK_FUNCTIONS(X)                                      \
  X(p4_pd_kestro_switch_mirrorLagPortActionProfile_get_first_member, getFirstMember) \
  X(p4_pd_kestro_switch_mirrorLagPortActionProfile_get_next_member, getNextMember)   \
  X(p4_pd_kestro_switch_mirrorLagPortActionProfile_get_first_group, getFirstGroup)   \
  X(p4_pd_kestro_switch_mirrorLagPortActionProfile_get_next_group, getNextGroup)

/* All of them, the table's first. */
#define KESTRO_SWITCH_PD_FUNCTIONS(X) \
  KESTRO_SWITCH_PD_TABLE_FUNCTIONS(X) \
  KESTRO_SWITCH_PD_READ_BACK_FUNCTIONS(X)

#endif /* PD_KESTRO_SWITCH_PD_FUNCTIONS_H */
