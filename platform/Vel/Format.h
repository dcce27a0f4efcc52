#pragma once

#include "Vel/String.h"

namespace Vel {

// printf-style formatting into a String.
String format(const char* fmt, ...) __attribute__((format(printf, 1, 2)));

}  // namespace Vel
