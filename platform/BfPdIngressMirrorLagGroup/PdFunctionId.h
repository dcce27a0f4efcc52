#pragma once

#include "Pd/KestroSwitchPdFunctions.h"

namespace BfPdIngressMirrorLagGroup {

// One enumerator per PD function, named after it, in the order of the PD header.
enum class PdFunctionId : unsigned {
#define BF_PD_FUNCTION_ID(name, shortName) name,
  KESTRO_SWITCH_PD_TABLE_FUNCTIONS(BF_PD_FUNCTION_ID)
#undef BF_PD_FUNCTION_ID
};

}  // namespace BfPdIngressMirrorLagGroup
