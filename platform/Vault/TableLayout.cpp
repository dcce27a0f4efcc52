#include "Vault/TableLayout.h"

#include "Vault/SlotCopy.h"
#include "Vault/TableHeader.h"

namespace Vault {

namespace {

std::uint64_t copySizeFor(std::uint32_t recordSize) noexcept {
  return sizeof(SlotCopy) + ((std::uint64_t{recordSize} + 7u) & ~std::uint64_t{7u});
}

}  // namespace

std::uint32_t TableLayout::slotSizeFor(std::uint32_t recordSize) noexcept {
  return static_cast<std::uint32_t>(kControlSize + 2 * copySizeFor(recordSize));
}

std::optional<TableLayout> TableLayout::of(std::uint32_t recordSize,
                                           std::uint32_t capacity) noexcept {
  if (recordSize == 0 || recordSize > kMaxRecordSize || capacity == 0 || capacity > kMaxCapacity) {
    return std::nullopt;
  }
  std::uint32_t slotSize = slotSizeFor(recordSize);
  std::uint64_t size = sizeof(TableHeader) + std::uint64_t{slotSize} * capacity;
  return TableLayout{recordSize, capacity, slotSize, size};
}

}  // namespace Vault
