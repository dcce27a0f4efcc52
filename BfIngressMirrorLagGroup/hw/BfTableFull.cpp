#include "BfIngressMirrorLagGroup/hw/BfTableFull.h"

namespace BfTable {

BfTableFull::BfTableFull(Vel::String message) : BfTableException(9, std::move(message)) {}

}  // namespace BfTable
