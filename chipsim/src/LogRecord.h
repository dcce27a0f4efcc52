#pragma once

#include <cstdint>

#include "LineBuilder.h"
#include "LogField.h"

namespace chipsim {

// One call in the chip's call log, as numbers: a call only stores what it was
// given and what it answered, and its line of text is made when the log is
// read (chipsim.h gives the line's format).
struct LogRecord {
  static constexpr std::uint8_t kMaxArguments = 8;
  static constexpr std::uint8_t kMaxOutputs = 3;

  std::uint8_t function;  // a PdFunction
  std::uint8_t argumentCount;
  std::uint8_t outputCount;
  std::uint8_t injected;  // 1 when the status came from an injected fault
  std::int32_t status;
  LogField arguments[kMaxArguments];
  LogField outputs[kMaxOutputs];

  // Writes the call's line.
  void formatInto(LineBuilder& line) const noexcept;
};

static_assert(sizeof(LogRecord) == 96);

}  // namespace chipsim
