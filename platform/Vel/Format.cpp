#include "Vel/Format.h"

#include <cstdarg>
#include <cstdio>

namespace Vel {

String format(const char* fmt, ...) {
  std::va_list args;
  va_start(args, fmt);
  std::va_list sizing;
  va_copy(sizing, args);
  const int length = std::vsnprintf(nullptr, 0, fmt, sizing);
  va_end(sizing);
  String result;
  if (length > 0) {
    result.resize(static_cast<std::size_t>(length));
    std::vsnprintf(result.data(), result.size() + 1, fmt, args);
  }
  va_end(args);
  return result;
}

}  // namespace Vel
