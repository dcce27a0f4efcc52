#pragma once

#include <cstdint>

#include "Vel/Exception.h"

namespace Vel {

// Set of exception ids (0 to 63), one bit per id.
using ExceptionIdSet = std::uint64_t;

// An exception raised inside the agent's own code paths, tagged with the set of
// exception ids it belongs to. Whether one of its ids was expected (see Expect)
// when it was made is recorded, so hosts can tell foreseen failures from others.
class InternalException : public Exception {
 public:
  InternalException(String message, ExceptionIdSet ids);
  ExceptionIdSet ids() const noexcept { return ids_; }
  bool wasExpected() const noexcept { return wasExpected_; }

 private:
  ExceptionIdSet ids_;
  bool wasExpected_;
};

}  // namespace Vel
