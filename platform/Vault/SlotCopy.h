#pragma once

#include <cstdint>

namespace Vault {

// One of the two copies a slot keeps of its record: a replace writes the copy
// that is not live and then switches the slot over with one store, so a writer
// that dies at any point leaves the old or the new record. The record bytes
// follow this header, padded to 8 bytes.
struct SlotCopy {
  std::uint64_t key;
  std::uint64_t sequence;  // the table's write count when the copy was written
  std::uint32_t state;     // the SlotState the copy was written for
  std::uint32_t recordSize;
  std::uint64_t checksum;  // of the slot index, the fields above and the record bytes
};

static_assert(sizeof(SlotCopy) == 32);

}  // namespace Vault
