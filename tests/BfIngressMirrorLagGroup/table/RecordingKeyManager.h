#pragma once

#include <string>
#include <vector>

#include "MbbVaultKey/VaultKeyManager.h"

namespace BfIngressMirrorLagGroup {

// A key manager that notes every populate and latestKeyIs call: "populate 5
// session=12" binds key 5 to a match spec of mirror session 12, "latestKeyIs 9"
// names key 9.
class RecordingKeyManager : public MbbVaultKey::VaultKeyManager {
 public:
  RecordingKeyManager() = default;
  RecordingKeyManager(const std::string& baseName, Capacity capacity)
      : VaultKeyManager(baseName, capacity) {}

  void populate(const EntryKey& key, const MatchSpec& match) override;
  void latestKeyIs(const EntryKey& key) override;

  // The calls, oldest first, and the match specs populate() was given.
  std::vector<std::string> calls;
  std::vector<MatchSpec> populated;
};

}  // namespace BfIngressMirrorLagGroup
