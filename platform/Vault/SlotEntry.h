#pragma once

#include <cstdint>

#include "Vault/SlotState.h"

namespace Vault {

// What a reader learnt of one slot: its state and, unless it is free, the key
// and write sequence of its live copy (whose record bytes went to the caller).
struct SlotEntry {
  SlotState state = SlotState::Free;
  std::uint64_t key = 0;
  std::uint64_t sequence = 0;
};

}  // namespace Vault
