#pragma once

#include <optional>
#include <string>

namespace chipsim {

// What a call found damaged in the chip's memory while it ran: a link, an
// index or a count that no coherent chip holds (the chip was written from
// outside). The parts of the chip report it here instead of following the
// value; the call's changes are then taken back and the call fails, with the
// first fault as its reason.
class ChipDamage {
 public:
  void found(std::string fault) {
    if (!fault_) {
      fault_ = std::move(fault);
    }
  }
  const std::optional<std::string>& fault() const noexcept { return fault_; }
  void clear() noexcept { fault_.reset(); }

 private:
  std::optional<std::string> fault_;
};

}  // namespace chipsim
