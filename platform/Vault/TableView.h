#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "Vault/SlotCopy.h"
#include "Vault/SlotEntry.h"
#include "Vault/TableHeader.h"
#include "Vault/TableLayout.h"

namespace Vault {

// Checked reading of a table's segment, shared by readers and the writer. It
// trusts nothing in the segment: every field is checked before it is used, and
// whatever is wrong raises Quill::CorruptionDetectedException with a message
// "Vault table <name>: <what is wrong>" (with "slot <n>: " for a slot), never
// a read outside the mapped bytes.
class TableView {
 public:
  TableView(const std::byte* bytes, std::uint64_t size, std::string name) noexcept
      : bytes_(bytes), size_(size), name_(std::move(name)) {}

  const std::string& name() const noexcept { return name_; }

  // Checks the header against the record type and size the caller expects and
  // returns the table's layout.
  TableLayout checkHeader(std::uint32_t recordType, std::uint32_t recordSize) const;
  // Reads slot `slot`; for a slot that is not free, its live record goes to
  // `record` (layout.recordSize bytes). Retries while a writer switches the
  // slot over under it.
  SlotEntry readSlot(const TableLayout& layout, std::uint32_t slot, void* record) const;

  [[noreturn]] void corrupt(const std::string& what) const;
  [[noreturn]] void corruptSlot(std::uint32_t slot, const std::string& what) const;

  // The checksum a copy of `slot` must carry.
  static std::uint64_t copyChecksum(std::uint32_t slot, const SlotCopy& copy,
                                    const void* record) noexcept;
  // The same, of a copy with these header fields: the checksum of the slot
  // index, of the header's bytes before its checksum and of the record's.
  static std::uint64_t copyChecksum(std::uint32_t slot, std::uint64_t key, std::uint64_t sequence,
                                    std::uint32_t state, std::uint32_t recordSize,
                                    const void* record) noexcept;

 private:
  // The header as it is now: checked once copied, so that it cannot change
  // between a check and a use.
  TableHeader headerCopy() const noexcept;
  void checkIdentity(const TableHeader& header, std::uint32_t recordType,
                     std::uint32_t recordSize) const;
  TableLayout checkGeometry(const TableHeader& header) const;
  // One attempt at reading a slot; false when its control word changed meanwhile.
  bool tryReadSlot(const TableLayout& layout, std::uint32_t slot, void* record,
                   SlotEntry& entry) const;
  void checkCopy(const TableLayout& layout, std::uint32_t slot, const SlotCopy& copy,
                 const void* record, std::uint32_t state) const;

  const std::byte* bytes_;
  std::uint64_t size_;
  std::string name_;
};

}  // namespace Vault
