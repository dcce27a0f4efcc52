#pragma once

#include <cstdint>
#include <string_view>

#include "ChipHeader.h"
#include "Journal.h"
#include "LogLine.h"

namespace chipsim {

// The chip's call log: a ring of the last log_lines lines, oldest first. The
// ring has one line more than it keeps; a new line is written there and only
// then counted, so a process dying while it writes spoils no kept line.
class CallLog {
 public:
  CallLog(ChipHeader& header, Journal& journal, LogLine* lines) noexcept;

  void append(std::string_view text) noexcept;
  uint32_t count() const noexcept { return header_.logCount; }
  // Line `index` (0: the oldest kept), or nullptr.
  const char* line(uint32_t index) const noexcept;
  void clear() noexcept;

 private:
  uint32_t slots() const noexcept { return header_.config.log_lines + 1; }

  ChipHeader& header_;
  Journal& journal_;
  LogLine* lines_;
};

}  // namespace chipsim
