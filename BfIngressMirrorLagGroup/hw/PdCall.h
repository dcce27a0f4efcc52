#pragma once

#include <utility>

#include "BfIngressMirrorLagGroup/hw/IngressMirrorLagGroupTableHelper.h"
#include "BfIngressMirrorLagGroup/hw/PdStatus.h"
#include "Vel/Expect.h"
#include "Vel/Ptr.h"

namespace BfIngressMirrorLagGroup {

// The exception id that every PD call runs under.
inline constexpr unsigned pdExceptionId = 1;

// Runs one PD call and gives its status: `call` is given the PD interface
// object, calls one PD function on it and returns that function's status.
// While it runs, the helper, its PD object and its handle registry are held by
// counted references; they are dropped before the status is returned.
template <class Call>
pipe_status pdCallStatus(const Vel::Ptr<IngressMirrorLagGroupTableHelper>& helper, Call&& call) {
  // A counted copy on purpose: it keeps the helper alive while the call runs.
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
  const Vel::Ptr<IngressMirrorLagGroupTableHelper> heldHelper = helper;
  const Vel::Ptr<IngressMirrorLagGroupTableHelper::PdLib> pdLib = heldHelper->pdLib();
  const Vel::Ptr<IngressMirrorLagGroupTableHandles> heldHandles = heldHelper->sdkHandles();
  return std::forward<Call>(call)(*pdLib);
}

// Makes one PD call that must succeed, inside an expectation scope for
// pdExceptionId: a non-zero status throws as checkPdStatus does, naming
// `pdFunctionName`.
template <class Call>
void pdCall(const Vel::Ptr<IngressMirrorLagGroupTableHelper>& helper, const char* pdFunctionName,
            Call&& call) {
  const Vel::Expect expect(pdExceptionId);
  checkPdStatus(pdFunctionName, pdCallStatus(helper, std::forward<Call>(call)));
}

}  // namespace BfIngressMirrorLagGroup
