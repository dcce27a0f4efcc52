#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "config/ConfigTarget.h"
#include "config/GroupConfig.h"

namespace mirrorlag_agent {

// The agent's configuration of the table: action-profile members (id ->
// selector), selector groups (id -> size and members), entries (mirror
// session -> member or group) and the default entry. Its JSON form, every
// top-level key optional:
//
//   {"members": [{"id": 1, "selector": 10}],
//    "groups":  [{"id": 100, "size": 8, "members": [{"id": 1}, {"id": 2, "active": false}]}],
//    "entries": [{"session": 5, "group": 100}, {"session": 6, "member": 1}],
//    "default": {"member": 1}}
//
// fromJson checks the whole document before anything is built, and refuses
// the first fault with a ConfigError naming its JSON pointer: unknown keys,
// wrong types, numbers out of range (ids unsigned 32-bit, selectors and
// sessions unsigned 16-bit, sizes from 1), ids given twice, a group without
// members, a reference to a member or group that is not configured, and an
// entry that names both or neither of member and group. toJson writes the
// same form back, in id order, so that the running configuration can be
// applied again.
class AgentConfig {
 public:
  // The largest group the chip holds; larger sizes are capped to it.
  static constexpr std::uint32_t maxGroupSize = 120;

  std::map<std::uint32_t, std::uint16_t> members;
  std::map<std::uint32_t, GroupConfig> groups;
  std::map<std::uint16_t, ConfigTarget> entries;
  std::optional<ConfigTarget> defaultTarget;

  static AgentConfig fromJson(const nlohmann::json& document);
  // Parses the text first; text that is not JSON is refused at "/".
  static AgentConfig fromText(const std::string& text);
  nlohmann::json toJson() const;

  // What the configuration asks that the chip does otherwise, one line a
  // fact: "group 100: size 500 is capped to 120".
  std::vector<std::string> notes() const;

  bool operator==(const AgentConfig&) const = default;
};

}  // namespace mirrorlag_agent
