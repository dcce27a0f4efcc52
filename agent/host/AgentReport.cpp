#include "host/AgentReport.h"

#include <cstdio>
#include <map>
#include <stdexcept>

namespace mirrorlag_agent {

namespace {

// An entry or default's target as its two cells: "member" or "group", the id.
std::vector<nlohmann::json> targetCells(const ConfigTarget& target) {
  return {target.member ? "member" : "group", target.id};
}

// A handle cell: the number, or none when the plug-in holds no handle.
nlohmann::json handleCell(std::uint32_t handle) {
  return handle == 0 ? nlohmann::json() : nlohmann::json(handle);
}

// A shadow key as "high:low" in hexadecimal, the anonymous ones standing out.
std::string keyText(const Vault::MbbPostcodef::EntryKey& key) {
  char text[sizeof "ffffffff:ffffffff"];
  std::snprintf(text, sizeof text, "%08x:%08x", key.high(), key.low());
  return text;
}

// Each subject of `show` and the table that answers it (the running
// configuration, the last subject, is printed by the host itself).
struct Subject {
  const char* name;
  ShowTable (AgentReport::*make)() const;
};
constexpr Subject kSubjects[] = {{"entries", &AgentReport::entries},
                                 {"members", &AgentReport::members},
                                 {"groups", &AgentReport::groups},
                                 {"handles", &AgentReport::handles},
                                 {"shadow", &AgentReport::shadow}};

// The handles of a map keyed by member or group id, in id order.
template <class Map>
std::map<std::uint32_t, std::uint32_t> byId(const Map& handles) {
  std::map<std::uint32_t, std::uint32_t> ordered;
  for (auto slot = handles.begin(); slot; ++slot)
    ordered.emplace(slot.key().value(), slot.value());
  return ordered;
}

}  // namespace

ShowTable AgentReport::of(const std::string& subject) const {
  for (const Subject& known : kSubjects) {
    if (subject == known.name)
      return (this->*known.make)();
  }
  throw std::invalid_argument("nothing to show as '" + subject + "'");
}

ShowTable AgentReport::entries() const {
  ShowTable table({"SESSION", "TARGET", "ID", "HANDLE"});
  for (const auto& [session, target] : running_.entries) {
    std::vector<nlohmann::json> cells{session};
    for (nlohmann::json& cell : targetCells(target))
      cells.push_back(std::move(cell));
    cells.push_back(handleCell(table_.entryHandle(session)));
    table.rowIs(std::move(cells));
  }
  if (running_.defaultTarget) {
    std::vector<nlohmann::json> cells{"default"};
    for (nlohmann::json& cell : targetCells(*running_.defaultTarget))
      cells.push_back(std::move(cell));
    cells.push_back(handleCell(table_.defaultHandle()));
    table.rowIs(std::move(cells));
  }
  return table;
}

ShowTable AgentReport::members() const {
  ShowTable table({"ID", "SELECTOR", "HANDLE", "GROUPS"});
  for (const auto& [id, selector] : running_.members) {
    nlohmann::json groups = nlohmann::json::array();
    for (const auto& [groupId, group] : running_.groups) {
      for (const GroupMemberConfig& member : group.members) {
        if (member.id == id)
          groups.push_back(groupId);
      }
    }
    table.rowIs({id, selector, handleCell(table_.memberHandle(id)), groups});
  }
  return table;
}

ShowTable AgentReport::groups() const {
  ShowTable table({"ID", "SIZE", "HANDLE", "MEMBERS", "INACTIVE"});
  for (const auto& [id, group] : running_.groups) {
    nlohmann::json members = nlohmann::json::array();
    nlohmann::json inactive = nlohmann::json::array();
    for (const GroupMemberConfig& member : group.members) {
      members.push_back(member.id);
      if (!member.active)
        inactive.push_back(member.id);
    }
    table.rowIs({id, group.size, handleCell(table_.groupHandle(id)), members, inactive});
  }
  return table;
}

ShowTable AgentReport::handles() const {
  ShowTable table({"KIND", "ID", "HANDLE"});
  const auto& held = *table_.table()->helper()->sdkHandles();
  for (std::uint16_t session : table_.sessions())
    table.rowIs({"entry", session, table_.entryHandle(session)});
  if (const std::uint32_t handle = table_.defaultHandle())
    table.rowIs({"default", nullptr, handle});
  for (const auto& [id, handle] : byId(held.members()))
    table.rowIs({"member", id, handle});
  for (const auto& [id, handle] : byId(held.groups()))
    table.rowIs({"group", id, handle});
  return table;
}

ShowTable AgentReport::shadow() const {
  ShowTable table({"TABLE", "KEY", "HANDLE", "SESSION", "SIZE", "REPLACED"});
  if (!keys_.hasShadowTables())
    return table;
  for (const auto& record : keys_.entryShadow()->records()) {
    table.rowIs({keys_.entryShadow()->name(), keyText(record.key()), record.handle(),
                 record.ingMirrorMdMirrorSession(), nullptr, nullptr});
  }
  for (const auto& record : keys_.memberShadow()->records()) {
    table.rowIs({keys_.memberShadow()->name(), keyText(record.key()), record.handle(), nullptr,
                 nullptr, nullptr});
  }
  for (const auto& record : keys_.groupShadow()->records()) {
    table.rowIs({keys_.groupShadow()->name(), keyText(record.key()), record.handle(), nullptr,
                 record.maxGroupSize(), handleCell(record.replacedHandle())});
  }
  return table;
}

}  // namespace mirrorlag_agent
