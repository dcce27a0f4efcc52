#pragma once

#include <cstdint>
#include <map>

#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMemberOrGroupOrNone.h"

namespace BfIngressMirrorLagGroup {

// The configuration a host programs, the same in every instance of it:
// members (id -> selector), selector groups (id -> size), entries (mirror
// session -> member or group) and the default entry's member or group.
struct WantedConfig {
  std::map<std::uint32_t, std::uint16_t> members;
  std::map<std::uint32_t, std::uint32_t> groups;
  std::map<std::uint16_t, IngressMirrorLagGroupMemberOrGroupOrNone> entries;
  IngressMirrorLagGroupMemberOrGroupOrNone defaultTarget;

  // `entryCount` entries on sessions 0, 3, 6, ..., pointing in turn at
  // `memberCount` members and, every fourth, at one of `groupCount` groups;
  // the default entry points at the first member.
  static WantedConfig make(std::uint32_t entryCount, std::uint32_t memberCount,
                           std::uint32_t groupCount) {
    WantedConfig config;
    for (std::uint32_t id = 1; id <= memberCount; ++id)
      config.members[id] = static_cast<std::uint16_t>(1000 + id);
    for (std::uint32_t id = 1; id <= groupCount; ++id)
      config.groups[id] = 8;
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
