#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/ChipsimLibrary.h"

namespace chipsim_test {

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
inline const std::vector<std::string> kPdFunctions = {
    kAddEntry,           kAddEntryWithSelector,
    kModifyEntry,        kModifyEntryWithSelector,
    kSetDefaultEntry,    kSetDefaultEntryWithSelector,
    kTableDelete,        kTableResetDefaultEntry,
    kSetProperty,        kGetEntry,
    kAddMember,          kModifyMember,
    kDelMember,          kCreateGroup,
    kDelGroup,           kAddMemberToGroup,
    kDelMemberFromGroup, kGroupMemberStateSet};

using MatchSpec = p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t;
using ActionSpec = p4_pd_kestro_switch_setLagMemberSelector_action_spec_t;

// Every test starts on a new private chip of a small make-up (4 entries, so
// that the default entry's handle is 5; 4 members; 2 groups of at most 3
// members; 4 pipes; 64 log lines) and ends by checking that the chip is
// coherent.
class ChipTest : public ::testing::Test {
 protected:
  static constexpr p4_pd_device_target_t kAllPipes{0, P4_PD_ALL_PIPES};
  static constexpr uint32_t kDefaultEntry = 5;

  static chipsim_config smallConfig();

  void SetUp() override;
  void TearDown() override;

  // The chip's check: empty when the chip is coherent.
  static std::string fault();

  // Objects made with success expected.
  uint32_t addMember(uint16_t selector);
  uint32_t createGroup(uint32_t size);
  uint32_t addEntry(uint16_t key, uint32_t member, uint32_t pipe = P4_PD_ALL_PIPES);
  uint32_t addGroupEntry(uint16_t key, uint32_t group, uint32_t pipe = P4_PD_ALL_PIPES);
  void addToGroup(uint32_t group, uint32_t member);

  // Calls of every PD function together, since the chip was made or reset.
  static int64_t totalCalls();

  static std::vector<std::string> logLines();
  static std::string lastLine();

  const ChipsimLibrary& pd = chipsim();
};

}  // namespace chipsim_test
