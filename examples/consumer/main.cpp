// A host of the plug-in built against an installed mirrorlag: it opens the
// software chip as its PD library, adds one action-profile member with the
// raw PD function, lets the plug-in's match table program mirror session 5 to
// that member, and asks the chip where session 5's packets go.
//
// Prints "mirror session 5 -> LAG member selector 42" and exits 0 when the
// chip forwards as programmed; any failure is printed and exits 1.

#include <dlfcn.h>

#include <cstdint>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "Pd/KestroSwitchPd.h"
#include "Pd/PipeStatus.h"
#include "Vel/Allocate.h"
#include "chipsim/chipsim.h"

namespace {

using BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec;
using BfIngressMirrorLagGroup::IngressMirrorLagGroupTable;
using BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry;

constexpr p4_pd_device_id_t kDevice = 0;
constexpr p4_pd_session_handle_t kSession = 1;
constexpr std::uint32_t kMemberId = 1;
constexpr std::uint16_t kSelector = 42;
constexpr std::uint16_t kMirrorSession = 5;

template <class F>
F symbol(void* library, const char* name) {
  void* found = dlsym(library, name);
  if (found == nullptr)
    throw std::runtime_error(std::string(PD_LIBRARY) + " has no " + name);
  return reinterpret_cast<F>(found);
}

// The chip's handle of a new member carrying `selector`.
p4_pd_member_handle_t addMember(void* pd, std::uint16_t selector) {
  const auto add = symbol<
      p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector_fn>(
      pd, "p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector");
  const p4_pd_kestro_switch_setLagMemberSelector_action_spec_t action{selector};
  p4_pd_member_handle_t handle = 0;
  if (add(kSession, {kDevice, P4_PD_ALL_PIPES}, &action, &handle) != PIPE_STATUS_SUCCESS)
    throw std::runtime_error("the chip refused the member");
  return handle;
}

int run() {
  void* pd = dlopen(PD_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  if (pd == nullptr)
    throw std::runtime_error(std::string("cannot load ") + PD_LIBRARY + ": " + dlerror());

  auto helper = ingressMirrorLagGroupTableHelperFactory(kDevice, P4_PD_ALL_PIPES);
  helper->pdLibIs(PD_LIBRARY, pd, kSession);
  helper->sdkHandlesIs()->memberIs(kMemberId, addMember(pd, kSelector));
  auto table = Vel::allocate<IngressMirrorLagGroupTable>(helper, nullptr, nullptr);

  auto match = Vel::allocate<IngressMirrorLagGroupMatchSpec>();
  match->ingMirrorMdMirrorSessionIs(kMirrorSession);
  table->entryIs(IngressMirrorLagGroupTableEntry(match, {kMemberId, true}));

  std::uint16_t selector = 0;
  const auto lookup = symbol<decltype(&chipsim_lookup)>(pd, "chipsim_lookup");
  if (lookup(kMirrorSession, 0, &selector) != 0 || selector != kSelector) {
    std::fprintf(stderr, "mirror session %u does not reach selector %u\n", kMirrorSession,
                 kSelector);
    return 1;
  }
  std::printf("mirror session %u -> LAG member selector %u\n", kMirrorSession, selector);
  return 0;
}

}  // namespace

int main() {
  try {
    return run();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "consumer: %s\n", e.what());
    return 1;
  }
}
