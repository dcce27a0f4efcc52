#pragma once

#include <cstdint>

namespace chipsim {

// One slot of the match table in the chip's memory.
struct EntryRecord {
  uint32_t handle;    // the slot's handle (while free: the last one it had)
  uint32_t nextFree;  // free list: slot + 1 of the next free slot, 0 at the end
  uint8_t inUse;
  uint8_t isGroup;       // `target` is a group handle, not a member handle
  uint16_t key;          // the mirror session
  uint32_t pipe;         // pipe of the device target the entry was added with
  uint32_t target;       // handle of the member or group the entry points at
  uint32_t nextSameKey;  // key index chain: slot + 1 of the next entry with this key
};

}  // namespace chipsim
