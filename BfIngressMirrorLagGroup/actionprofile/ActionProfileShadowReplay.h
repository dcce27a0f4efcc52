#pragma once

#include <cstdint>

#include "BfIngressMirrorLagGroup/hw/IngressMirrorLagGroupTableHandles.h"
#include "MbbVaultKey/VaultKeyManager.h"

namespace BfIngressMirrorLagGroup {

// Refills a handle registry with the member and group handles that an
// earlier instance of the program recorded in the action-data and
// selector-group shadow tables: each record's anonymous key is turned back
// into its member or group id, whose registry handle becomes the record's
// (added when absent, overwritten in place otherwise). Nothing is programmed
// and nothing is read back from the chip: later adds of the same members
// find the handles and modify the members instead.
//
// A damaged shadow table ends the walk of that table at the damage (the
// records before it stay refilled) and its corruption handler is told; the
// other table is still walked.
class ActionProfileShadowReplay {
 public:
  ActionProfileShadowReplay(IngressMirrorLagGroupTableHandles& registry,
                            const MbbVaultKey::VaultKeyManager& keys) noexcept
      : registry_(registry), keys_(keys) {}

  // Walks the member table, then the group table (both must exist).
  void replayMembers();
  void replayGroups();

  // Records refilled from each table.
  std::uint32_t members() const noexcept { return members_; }
  std::uint32_t groups() const noexcept { return groups_; }

 private:
  IngressMirrorLagGroupTableHandles& registry_;
  const MbbVaultKey::VaultKeyManager& keys_;
  std::uint32_t members_ = 0;
  std::uint32_t groups_ = 0;
};

}  // namespace BfIngressMirrorLagGroup
