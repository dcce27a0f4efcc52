#pragma once

#include <set>
#include <string>
#include <vector>

#include "config/AgentConfig.h"
#include "core/AgentTable.h"
#include "host/ChipProbe.h"

namespace mirrorlag_agent {

// The agent's `check`: that the chip is coherent, and that the agent's view
// agrees with it. The plug-in must hold a handle for every configured entry,
// member and group, and the chip as many objects as the configuration names
// (no orphan); every configured session must forward to the selectors the
// configuration gives it (a member's, or the active members' of a group: none
// when a group has no active member), and a session without entry to the
// default entry's. Without the software chip's own functions only the
// plug-in's handles are checked.
class AgentCheck {
 public:
  AgentCheck(const AgentConfig& running, const AgentTable& table, const ChipProbe& chip)
      : running_(running), table_(table), chip_(chip) {}

  // Each disagreement found, one line each; none when all agree.
  std::vector<std::string> faults() const;
  // The line that says what was found in agreement.
  std::string summary() const;

 private:
  void handleFaults(std::vector<std::string>& faults) const;
  void countFaults(std::vector<std::string>& faults) const;
  void forwardingFaults(std::vector<std::string>& faults) const;
  // The selectors that packets of `target` go to, by the configuration.
  std::set<std::uint16_t> selectorsOf(const ConfigTarget& target) const;
  // How many members packets of `target` are spread over (at least 1): the
  // hashes 0 to choices - 1 reach each of them once.
  std::size_t choices(const ConfigTarget& target) const;
  // The selectors the chip gives packets of `session` with hashes 0 to
  // `hashes` - 1; whether the default entry gave them.
  std::set<std::uint16_t> forwarded(std::uint16_t session, std::size_t hashes,
                                    bool& byDefault) const;

  const AgentConfig& running_;
  const AgentTable& table_;
  const ChipProbe& chip_;
};

}  // namespace mirrorlag_agent
