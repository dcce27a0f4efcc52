#pragma once

#include <cstdint>

namespace Vault {

// What a slot of a shared table holds. Free slots are ignored by readers;
// an intent is a record written before the chip call that creates its object
// and completed (turned InUse) after it, so that a process that finds an
// intent knows an object may exist in the chip without a finished record.
enum class SlotState : std::uint32_t {
  Free = 0,
  InUse = 1,
  Intent = 2,
};

// True for the states a slot may legitimately hold.
constexpr bool isKnownSlotState(std::uint32_t state) noexcept {
  return state <= static_cast<std::uint32_t>(SlotState::Intent);
}

}  // namespace Vault
