#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"

namespace BfIngressMirrorLagGroup {

// Everything the registry holds, for comparing it before and after a call.
struct RegistrySnapshot {
  std::vector<std::pair<const IngressMirrorLagGroupMatchSpec*, std::uint32_t>> entries;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> members;
  std::vector<std::pair<std::uint32_t, std::uint32_t>> groups;

  bool operator==(const RegistrySnapshot&) const = default;
};

}  // namespace BfIngressMirrorLagGroup
