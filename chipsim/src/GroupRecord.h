#pragma once

#include <cstdint>

namespace chipsim {

// One selector group in the chip's memory; its members are GroupSlots of their own.
struct GroupRecord {
  uint32_t handle;    // the slot's handle (while free: the last one it had)
  uint32_t nextFree;  // free list: slot + 1 of the next free slot, 0 at the end
  uint8_t inUse;
  uint32_t maxSize;    // the size the group was created with
  uint32_t size;       // members in the group
  uint32_t entryRefs;  // entries (the default entry too) pointing at the group
};

}  // namespace chipsim
