#pragma once

#include "BfIngressMirrorLagGroup/hw/BfTableException.h"

namespace BfTable {

// The table or the group is full (status 9).
class BfTableFull : public BfTableException {
 public:
  explicit BfTableFull(Vel::String message);
};

}  // namespace BfTable
