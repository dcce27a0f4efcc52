#pragma once

#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMemberOrGroupOrNone.h"

namespace BfIngressMirrorLagGroup {

// The configuration a host programs, the same in every instance of it:
// members (id -> selector), selector groups (id -> size) with their members
// (the first is the group's initial member; each with its active flag),
// entries (mirror session -> member or group) and the default entry's member
// or group.
struct WantedConfig {
  using GroupMembers = std::vector<std::pair<std::uint32_t, bool>>;

  std::map<std::uint32_t, std::uint16_t> members;
  std::map<std::uint32_t, std::uint32_t> groups;
  std::map<std::uint32_t, GroupMembers> groupMembers;
  std::map<std::uint16_t, IngressMirrorLagGroupMemberOrGroupOrNone> entries;
  IngressMirrorLagGroupMemberOrGroupOrNone defaultTarget;

  // `entryCount` entries on sessions 0, 3, 6, ..., pointing in turn at
  // `memberCount` members and, every fourth, at one of `groupCount` groups;
  // the default entry points at the first member. Group g holds member g
  // (its initial member), then, where the members are enough to keep them
  // apart, member g + groupCount active and member g + 2 * groupCount
  // inactive.
  static WantedConfig make(std::uint32_t entryCount, std::uint32_t memberCount,
                           std::uint32_t groupCount) {
    WantedConfig config;
    for (std::uint32_t id = 1; id <= memberCount; ++id)
      config.members[id] = static_cast<std::uint16_t>(1000 + id);
    for (std::uint32_t id = 1; id <= groupCount; ++id) {
      config.groups[id] = 8;
      GroupMembers& members = config.groupMembers[id];
      members.emplace_back(1 + (id - 1) % memberCount, true);
      if (memberCount >= 2 * groupCount)
        members.emplace_back(id + groupCount, true);
      if (memberCount >= 3 * groupCount)
        members.emplace_back(id + 2 * groupCount, false);
    }
    for (std::uint32_t i = 0; i < entryCount; ++i) {
      const bool toGroup = groupCount != 0 && i % 4 == 3;
      const std::uint32_t id = toGroup ? 1 + i % groupCount : 1 + i % memberCount;
      config.entries[static_cast<std::uint16_t>(3 * i)] = {id, !toGroup};
    }
    config.defaultTarget = {1, true};
    return config;
  }
};

}  // namespace BfIngressMirrorLagGroup
