#include "CallLog.h"

#include <algorithm>
#include <cstring>

namespace chipsim {

CallLog::CallLog(ChipHeader& header, Journal& journal, LogLine* lines) noexcept
    : header_(header), journal_(journal), lines_(lines) {}

void CallLog::append(std::string_view text) noexcept {
  LogLine& spare = lines_[(header_.logHead + header_.logCount) % slots()];
  const std::size_t size = std::min(text.size(), sizeof spare.text - 1);
  std::memcpy(spare.text, text.data(), size);
  spare.text[size] = '\0';
  if (header_.logCount < header_.config.log_lines) {
    journal_.set(header_.logCount, header_.logCount + 1);
  } else {
    journal_.set(header_.logHead, (header_.logHead + 1) % slots());
  }
}

const char* CallLog::line(uint32_t index) const noexcept {
  if (index >= header_.logCount) {
    return nullptr;
  }
  return lines_[(header_.logHead + index) % slots()].text;
}

void CallLog::clear() noexcept {
  journal_.set(header_.logHead, 0u);
  journal_.set(header_.logCount, 0u);
}

}  // namespace chipsim
