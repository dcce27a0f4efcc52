#include "core/RestartApply.h"

#include "BfIngressMirrorLagGroup/hw/PdStatus.h"
#include "Pd/PipeStatus.h"
#include "core/ApplyError.h"

namespace mirrorlag_agent {

namespace {

// The member that stands in for a group while it is made again: its first
// active member, or its first member when none is active.
ConfigTarget standIn(const GroupConfig& group) {
  for (const GroupMemberConfig& member : group.members) {
    if (member.active)
      return ConfigTarget{true, member.id};
  }
  return ConfigTarget{true, group.members.front().id};
}

}  // namespace

RestartApply::RestartApply(AgentTable& table, ConfigApplier& applier)
    : table_(table), applier_(applier), adopted_(table.groupHandles()) {}

void RestartApply::apply(const AgentConfig& start, AgentConfig& running) {
  for (const auto& [session, target] : start.entries) {
    if (!target.member)
      sessionsOf_[target.id].push_back(session);
  }
  AgentConfig members = running;
  members.members = start.members;
  applier_.apply(running, members);
  running = std::move(members);
  noteChanges();
  for (const auto& [id, group] : start.groups)
    moveGroup(start, running, id);
  applier_.apply(running, start);
  running = start;
  noteChanges();
}

AgentConfig RestartApply::slice(const AgentConfig& start, const AgentConfig& running,
                                std::uint32_t id) const {
  AgentConfig part;
  if (const auto found = running.groups.find(id); found != running.groups.end())
    part.groups.insert(*found);
  if (const auto sessions = sessionsOf_.find(id); sessions != sessionsOf_.end()) {
    for (const std::uint16_t session : sessions->second) {
      if (const auto entry = running.entries.find(session); entry != running.entries.end())
        part.entries.insert(*entry);
    }
  }
  if (start.defaultTarget == ConfigTarget{false, id})
    part.defaultTarget = running.defaultTarget;
  return part;
}

AgentConfig RestartApply::pointedAt(AgentConfig part, const AgentConfig& start, std::uint32_t id,
                                    const ConfigTarget& target) const {
  if (const auto sessions = sessionsOf_.find(id); sessions != sessionsOf_.end()) {
    for (const std::uint16_t session : sessions->second)
      part.entries[session] = target;
  }
  if (start.defaultTarget == ConfigTarget{false, id})
    part.defaultTarget = target;
  return part;
}

void RestartApply::step(AgentConfig& running, const AgentConfig& before, const AgentConfig& after) {
  applier_.apply(before, after);
  for (const auto& [groupId, group] : after.groups)
    running.groups[groupId] = group;
  for (const auto& [session, target] : after.entries)
    running.entries[session] = target;
  if (after.defaultTarget)
    running.defaultTarget = after.defaultTarget;
  noteChanges();
}

void RestartApply::noteChanges() {
  changes_.insert(changes_.end(), applier_.changes().begin(), applier_.changes().end());
}

void RestartApply::moveGroup(const AgentConfig& start, AgentConfig& running, std::uint32_t id) {
  const auto withGroup = [&] {
    AgentConfig part = slice(start, running, id);
    AgentConfig after = pointedAt(part, start, id, ConfigTarget{false, id});
    after.groups[id] = start.groups.at(id);
    return std::make_pair(std::move(part), std::move(after));
  };
  try {
    const auto [before, after] = withGroup();
    step(running, before, after);
  } catch (const ApplyError&) {
    // Most likely the chip has no room for one more group: the one this
    // group replaces goes first, if there is one.
    if (adopted_.count(id) == 0)
      throw;
    makeRoom(start, running, id);
    const auto [before, after] = withGroup();
    step(running, before, after);
  }
  retire(id, false);
}

void RestartApply::makeRoom(const AgentConfig& start, AgentConfig& running, std::uint32_t id) {
  const AgentConfig before = slice(start, running, id);
  step(running, before, pointedAt(before, start, id, standIn(start.groups.at(id))));
  retire(id, true);
  ++retiredForRoom_;
}
void RestartApply::retire(std::uint32_t id, bool required) {
  const auto old = adopted_.find(id);
  if (old == adopted_.end())
    return;
  const pipe_status status = table_.retiredGroupDel(old->second);
  // A replaced group that stays (an entry no configuration names still
  // points at it) goes with the leftovers after the apply.
  if (status != PIPE_STATUS_SUCCESS && required) {
    throw ApplyError(
        "group " + std::to_string(id) + " replace: its old group " + std::to_string(old->second) +
        " cannot be deleted to make room: " + BfIngressMirrorLagGroup::statusText(status));
  }
  if (status == PIPE_STATUS_SUCCESS) {
    changes_.push_back("group " + std::to_string(id) + " old group " + std::to_string(old->second) +
                       " del");
    ++retired_;
  }
  adopted_.erase(old);
}

}  // namespace mirrorlag_agent
