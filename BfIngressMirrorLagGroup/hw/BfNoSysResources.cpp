#include "BfIngressMirrorLagGroup/hw/BfNoSysResources.h"

namespace BfTable {

BfNoSysResources::BfNoSysResources(Vel::String message) : BfTableException(2, std::move(message)) {}

}  // namespace BfTable
