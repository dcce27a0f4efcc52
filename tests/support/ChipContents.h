#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace shadow_test {

// The objects in the chip, read from the chip's dump (of the chip model that
// tests load, see ChipsimLibrary).
struct ChipContents {
  std::map<std::uint32_t, std::uint16_t> entries;  // handle -> mirror session
  std::optional<std::uint32_t> defaultEntry;       // the default entry's handle, when set
  std::set<std::uint32_t> members;
  std::set<std::uint32_t> groups;
  // group handle -> its members' handles -> active
  std::map<std::uint32_t, std::map<std::uint32_t, bool>> groupMembers;

  static ChipContents read();
  static ChipContents parse(const std::string& dump);
};

}  // namespace shadow_test
