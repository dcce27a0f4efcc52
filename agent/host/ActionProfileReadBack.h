#pragma once

#include <Pd/KestroSwitchPd.h>

#include <cstdint>
#include <vector>

namespace mirrorlag_agent {

// The PD library's optional read-back of the action profile: every member and
// every selector group the chip holds, walked with the get-first and get-next
// functions. A restarted agent compares them with the handles it holds, to
// find what a process killed between a chip call and its shadow record left
// in the chip unrecorded. A PD library without them gives empty walks.
class ActionProfileReadBack {
 public:
  // `pdLib` is the dlopen handle of the PD library.
  explicit ActionProfileReadBack(void* pdLib);

  bool available() const noexcept { return firstMember_ != nullptr; }
  std::vector<std::uint32_t> members(p4_pd_session_handle_t session,
                                     p4_pd_device_id_t device) const;
  std::vector<std::uint32_t> groups(p4_pd_session_handle_t session, p4_pd_device_id_t device) const;

 private:
  p4_pd_kestro_switch_mirrorLagPortActionProfile_get_first_member_fn firstMember_ = nullptr;
  p4_pd_kestro_switch_mirrorLagPortActionProfile_get_next_member_fn nextMember_ = nullptr;
  p4_pd_kestro_switch_mirrorLagPortActionProfile_get_first_group_fn firstGroup_ = nullptr;
  p4_pd_kestro_switch_mirrorLagPortActionProfile_get_next_group_fn nextGroup_ = nullptr;
};

}  // namespace mirrorlag_agent
