#include "RecordingKeyManager.h"

#include "ManagerEvents.h"

namespace BfIngressMirrorLagGroup {

void RecordingKeyManager::populate(const EntryKey& key, const MatchSpec& match) {
  calls.push_back("populate " + std::to_string(key.value()) + " session=" + sessionOf(match));
  populated.push_back(match);
  VaultKeyManager::populate(key, match);
}

void RecordingKeyManager::latestKeyIs(const EntryKey& key) {
  calls.push_back("latestKeyIs " + std::to_string(key.value()));
  VaultKeyManager::latestKeyIs(key);
}

}  // namespace BfIngressMirrorLagGroup
