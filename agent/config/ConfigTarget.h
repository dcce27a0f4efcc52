#pragma once

#include <cstdint>

namespace mirrorlag_agent {

// What an entry (or the default entry) forwards to: one action-profile member
// or one selector group, by its configured id.
struct ConfigTarget {
  bool member = true;
  std::uint32_t id = 0;

  bool operator==(const ConfigTarget&) const = default;
};

}  // namespace mirrorlag_agent
