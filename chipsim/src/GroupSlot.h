#pragma once

#include <cstdint>

namespace chipsim {

// One member of a selector group, in the order the members were added.
struct GroupSlot {
  uint32_t member;   // member handle
  uint8_t inactive;  // 0 active, 1 inactive, as the PD state values
};

}  // namespace chipsim
