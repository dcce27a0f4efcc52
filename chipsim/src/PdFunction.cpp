#include "PdFunction.h"

#include <array>

namespace chipsim {

namespace {

// In the order of the enumeration.
constexpr std::array<std::string_view, kPdFunctionCount> kNames = {
    "p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry",
    "p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_with_selector",
    "p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry",
    "p4_pd_kestro_switch_ingressMirrorLagGroup_modify_entry_with_selector",
    "p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry",
    "p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry_with_selector",
    "p4_pd_kestro_switch_ingressMirrorLagGroup_table_delete",
    "p4_pd_kestro_switch_ingressMirrorLagGroup_table_reset_default_entry",
    "p4_pd_kestro_switch_ingressMirrorLagGroup_set_property",
    "p4_pd_kestro_switch_ingressMirrorLagGroup_get_entry",
    "p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_to_entry_hdl",
    "p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector",
    "p4_pd_kestro_switch_mirrorLagPortActionProfile_modify_member_with_setLagMemberSelector",
    "p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member",
    "p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group",
    "p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group",
    "p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_to_group",
    "p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member_from_group",
    "p4_pd_kestro_switch_mirrorLagPortActionProfile_group_member_state_set",
    "p4_pd_kestro_switch_mirrorLagPortActionProfile_get_first_member",
    "p4_pd_kestro_switch_mirrorLagPortActionProfile_get_next_member",
    "p4_pd_kestro_switch_mirrorLagPortActionProfile_get_first_group",
    "p4_pd_kestro_switch_mirrorLagPortActionProfile_get_next_group",
};

}  // namespace

std::string_view pdFunctionName(PdFunction function) noexcept {
  return kNames[static_cast<std::size_t>(function)];
}

std::optional<PdFunction> pdFunctionNamed(std::string_view name) noexcept {
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    if (name == kNames[i]) {
      return static_cast<PdFunction>(i);
    }
  }
  return std::nullopt;
}

}  // namespace chipsim
