/*
 * The chip vendor's program-dependent (PD) C interface of the kestro_switch P4
 * program, as far as the ingressMirrorLagGroup match table and its action
 * profile mirrorLagPortActionProfile go.
 *
 * A PD library exports every function declared here by its plain C name (the
 * read-back functions at the end may be left out); the host loads the library
 * with dlopen and resolves the functions with dlsym,
 * using the function pointer types below. Every function returns a
 * pipe_status, 0 on success.
 *
 * Handles are 32-bit numbers given out by the SDK; 0 is never a valid handle.
 * Functions that create something take a device target (device and pipe);
 * functions that act on an existing handle take the device id alone.
 */
#ifndef PD_KESTRO_SWITCH_PD_H
#define PD_KESTRO_SWITCH_PD_H

#include <stdbool.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* The SDK's status code: 0 success, anything else a failure. */
typedef int32_t pipe_status;

typedef uint32_t p4_pd_session_handle_t;
typedef int32_t p4_pd_device_id_t;
typedef uint32_t p4_pd_entry_handle_t;
typedef uint32_t p4_pd_member_handle_t;
typedef uint32_t p4_pd_group_handle_t;

/* The pipe id that addresses every pipe of a device. */
#define P4_PD_ALL_PIPES 0xFFFFu

/* Which chip, and which of its pipes, a creating call targets. */
typedef struct p4_pd_device_target_t {
  p4_pd_device_id_t device_id;
  uint32_t pipe_id; /* P4_PD_ALL_PIPES for all pipes */
} p4_pd_device_target_t;

/* Table property codes and values of ..._set_property. */
#define P4_PD_TABLE_PROPERTY_ENTRY_SCOPE 1u
#define P4_PD_ENTRY_SCOPE_ALL_PIPES 0u   /* one key space shared by all pipes */
#define P4_PD_ENTRY_SCOPE_SINGLE_PIPE 1u /* one key space per pipe */

/* Member states of ..._group_member_state_set. */
#define P4_PD_GROUP_MEMBER_ACTIVE 0
#define P4_PD_GROUP_MEMBER_INACTIVE 1

/* The match key of ingressMirrorLagGroup: the mirror session. */
typedef struct p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t {
  uint16_t ingMirrorMdMirrorSession;
} p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t;

/* The action data of setLagMemberSelector: the LAG member selector. */
typedef struct p4_pd_kestro_switch_setLagMemberSelector_action_spec_t {
  uint16_t lagMemberSelector;
} p4_pd_kestro_switch_setLagMemberSelector_action_spec_t;

/*
 * Declares one PD function: its function type NAME_t, its function pointer type
 * NAME_fn (what dlsym gives) and the function itself.
 */
#define P4_PD_FUNCTION(name, ...)            \
  typedef pipe_status name##_t(__VA_ARGS__); \
  typedef name##_t* name##_fn;               \
  name##_t name

/* Adds a match entry pointing at an action-profile member. */
P4_PD_FUNCTION(p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry, p4_pd_session_handle_t sess_hdl,
               p4_pd_device_target_t dev_tgt,
               const p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t* match_spec,
               p4_pd_member_handle_t mbr_hdl, p4_pd_entry_handle_t* entry_hdl);

/* Adds a match entry pointing at a selector group. */
P4_PD_FUNCTION(p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_with_selector,
               p4_pd_session_handle_t sess_hdl, p4_pd_device_target_t dev_tgt,
               const p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t* match_spec,
               p4_pd_group_handle_t grp_hdl, p4_pd_entry_handle_t* entry_hdl);

/* Points an existing entry (the default entry too) at a member. */
P4_PD_FUNCTION(p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry,
               p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id,
               p4_pd_entry_handle_t entry_hdl, p4_pd_member_handle_t mbr_hdl);

/* Points an existing entry (the default entry too) at a selector group. */
P4_PD_FUNCTION(p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry_with_selector,
               p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id,
               p4_pd_entry_handle_t entry_hdl, p4_pd_group_handle_t grp_hdl);

/* Points the default entry at a member; gives the default entry's handle. */
P4_PD_FUNCTION(p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry,
               p4_pd_session_handle_t sess_hdl, p4_pd_device_target_t dev_tgt,
               p4_pd_member_handle_t mbr_hdl, p4_pd_entry_handle_t* entry_hdl);

/* Points the default entry at a selector group; gives the default entry's handle. */
P4_PD_FUNCTION(p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry_with_selector,
               p4_pd_session_handle_t sess_hdl, p4_pd_device_target_t dev_tgt,
               p4_pd_group_handle_t grp_hdl, p4_pd_entry_handle_t* entry_hdl);

/* Deletes a match entry (not the default entry, which is reset instead). */
P4_PD_FUNCTION(p4_pd_kestro_switch_ingressMirrorLagGroup_table_delete,
               p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id,
               p4_pd_entry_handle_t entry_hdl);

/* Takes the default entry back to the program's initial default action. */
P4_PD_FUNCTION(p4_pd_kestro_switch_ingressMirrorLagGroup_table_reset_default_entry,
               p4_pd_session_handle_t sess_hdl, p4_pd_device_target_t dev_tgt);

/* Sets a table property (P4_PD_TABLE_PROPERTY_...). */
P4_PD_FUNCTION(p4_pd_kestro_switch_ingressMirrorLagGroup_set_property,
               p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id, uint32_t property,
               uint32_t value);

/*
 * Reads one entry back by its handle, the default entry included (its match
 * spec reads as all zero). Gives the handle of the member or group that the
 * entry points at, and whether it is a group.
 */
P4_PD_FUNCTION(p4_pd_kestro_switch_ingressMirrorLagGroup_get_entry, p4_pd_session_handle_t sess_hdl,
               p4_pd_device_id_t dev_id, p4_pd_entry_handle_t entry_hdl, bool read_from_hw,
               p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t* match_spec,
               uint32_t* member_or_group_hdl, bool* is_group);

/*
 * Finds the match entry with the match spec's key whose pipe scope covers the
 * target's pipe: the entry an add of that key for that target would clash
 * with. Gives its handle; 6 when there is none. The default entry is never
 * found this way.
 */
P4_PD_FUNCTION(p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_to_entry_hdl,
               p4_pd_session_handle_t sess_hdl, p4_pd_device_target_t dev_tgt,
               const p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t* match_spec,
               p4_pd_entry_handle_t* entry_hdl);

/* Adds an action-profile member carrying a LAG member selector. */
P4_PD_FUNCTION(p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector,
               p4_pd_session_handle_t sess_hdl, p4_pd_device_target_t dev_tgt,
               const p4_pd_kestro_switch_setLagMemberSelector_action_spec_t* action_spec,
               p4_pd_member_handle_t* mbr_hdl);

/* Changes the LAG member selector of an existing member. */
P4_PD_FUNCTION(
    p4_pd_kestro_switch_mirrorLagPortActionProfile_modify_member_with_setLagMemberSelector,
    p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id, p4_pd_member_handle_t mbr_hdl,
    const p4_pd_kestro_switch_setLagMemberSelector_action_spec_t* action_spec);

/* Deletes a member that no entry and no group uses any more. */
P4_PD_FUNCTION(p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member,
               p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id,
               p4_pd_member_handle_t mbr_hdl);

/* Creates an empty selector group that holds at most max_grp_size members. */
P4_PD_FUNCTION(p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group,
               p4_pd_session_handle_t sess_hdl, p4_pd_device_target_t dev_tgt,
               uint32_t max_grp_size, p4_pd_group_handle_t* grp_hdl);

/* Deletes a selector group that no entry uses any more, with its membership. */
P4_PD_FUNCTION(p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group,
               p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id,
               p4_pd_group_handle_t grp_hdl);

/* Adds a member to a selector group, as an active member. */
P4_PD_FUNCTION(p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_to_group,
               p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id,
               p4_pd_group_handle_t grp_hdl, p4_pd_member_handle_t mbr_hdl);

/* Takes a member out of a selector group. */
P4_PD_FUNCTION(p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member_from_group,
               p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id,
               p4_pd_group_handle_t grp_hdl, p4_pd_member_handle_t mbr_hdl);

/* Sets a group member active (P4_PD_GROUP_MEMBER_ACTIVE) or inactive. */
P4_PD_FUNCTION(p4_pd_kestro_switch_mirrorLagPortActionProfile_group_member_state_set,
               p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id,
               p4_pd_group_handle_t grp_hdl, p4_pd_member_handle_t mbr_hdl, int32_t state);

/*
 * Read-back of the action profile, for a host that makes sure after a restart
 * that the chip holds no member or group it does not know of. A PD library may
 * leave them out: the table's PD interface object does not use them, and a
 * host looks them up with dlsym and does without when they are absent. Each
 * walk goes in the chip's own order and ends with status 6 (not found), also
 * given for a handle that names no member or group.
 */

/* The first member of the action profile. */
P4_PD_FUNCTION(p4_pd_kestro_switch_mirrorLagPortActionProfile_get_first_member,
               p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id,
               p4_pd_member_handle_t* mbr_hdl);

/* The member after mbr_hdl. */
P4_PD_FUNCTION(p4_pd_kestro_switch_mirrorLagPortActionProfile_get_next_member,
               p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id,
               p4_pd_member_handle_t mbr_hdl, p4_pd_member_handle_t* next_mbr_hdl);

/* The first selector group of the action profile. */
P4_PD_FUNCTION(p4_pd_kestro_switch_mirrorLagPortActionProfile_get_first_group,
               p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id,
               p4_pd_group_handle_t* grp_hdl);

/* The selector group after grp_hdl. */
P4_PD_FUNCTION(p4_pd_kestro_switch_mirrorLagPortActionProfile_get_next_group,
               p4_pd_session_handle_t sess_hdl, p4_pd_device_id_t dev_id,
               p4_pd_group_handle_t grp_hdl, p4_pd_group_handle_t* next_grp_hdl);

#undef P4_PD_FUNCTION

#ifdef __cplusplus
}
#endif

#endif /* PD_KESTRO_SWITCH_PD_H */
