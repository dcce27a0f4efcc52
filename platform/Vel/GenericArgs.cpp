#include "Vel/GenericArgs.h"

#include "Vel/Format.h"
#include "Vel/RangeException.h"

namespace Vel {

const GenericValue& GenericArgs::operator[](std::size_t i) const {
  if (i >= values_.size()) {
    throwRangeException(
        format("Argument %zu is missing: the call has %zu arguments", i, values_.size()));
  }
  return values_[i];
}

}  // namespace Vel
