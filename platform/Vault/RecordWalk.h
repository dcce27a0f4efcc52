#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <type_traits>

#include "Vault/IterHint.h"
#include "Vault/TableView.h"
#include "Vel/Format.h"

namespace Vault {

// Finding the records of type R, in slot order, in a checked table view. A
// slot's key must be the key of the record it holds.
template <class R>
class RecordWalk {
  static_assert(std::is_trivially_copyable_v<R>, "shadow records are copied as bytes");

 public:
  // The first slot at or after `from` in state `wanted`: its record goes to
  // `record`, its position to `hint`. False when there is none.
  static bool seek(const TableView& view, const TableLayout& layout, std::uint32_t from,
                   SlotState wanted, R& record, IterHint& hint) {
    for (std::uint32_t slot = from; slot < layout.capacity; ++slot) {
      std::array<std::byte, sizeof(R)> bytes;
      SlotEntry entry = view.readSlot(layout, slot, bytes.data());
      if (entry.state != wanted) {
        continue;
      }
      R found = std::bit_cast<R>(bytes);
      if (found.vaultKey() != entry.key) {
        view.corruptSlot(slot, Vel::format("slot key 0x%016llx, record key 0x%016llx",
                                           static_cast<unsigned long long>(entry.key),
                                           static_cast<unsigned long long>(found.vaultKey())));
      }
      record = found;
      hint.positionIs(slot, entry.key);
      return true;
    }
    return false;
  }

  // Where a walk continues after `hint`.
  static std::uint32_t after(const IterHint& hint) noexcept {
    return hint.valid() ? hint.slot() + 1 : 0;
  }
};

}  // namespace Vault
