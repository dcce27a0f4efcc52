#pragma once

#include <cstdint>

namespace BfIngressMirrorLagGroup {

// What a match-table entry points at: an action-profile member (member true)
// or a selector group (member false), by the id the configuration gives it. The
// default value (id 0, member false) is "none", what an empty entry holds.
struct IngressMirrorLagGroupMemberOrGroupOrNone {
  std::uint32_t id = 0;
  bool member = false;

  bool operator==(const IngressMirrorLagGroupMemberOrGroupOrNone& other) const noexcept {
    return id == other.id && member == other.member;
  }
};

}  // namespace BfIngressMirrorLagGroup
