#pragma once

#include <cstddef>

namespace chipsim {

// One line of the call log in the chip's memory, NUL-terminated.
struct LogLine {
  static constexpr std::size_t kSize = 256;
  char text[kSize];
};

}  // namespace chipsim
