#pragma once

#include <cstdint>

namespace mirrorlag_agent {

// One member of a configured selector group and whether the chip may select it.
struct GroupMemberConfig {
  std::uint32_t id = 0;
  bool active = true;

  bool operator==(const GroupMemberConfig&) const = default;
};

}  // namespace mirrorlag_agent
