#pragma once

#include <cstdint>

#include <Pd/KestroSwitchPd.h>

#include "ChipHeader.h"
#include "Journal.h"
#include "PdFunction.h"

namespace chipsim {

// The calls of each PD function, and the faults injected into the next ones.
class CallControl {
 public:
  CallControl(ChipHeader& header, Journal& journal) noexcept;

  // Counts a call of `function`. True when a fault was waiting for it; then
  // `status` is the status the call returns.
  bool countCall(PdFunction function, pipe_status& status) noexcept;
  void failNext(PdFunction function, int32_t status, uint32_t count) noexcept;
  uint64_t calls(PdFunction function) const noexcept;

 private:
  ChipHeader::FunctionStats& stats(PdFunction function) const noexcept;

  ChipHeader& header_;
  Journal& journal_;
};

}  // namespace chipsim
