#pragma once

#include "BfPdIngressMirrorLagGroup/PdFunctionId.h"
#include "BfPdIngressMirrorLagGroup/ShadowCallOf.h"
#include "BfPdIngressMirrorLagGroup/ShadowRecorder.h"

namespace BfPdIngressMirrorLagGroup {

// One PD function as the PD interface object offers it: called like the
// function itself, it calls the function resolved from the PD library and,
// for the functions that create or delete chip objects, records the call in
// the shadow tables through the object's recorder (when it records).
template <PdFunctionId Id, class Pointer>
class PdFunction;

template <PdFunctionId Id, class... Args>
class PdFunction<Id, pipe_status (*)(Args...)> {
 public:
  using Pointer = pipe_status (*)(Args...);

  PdFunction() noexcept = default;
  explicit PdFunction(Pointer resolved) noexcept : resolved_(resolved) {}

  // The function as resolved from the library: calling it records nothing.
  Pointer resolved() const noexcept { return resolved_; }
  void recorderIs(ShadowRecorder* recorder) noexcept { recorder_ = recorder; }

  pipe_status operator()(Args... args) const {
    if constexpr (ShadowCallOf<Id>::kRecorded) {
      if (recorder_ != nullptr && recorder_->isRecording()) {
        return recorder_->call(ShadowCallOf<Id>::of(args...), resolved_, args...);
      }
    }
    return resolved_(args...);
  }

 private:
  Pointer resolved_ = nullptr;
  ShadowRecorder* recorder_ = nullptr;
};

}  // namespace BfPdIngressMirrorLagGroup
