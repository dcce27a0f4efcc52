#pragma once

#include "Vel/Exception.h"

namespace Vel {

// Text does not have the form a parser requires.
class ParseException : public Exception {
 public:
  using Exception::Exception;
};

}  // namespace Vel
