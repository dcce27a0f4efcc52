#pragma once

#include <cstdint>

namespace chipsim {

// One action-profile member in the chip's memory.
struct MemberRecord {
  uint32_t handle;    // the slot's handle (while free: the last one it had)
  uint32_t nextFree;  // free list: slot + 1 of the next free slot, 0 at the end
  uint8_t inUse;
  uint16_t selector;   // the LAG member selector of setLagMemberSelector
  uint32_t entryRefs;  // entries (the default entry too) pointing at the member
  uint32_t groupRefs;  // groups holding the member
};

}  // namespace chipsim
