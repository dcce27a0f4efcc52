#include "BfIngressMirrorLagGroup/hw/BfTableException.h"

namespace BfTable {

BfTableException::BfTableException(pipe_status status, Vel::String message)
    : Vel::InternalException(std::move(message), Vel::ExceptionIdSet{0}), status_(status) {}

}  // namespace BfTable
