#pragma once

#include <cstdint>
#include <vector>

#include "config/GroupMemberConfig.h"

namespace mirrorlag_agent {

// One configured selector group: the most members the chip is to hold for it
// (above 120 the chip holds 120) and its members, the first being the group's
// initial member.
struct GroupConfig {
  std::uint32_t size = 1;
  std::vector<GroupMemberConfig> members;

  bool operator==(const GroupConfig&) const = default;
};

}  // namespace mirrorlag_agent
