#include "config/AgentConfig.h"

#include <algorithm>
#include <initializer_list>
#include <limits>
#include <string_view>

#include "config/ConfigError.h"

namespace mirrorlag_agent {

namespace {

using json = nlohmann::json;

std::string at(const std::string& path, std::string_view key) {
  return path + "/" + std::string(key);
}
std::string at(const std::string& path, std::size_t index) {
  return path + "/" + std::to_string(index);
}

// Checks that `value` is an object whose keys are all among `allowed`.
void checkObject(const json& value, const std::string& path,
                 std::initializer_list<std::string_view> allowed) {
  if (!value.is_object())
    throw ConfigError(path, "expected an object, found " + std::string(value.type_name()));
  for (const auto& [key, member] : value.items()) {
    bool known = false;
    for (std::string_view name : allowed)
      known = known || key == name;
    if (!known)
      throw ConfigError(at(path, key), "unknown key");
  }
}

const json& required(const json& object, const std::string& path, std::string_view key) {
  const auto found = object.find(std::string(key));
  if (found == object.end())
    throw ConfigError(at(path, key), "missing");
  return *found;
}

const json& arrayOf(const json& value, const std::string& path) {
  if (!value.is_array())
    throw ConfigError(path, "expected an array, found " + std::string(value.type_name()));
  return value;
}

// An unsigned number of at most `max`.
template <class T>
T unsignedOf(const json& value, const std::string& path, std::uint64_t min = 0) {
  const std::uint64_t max = std::numeric_limits<T>::max();
  const std::string range = std::to_string(min) + " to " + std::to_string(max);
  if (!value.is_number_integer())
    throw ConfigError(path, "expected a whole number from " + range + ", found " +
                                (value.is_number() ? value.dump() : value.type_name()));
  if (value.is_number_unsigned() && value.get<std::uint64_t>() >= min &&
      value.get<std::uint64_t>() <= max)
    return static_cast<T>(value.get<std::uint64_t>());
  throw ConfigError(path, value.dump() + " is not in " + range);
}

bool boolOf(const json& value, const std::string& path) {
  if (!value.is_boolean())
    throw ConfigError(path, "expected true or false, found " + std::string(value.type_name()));
  return value.get<bool>();
}

// An entry's (or the default's) target: exactly one of "member" and "group".
ConfigTarget targetOf(const json& object, const std::string& path) {
  const bool member = object.contains("member");
  const bool group = object.contains("group");
  if (member == group)
    throw ConfigError(path, "name exactly one of \"member\" or \"group\"");
  const char* key = member ? "member" : "group";
  return ConfigTarget{member, unsignedOf<std::uint32_t>(object[key], at(path, key))};
}

void readMembers(const json& members, const std::string& path, AgentConfig& config) {
  for (std::size_t i = 0; i < arrayOf(members, path).size(); ++i) {
    const std::string item = at(path, i);
    checkObject(members[i], item, {"id", "selector"});
    const auto id = unsignedOf<std::uint32_t>(required(members[i], item, "id"), at(item, "id"));
    const auto selector =
        unsignedOf<std::uint16_t>(required(members[i], item, "selector"), at(item, "selector"));
    if (!config.members.emplace(id, selector).second)
      throw ConfigError(at(item, "id"), "member " + std::to_string(id) + " is given twice");
  }
}

GroupMemberConfig groupMemberOf(const json& member, const std::string& path,
                                const AgentConfig& config) {
  checkObject(member, path, {"id", "active"});
  GroupMemberConfig result;
  result.id = unsignedOf<std::uint32_t>(required(member, path, "id"), at(path, "id"));
  if (config.members.count(result.id) == 0)
    throw ConfigError(at(path, "id"), "member " + std::to_string(result.id) + " is not configured");
  if (member.contains("active"))
    result.active = boolOf(member["active"], at(path, "active"));
  return result;
}

void readGroups(const json& groups, const std::string& path, AgentConfig& config) {
  for (std::size_t i = 0; i < arrayOf(groups, path).size(); ++i) {
    const std::string item = at(path, i);
    checkObject(groups[i], item, {"id", "size", "members"});
    const auto id = unsignedOf<std::uint32_t>(required(groups[i], item, "id"), at(item, "id"));
    GroupConfig group;
    group.size = unsignedOf<std::uint32_t>(required(groups[i], item, "size"), at(item, "size"), 1);
    const std::string membersPath = at(item, "members");
    const json& members = arrayOf(required(groups[i], item, "members"), membersPath);
    if (members.empty())
      throw ConfigError(membersPath, "a group keeps at least one member");
    const std::size_t room = std::min(group.size, AgentConfig::maxGroupSize);
    if (members.size() > room) {
      throw ConfigError(at(membersPath, room), "group " + std::to_string(id) + " of size " +
                                                   std::to_string(group.size) + " holds at most " +
                                                   std::to_string(room) + " members");
    }
    for (std::size_t m = 0; m < members.size(); ++m) {
      const GroupMemberConfig member = groupMemberOf(members[m], at(membersPath, m), config);
      for (const GroupMemberConfig& earlier : group.members) {
        if (earlier.id == member.id) {
          throw ConfigError(at(at(membersPath, m), "id"),
                            "member " + std::to_string(member.id) + " is given twice");
        }
      }
      group.members.push_back(member);
    }
    if (!config.groups.emplace(id, group).second)
      throw ConfigError(at(item, "id"), "group " + std::to_string(id) + " is given twice");
  }
}

// A target must name a configured member or group.
void checkTarget(const ConfigTarget& target, const std::string& path, const AgentConfig& config) {
  const bool known =
      target.member ? config.members.count(target.id) != 0 : config.groups.count(target.id) != 0;
  if (!known) {
    throw ConfigError(
        at(path, target.member ? "member" : "group"),
        (target.member ? "member " : "group ") + std::to_string(target.id) + " is not configured");
  }
}

void readEntries(const json& entries, const std::string& path, AgentConfig& config) {
  for (std::size_t i = 0; i < arrayOf(entries, path).size(); ++i) {
    const std::string item = at(path, i);
    checkObject(entries[i], item, {"session", "member", "group"});
    const auto session =
        unsignedOf<std::uint16_t>(required(entries[i], item, "session"), at(item, "session"));
    const ConfigTarget target = targetOf(entries[i], item);
    checkTarget(target, item, config);
    if (!config.entries.emplace(session, target).second)
      throw ConfigError(at(item, "session"),
                        "session " + std::to_string(session) + " is given twice");
  }
}

json targetJson(const ConfigTarget& target) {
  return json{{target.member ? "member" : "group", target.id}};
}

}  // namespace

AgentConfig AgentConfig::fromJson(const json& document) {
  checkObject(document, "", {"members", "groups", "entries", "default"});
  AgentConfig config;
  // In dependency order: what a later part names must be read already.
  if (document.contains("members"))
    readMembers(document["members"], "/members", config);
  if (document.contains("groups"))
    readGroups(document["groups"], "/groups", config);
  if (document.contains("entries"))
    readEntries(document["entries"], "/entries", config);
  if (document.contains("default")) {
    checkObject(document["default"], "/default", {"member", "group"});
    config.defaultTarget = targetOf(document["default"], "/default");
    checkTarget(*config.defaultTarget, "/default", config);
  }
  return config;
}

AgentConfig AgentConfig::fromText(const std::string& text) {
  json document;
  try {
    document = json::parse(text);
  } catch (const json::exception& e) {
    // A syntax error, or a number too large for any type.
    throw ConfigError("", std::string("not JSON: ") + e.what());
  }
  return fromJson(document);
}

json AgentConfig::toJson() const {
  json document = json::object();
  json& memberList = document["members"] = json::array();
  for (const auto& [id, selector] : members)
    memberList.push_back({{"id", id}, {"selector", selector}});
  json& groupList = document["groups"] = json::array();
  for (const auto& [id, group] : groups) {
    json groupMembers = json::array();
    for (const GroupMemberConfig& member : group.members) {
      json item{{"id", member.id}};
      if (!member.active)
        item["active"] = false;
      groupMembers.push_back(item);
    }
    groupList.push_back({{"id", id}, {"size", group.size}, {"members", groupMembers}});
  }
  json& entryList = document["entries"] = json::array();
  for (const auto& [session, target] : entries) {
    json item = targetJson(target);
    item["session"] = session;
    entryList.push_back(item);
  }
  if (defaultTarget)
    document["default"] = targetJson(*defaultTarget);
  return document;
}

std::vector<std::string> AgentConfig::notes() const {
  std::vector<std::string> result;
  for (const auto& [id, group] : groups) {
    if (group.size > maxGroupSize) {
      result.push_back("group " + std::to_string(id) + ": size " + std::to_string(group.size) +
                       " is capped to " + std::to_string(maxGroupSize));
    }
  }
  return result;
}

}  // namespace mirrorlag_agent
