#include "host/ActionProfileReadBack.h"

#include <set>

#include "Pd/PipeStatus.h"
#include "host/LibrarySymbol.h"

namespace mirrorlag_agent {

namespace {

// The handles a get-first / get-next pair walks, in the chip's order.
template <class First, class Next>
std::vector<std::uint32_t> walk(First first, Next next, p4_pd_session_handle_t session,
                                p4_pd_device_id_t device) {
  std::vector<std::uint32_t> handles;
  if (first == nullptr || next == nullptr)
    return handles;
  // A handle seen before ends the walk: a damaged chip could lead it round.
  std::set<std::uint32_t> seen;
  std::uint32_t handle = 0;
  for (pipe_status status = first(session, device, &handle);
       status == PIPE_STATUS_SUCCESS && seen.insert(handle).second;
       status = next(session, device, handle, &handle))
    handles.push_back(handle);
  return handles;
}

}  // namespace

ActionProfileReadBack::ActionProfileReadBack(void* pdLib) {
#define FIND_READ_BACK_FUNCTION(name, shortName) findSymbol(pdLib, #name, shortName##_);
  KESTRO_SWITCH_PD_READ_BACK_FUNCTIONS(FIND_READ_BACK_FUNCTION)
#undef FIND_READ_BACK_FUNCTION
}

std::vector<std::uint32_t> ActionProfileReadBack::members(p4_pd_session_handle_t session,
                                                          p4_pd_device_id_t device) const {
  return walk(getFirstMember_, getNextMember_, session, device);
}

std::vector<std::uint32_t> ActionProfileReadBack::groups(p4_pd_session_handle_t session,
                                                         p4_pd_device_id_t device) const {
  return walk(getFirstGroup_, getNextGroup_, session, device);
}

}  // namespace mirrorlag_agent
