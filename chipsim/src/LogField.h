#pragma once

#include <cstdint>

#include "LogLabel.h"

namespace chipsim {

// One argument or out-parameter of a logged call, as the chip keeps it: its
// label, how its value is shown, and the value's 32 bits.
struct LogField {
  enum class Kind : std::uint8_t {
    unsignedValue,  // decimal
    signedValue,    // decimal, the bits taken as int32_t
    hexValue,       // "0x" and lower-case hexadecimal
    flagValue,      // true or false
    nullPointer,    // NULL: the caller passed no pointer
    unwritten,      // an out-parameter the call did not write: not shown
  };

  LogLabel label;
  Kind kind;
  std::uint16_t reserved;
  std::uint32_t value;
};

static_assert(sizeof(LogField) == 8);

}  // namespace chipsim
