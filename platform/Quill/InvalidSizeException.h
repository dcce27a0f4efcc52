#pragma once

#include "Quill/Exception.h"

namespace Quill {

// A size handed to a fixed-capacity container does not fit it.
class InvalidSizeException : public Exception {
 public:
  using Exception::Exception;
};

}  // namespace Quill
