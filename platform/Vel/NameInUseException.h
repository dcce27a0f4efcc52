#pragma once

#include "Vel/Exception.h"

namespace Vel {

// An entity is created again under a name in use with other constructor values.
class NameInUseException : public Exception {
 public:
  using Exception::Exception;
};

}  // namespace Vel
