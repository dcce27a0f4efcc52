#pragma once

#include "Quill/Exception.h"

namespace Quill {

// A reader found data it cannot trust (a torn, truncated or hostile record).
class CorruptionDetectedException : public Exception {
 public:
  using Exception::Exception;
};

}  // namespace Quill
