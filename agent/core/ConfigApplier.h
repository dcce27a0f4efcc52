#pragma once

#include <functional>
#include <string>
#include <vector>

#include "config/AgentConfig.h"
#include "core/AgentTable.h"

namespace mirrorlag_agent {

// Applies a new configuration to the plug-in as the difference from the
// running one, in dependency order: members added or changed, groups added
// with their members, members leaving, then joining or switching in existing
// groups (leaving first, so that a full group can change members), entries
// added or changed, the default entry; then the removals in reverse (default,
// entries, groups, members). Nothing that is
// the same in both is touched, so applying the running configuration again
// makes no PD call.
//
// Every change is journalled with its undo. When the chip refuses a change,
// the changes already made are undone in reverse and the refusal is thrown
// on (the chip, the shadow tables and the plug-in's objects end as before);
// an undo that the chip refuses too is added to the message.
//
// A group whose size or initial member (its first member) differs between the
// two configurations cannot be changed in place: such a configuration is
// refused before anything is touched (remove the group first).
class ConfigApplier {
 public:
  explicit ConfigApplier(AgentTable& table) noexcept : table_(table) {}

  // Applies `wanted` over `running`; on success, `wanted` is the running one.
  void apply(const AgentConfig& running, const AgentConfig& wanted);

  // The changes the last apply made, one line each ("member 5 add"), in order.
  const std::vector<std::string>& changes() const noexcept { return changes_; }

 private:
  void change(std::string what, const std::function<void()>& doIt, std::function<void()> undo);
  void addPhase(const AgentConfig& running, const AgentConfig& wanted);
  void removePhase(const AgentConfig& running, const AgentConfig& wanted);
  // The members that leave a group that stays, then those that join it or
  // change their flag.
  void changeGroupMembers(std::uint32_t id, const GroupConfig& running, const GroupConfig& wanted);
  void rollBack(std::string& message) noexcept;

  AgentTable& table_;
  std::vector<std::string> changes_;
  std::vector<std::function<void()>> undo_;
};

}  // namespace mirrorlag_agent
