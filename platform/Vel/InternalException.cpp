#include "Vel/InternalException.h"

#include "Vel/Expect.h"

namespace Vel {

InternalException::InternalException(String message, ExceptionIdSet ids)
    : Exception(std::move(message)), ids_(ids), wasExpected_((ids & Expect::expected()) != 0) {}

}  // namespace Vel
