#pragma once

#include <cstdint>

#include "Vault/SlotState.h"

namespace Vault {

// The word at the start of every slot: its state and which of its two copies
// is live, changed together by one atomic store. Other bits are always zero.
class SlotControl {
 public:
  static constexpr std::uint32_t kStateMask = 0xffu;
  static constexpr std::uint32_t kCopyBit = 0x100u;

  explicit constexpr SlotControl(std::uint32_t word) noexcept : word_(word) {}
  constexpr SlotControl(SlotState state, unsigned copy) noexcept
      : word_(static_cast<std::uint32_t>(state) | (copy != 0 ? kCopyBit : 0u)) {}

  std::uint32_t word() const noexcept { return word_; }
  std::uint32_t stateBits() const noexcept { return word_ & kStateMask; }
  SlotState state() const noexcept { return static_cast<SlotState>(stateBits()); }
  unsigned copy() const noexcept { return (word_ & kCopyBit) != 0 ? 1u : 0u; }
  // A word that no writer writes: unknown state or stray bits.
  bool isValid() const noexcept {
    return (word_ & ~(kStateMask | kCopyBit)) == 0 && isKnownSlotState(stateBits());
  }

 private:
  std::uint32_t word_;
};

}  // namespace Vault
