#include "core/RestartApply.h"

#include "BfIngressMirrorLagGroup/hw/PdStatus.h"
#include "Pd/PipeStatus.h"
#include "core/ApplyError.h"

namespace mirrorlag_agent {

namespace {

// `config` with the entries and default entry of `start` that point at group
// `id` pointed at `target` instead.
AgentConfig withEntriesOfGroup(AgentConfig config, const AgentConfig& start, std::uint32_t id,
                               const ConfigTarget& target) {
  const ConfigTarget group{false, id};
  for (const auto& [session, wanted] : start.entries) {
    if (wanted == group)
      config.entries[session] = target;
  }
  if (start.defaultTarget == group)
    config.defaultTarget = target;
  return config;
}

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
  AgentConfig members = running;
  members.members = start.members;
  step(running, members);
  for (const auto& [id, group] : start.groups)
    moveGroup(start, running, id);
  step(running, start);
}

void RestartApply::step(AgentConfig& running, const AgentConfig& next) {
  applier_.apply(running, next);
  running = next;
  changes_.insert(changes_.end(), applier_.changes().begin(), applier_.changes().end());
}

void RestartApply::moveGroup(const AgentConfig& start, AgentConfig& running, std::uint32_t id) {
  AgentConfig withGroup = running;
  withGroup.groups[id] = start.groups.at(id);
  withGroup = withEntriesOfGroup(std::move(withGroup), start, id, ConfigTarget{false, id});
  try {
    step(running, withGroup);
  } catch (const ApplyError&) {
    // Most likely the chip has no room for one more group: the one this
    // group replaces goes first, if there is one.
    if (adopted_.count(id) == 0)
      throw;
    makeRoom(start, running, id);
    step(running, withGroup);
  }
  retire(id, false);
}

void RestartApply::makeRoom(const AgentConfig& start, AgentConfig& running, std::uint32_t id) {
  step(running, withEntriesOfGroup(running, start, id, standIn(start.groups.at(id))));
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
