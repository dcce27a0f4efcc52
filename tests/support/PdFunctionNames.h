#pragma once

#include <string>
#include <vector>

namespace chipsim_test {

// The names of the PD functions of the table and its action profile.
inline const std::string kAddEntry = "p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry";
inline const std::string kAddEntryWithSelector =
    "p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_with_selector";
inline const std::string kModifyEntry = "p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry";
inline const std::string kModifyEntryWithSelector =
    "p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry_with_selector";
inline const std::string kSetDefaultEntry =
    "p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry";
inline const std::string kSetDefaultEntryWithSelector =
    "p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry_with_selector";
inline const std::string kTableDelete = "p4_pd_kestro_switch_ingressMirrorLagGroup_table_delete";
inline const std::string kTableResetDefaultEntry =
    "p4_pd_kestro_switch_ingressMirrorLagGroup_table_reset_default_entry";
inline const std::string kSetProperty = "p4_pd_kestro_switch_ingressMirrorLagGroup_set_property";
inline const std::string kGetEntry = "p4_pd_kestro_switch_ingressMirrorLagGroup_get_entry";
inline const std::string kMatchSpecToEntryHdl =
    "p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_to_entry_hdl";
inline const std::string kAddMember =
    "p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector";
inline const std::string kModifyMember =
    "p4_pd_kestro_switch_mirrorLagPortActionProfile_modify_member_with_setLagMemberSelector";
inline const std::string kDelMember = "p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member";
inline const std::string kCreateGroup =
    "p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group";
inline const std::string kDelGroup = "p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group";
inline const std::string kAddMemberToGroup =
    "p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_to_group";
inline const std::string kDelMemberFromGroup =
    "p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member_from_group";
inline const std::string kGroupMemberStateSet =
    "p4_pd_kestro_switch_mirrorLagPortActionProfile_group_member_state_set";

// Every PD function of the chip.
inline const std::vector<std::string> kPdFunctions = {kAddEntry,
                                                      kAddEntryWithSelector,
                                                      kModifyEntry,
                                                      kModifyEntryWithSelector,
                                                      kSetDefaultEntry,
                                                      kSetDefaultEntryWithSelector,
                                                      kTableDelete,
                                                      kTableResetDefaultEntry,
                                                      kSetProperty,
                                                      kGetEntry,
                                                      kMatchSpecToEntryHdl,
                                                      kAddMember,
                                                      kModifyMember,
                                                      kDelMember,
                                                      kCreateGroup,
                                                      kDelGroup,
                                                      kAddMemberToGroup,
                                                      kDelMemberFromGroup,
                                                      kGroupMemberStateSet};

// A PD function's name without its table's prefix ("add_entry"), as the name
// of a test case that a PD function parameterises.
inline std::string pdShortName(const std::string& function) {
  for (const std::string prefix : {"ActionProfile_", "ingressMirrorLagGroup_"}) {
    if (const std::size_t at = function.find(prefix); at != std::string::npos)
      return function.substr(at + prefix.size());
  }
  return function;
}

}  // namespace chipsim_test
