#pragma once

#include "Vel/Exception.h"

namespace Vel {

// A reflective operation that an attribute or value does not answer.
class OperationNotSupportedException : public Exception {
 public:
  using Exception::Exception;
};

}  // namespace Vel
