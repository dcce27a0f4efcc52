#pragma once

#include <cstdint>
#include <optional>

#include "Vault/TableHeader.h"

namespace Vault {

// Where things lie in a table's segment: the header, then `capacity` slots of
// `slotSize` bytes. A slot is an 8-byte control word and two copies, each a
// SlotCopy header and the record bytes padded to 8.
struct TableLayout {
  static constexpr std::uint32_t kMaxRecordSize = 1u << 16;
  static constexpr std::uint32_t kMaxCapacity = 1u << 24;
  static constexpr std::uint64_t kControlSize = 8;
  static constexpr std::uint64_t kHeaderSize = sizeof(TableHeader);

  std::uint32_t recordSize;
  std::uint32_t capacity;
  std::uint32_t slotSize;
  std::uint64_t segmentSize;

  // The layout of a table of these dimensions; nothing when they are out of
  // range (no record, a record or capacity past the limits).
  static std::optional<TableLayout> of(std::uint32_t recordSize, std::uint32_t capacity) noexcept;
  // The slot size records of `recordSize` bytes need.
  static std::uint32_t slotSizeFor(std::uint32_t recordSize) noexcept;

  // Offset of a slot in the segment. (Inline: every record write asks.)
  std::uint64_t slotOffset(std::uint32_t slot) const noexcept {
    return kHeaderSize + std::uint64_t{slotSize} * slot;
  }
  // Offset of copy 0 or 1 within a slot.
  std::uint64_t copyOffset(unsigned copy) const noexcept {
    return kControlSize + copy * std::uint64_t{(slotSize - kControlSize) / 2};
  }
};

}  // namespace Vault
