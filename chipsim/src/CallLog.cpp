#include "CallLog.h"

namespace chipsim {

CallLog::CallLog(ChipHeader& header, Journal& journal, LogRecord* records) noexcept
    : header_(header), journal_(journal), records_(records) {}

void CallLog::append(const LogRecord& record) noexcept {
  records_[(header_.logHead + header_.logCount) % slots()] = record;
  if (header_.logCount < header_.config.log_lines) {
    journal_.set(header_.logCount, header_.logCount + 1);
  } else {
    journal_.set(header_.logHead, (header_.logHead + 1) % slots());
  }
}

const LogRecord* CallLog::record(uint32_t index) const noexcept {
  if (index >= header_.logCount) {
    return nullptr;
  }
  return &records_[(header_.logHead + index) % slots()];
}

void CallLog::clear() noexcept {
  journal_.set(header_.logHead, 0u);
  journal_.set(header_.logCount, 0u);
}

}  // namespace chipsim
