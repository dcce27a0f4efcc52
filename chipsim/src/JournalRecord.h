#pragma once

#include <cstdint>

namespace chipsim {

// The old value of one field changed by the running call, to undo it.
struct JournalRecord {
  uint64_t offset;    // of the field from the start of the chip's memory
  uint64_t oldValue;  // its first `size` bytes are the field's old bytes
  uint32_t size;
};

}  // namespace chipsim
