#pragma once

#include "Vel/Exception.h"

namespace Vel {

// A value is out of range or cannot be read as the type it must have.
class RangeException : public Exception {
 public:
  using Exception::Exception;
};

}  // namespace Vel

namespace Vel {

// Raises a RangeException with the given message.
[[noreturn]] void throwRangeException(const String& message);

}  // namespace Vel
