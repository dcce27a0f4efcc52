#include "CallControl.h"

#include <cstddef>

namespace chipsim {

CallControl::CallControl(ChipHeader& header, Journal& journal) noexcept
    : header_(header), journal_(journal) {}

ChipHeader::FunctionStats& CallControl::stats(PdFunction function) const noexcept {
  return header_.functions[static_cast<std::size_t>(function)];
}

bool CallControl::countCall(PdFunction function, pipe_status& status) noexcept {
  ChipHeader::FunctionStats& s = stats(function);
  journal_.set(s.calls, s.calls + 1);
  if (s.faultsLeft == 0) {
    return false;
  }
  journal_.set(s.faultsLeft, s.faultsLeft - 1);
  status = s.faultStatus;
  return true;
}

void CallControl::failNext(PdFunction function, int32_t status, uint32_t count) noexcept {
  ChipHeader::FunctionStats& s = stats(function);
  journal_.set(s.faultStatus, status);
  journal_.set(s.faultsLeft, count);
}

uint64_t CallControl::calls(PdFunction function) const noexcept {
  return stats(function).calls;
}

}  // namespace chipsim
