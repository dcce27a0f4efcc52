#pragma once

#include "BfPdIngressMirrorLagGroup/PdFunction.h"
#include "Pd/KestroSwitchPdFunctions.h"

namespace BfPdIngressMirrorLagGroup {

// One callable member per PD function, named after the function, so that a
// call through the table reads like a call of the PD function itself:
// pdLib->p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry(...).
struct PdFunctionTable {
#define BF_PD_FUNCTION_MEMBER(name, shortName) PdFunction<PdFunctionId::name, name##_fn> name;
  KESTRO_SWITCH_PD_TABLE_FUNCTIONS(BF_PD_FUNCTION_MEMBER)
#undef BF_PD_FUNCTION_MEMBER

  // Lets every function record through `recorder` (null: none records).
  void recorderIs(ShadowRecorder* recorder) noexcept {
#define BF_PD_FUNCTION_RECORDER(name, shortName) name.recorderIs(recorder);
    KESTRO_SWITCH_PD_TABLE_FUNCTIONS(BF_PD_FUNCTION_RECORDER)
#undef BF_PD_FUNCTION_RECORDER
  }
};

}  // namespace BfPdIngressMirrorLagGroup
