#pragma once

#include <cstdint>

#include "ChipHeader.h"
#include "Journal.h"
#include "LogRecord.h"

namespace chipsim {

// The chip's call log: a ring of the last log_lines calls, oldest first. The
// ring has one record more than it keeps; a new record is written there and
// only then counted, so a process dying while it writes spoils no kept record.
class CallLog {
 public:
  CallLog(ChipHeader& header, Journal& journal, LogRecord* records) noexcept;

  void append(const LogRecord& record) noexcept;
  uint32_t count() const noexcept { return header_.logCount; }
  // Record `index` (0: the oldest kept), or nullptr.
  const LogRecord* record(uint32_t index) const noexcept;
  void clear() noexcept;

 private:
  uint32_t slots() const noexcept { return header_.config.log_lines + 1; }

  ChipHeader& header_;
  Journal& journal_;
  LogRecord* records_;
};

}  // namespace chipsim
