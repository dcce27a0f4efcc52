#include "Vel/RangeException.h"

namespace Vel {

void throwRangeException(const String& message) {
  throw RangeException(message);
}

}  // namespace Vel
