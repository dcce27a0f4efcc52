#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "config/AgentConfig.h"
#include "core/AgentTable.h"
#include "core/ConfigApplier.h"

namespace mirrorlag_agent {

// The first apply of a restarted agent, over what the plug-in adopted.
//
// The plug-in never takes over a group that the chip holds: each configured
// group is created anew, and the entries on it are pointed at the new group.
// Applied at once, the configuration would need room in the chip for every
// group twice. This apply moves the groups one at a time instead: first the
// members, then, group after group, the group with its members and the
// entries (and default entry) on it, and at once the deletion of the group it
// replaces (the one the plug-in adopted under its id). The chip thus needs
// room for one group more than it holds. When it has none, the entries of
// the replaced group are first pointed at one of the group's configured
// members (packets keep being forwarded, to that member alone, for that
// moment), the replaced group is deleted, and the new one takes its room.
// The rest of the configuration follows.
//
// Each step is an apply of the ConfigApplier, with its rollback, over the
// part of the configuration it changes (so that a step costs what it
// changes, not the size of the configuration): a step the chip refuses
// throws its ApplyError, the steps before it staying done and `running`
// saying what they applied.
class RestartApply {
 public:
  RestartApply(AgentTable& table, ConfigApplier& applier);

  // Applies `start`; `running` (empty at a restart) follows each step and is
  // `start` when this returns.
  void apply(const AgentConfig& start, AgentConfig& running);

  // The changes made, one line each ("group 5 add"), in order.
  const std::vector<std::string>& changes() const noexcept { return changes_; }
  // The replaced groups deleted, and how many of them had to go before their
  // group was created, for want of room.
  std::size_t retiredGroups() const noexcept { return retired_; }
  std::size_t retiredForRoom() const noexcept { return retiredForRoom_; }

 private:
  // What `running` holds of group `id`: the group, if applied, and the
  // entries (and default entry) that `start` puts on it, where they point now.
  AgentConfig slice(const AgentConfig& start, const AgentConfig& running, std::uint32_t id) const;
  // `part` with the entries (and default entry) that `start` puts on group
  // `id` pointed at `target`.
  AgentConfig pointedAt(AgentConfig part, const AgentConfig& start, std::uint32_t id,
                        const ConfigTarget& target) const;
  // Applies `after` over `before`, both parts of the configuration, and
  // brings `running` up to `after`.
  void step(AgentConfig& running, const AgentConfig& before, const AgentConfig& after);
  void noteChanges();
  void moveGroup(const AgentConfig& start, AgentConfig& running, std::uint32_t id);
  // Points the entries of group `id` at one of its members and deletes the
  // group that the plug-in adopted under `id`, to make room for the new one.
  void makeRoom(const AgentConfig& start, AgentConfig& running, std::uint32_t id);
  void retire(std::uint32_t id, bool required);

  AgentTable& table_;
  ConfigApplier& applier_;
  // The group handles the plug-in adopted, by group id, before this apply.
  std::map<std::uint32_t, std::uint32_t> adopted_;
  // The sessions whose entries the configuration puts on each group.
  std::map<std::uint32_t, std::vector<std::uint16_t>> sessionsOf_;
  std::vector<std::string> changes_;
  std::size_t retired_ = 0;
  std::size_t retiredForRoom_ = 0;
};

}  // namespace mirrorlag_agent
