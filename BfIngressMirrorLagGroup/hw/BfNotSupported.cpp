#include "BfIngressMirrorLagGroup/hw/BfNotSupported.h"

namespace BfTable {

BfNotSupported::BfNotSupported(Vel::String message) : BfTableException(17, std::move(message)) {}

}  // namespace BfTable
