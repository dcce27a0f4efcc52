#pragma once

#include <Pd/KestroSwitchPd.h>
#include <Pd/KestroSwitchPdFunctions.h>

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

  bool available() const noexcept { return getFirstMember_ != nullptr; }
  std::vector<std::uint32_t> members(p4_pd_session_handle_t session,
                                     p4_pd_device_id_t device) const;
  std::vector<std::uint32_t> groups(p4_pd_session_handle_t session, p4_pd_device_id_t device) const;

 private:
  // One pointer per read-back function, named after its short name
  // (getFirstMember_, ...); null when the library has none.
#define READ_BACK_FUNCTION(name, shortName) name##_fn shortName##_ = nullptr;
  KESTRO_SWITCH_PD_READ_BACK_FUNCTIONS(READ_BACK_FUNCTION)
#undef READ_BACK_FUNCTION
};

}  // namespace mirrorlag_agent
