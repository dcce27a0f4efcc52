#pragma once

#include "BfIngressMirrorLagGroup/hw/BfTableException.h"

namespace BfTable {

// The SDK does not support the operation (status 17). Derived privately on
// purpose: a handler that catches BfTableException does not catch this one; a
// caller that wants it must name it.
class BfNotSupported : BfTableException {
 public:
  explicit BfNotSupported(Vel::String message);

  using BfTableException::message;
  using BfTableException::status;
  using BfTableException::what;
};

}  // namespace BfTable
