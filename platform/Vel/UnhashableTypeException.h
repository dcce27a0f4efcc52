#pragma once

#include "Vel/Exception.h"

namespace Vel {

// A reflective hash was asked of a type that cannot be hashed.
class UnhashableTypeException : public Exception {
 public:
  using Exception::Exception;
};

}  // namespace Vel
