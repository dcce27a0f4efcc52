#pragma once

#include "BfIngressMirrorLagGroup/hw/BfTableException.h"

namespace BfTable {

// The SDK ran out of system resources (status 2).
class BfNoSysResources : public BfTableException {
 public:
  explicit BfNoSysResources(Vel::String message);
};

}  // namespace BfTable
