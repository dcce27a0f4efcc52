#pragma once

#include "BfPdIngressMirrorLagGroup/PdFunctionList.h"

namespace BfPdIngressMirrorLagGroup {

// One enumerator per PD function, named after it, in the order of the PD header.
enum class PdFunctionId : unsigned {
#define BF_PD_FUNCTION_ID(name) name,
  BF_PD_INGRESS_MIRROR_LAG_GROUP_FUNCTIONS(BF_PD_FUNCTION_ID)
#undef BF_PD_FUNCTION_ID
};

}  // namespace BfPdIngressMirrorLagGroup
