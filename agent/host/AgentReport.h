#pragma once

#include <string>
#include <vector>

#include "MbbVaultKey/VaultKeyManager.h"
#include "config/AgentConfig.h"
#include "core/AgentTable.h"
#include "host/ShowTable.h"

namespace mirrorlag_agent {

// What the agent's `show` commands print about its running configuration and
// what the plug-in holds for it:
//   entries   session, what it forwards to, the entry's handle (default last)
//   members   id, selector, handle, the groups it is a member of
//   groups    id, size, handle, members, the inactive ones
//   handles   every handle the plug-in keeps, by kind and id
//   shadow    every record of the three shadow tables, by key
// Build one for a command and ask it for a subject's table.
class AgentReport {
 public:
  AgentReport(const AgentConfig& running, const AgentTable& table,
              const MbbVaultKey::VaultKeyManager& keys)
      : running_(running), table_(table), keys_(keys) {}

  // The table of `subject`; std::invalid_argument for another word.
  ShowTable of(const std::string& subject) const;

  ShowTable entries() const;
  ShowTable members() const;
  ShowTable groups() const;
  ShowTable handles() const;
  ShowTable shadow() const;

 private:
  const AgentConfig& running_;
  const AgentTable& table_;
  const MbbVaultKey::VaultKeyManager& keys_;
};

}  // namespace mirrorlag_agent
