#pragma once

#include "BfPdIngressMirrorLagGroup/PdFunction.h"
#include "BfPdIngressMirrorLagGroup/PdFunctionList.h"

namespace BfPdIngressMirrorLagGroup {

// One callable member per PD function, named after the function, so that a
// call through the table reads like a call of the PD function itself:
// pdLib->p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry(...).
struct PdFunctionTable {
#define BF_PD_FUNCTION_MEMBER(name) PdFunction<PdFunctionId::name, name##_fn> name;
  BF_PD_INGRESS_MIRROR_LAG_GROUP_FUNCTIONS(BF_PD_FUNCTION_MEMBER)
#undef BF_PD_FUNCTION_MEMBER

  // Lets every function record through `recorder` (null: none records).
  void recorderIs(ShadowRecorder* recorder) noexcept {
#define BF_PD_FUNCTION_RECORDER(name) name.recorderIs(recorder);
    BF_PD_INGRESS_MIRROR_LAG_GROUP_FUNCTIONS(BF_PD_FUNCTION_RECORDER)
#undef BF_PD_FUNCTION_RECORDER
  }
};

}  // namespace BfPdIngressMirrorLagGroup
