#include "MbbVaultKey/VaultKeyManager.h"

#include "Quill/Assert.h"

namespace MbbVaultKey {

VaultKeyManager::~VaultKeyManager() = default;

VaultKeyManager::EntryKey VaultKeyManager::alloc(const MatchSpec& match, bool flag) {
  QUILL_ASSERT(match != nullptr);
  auto [slot, isNew] = keys_.try_emplace(match);
  if (isNew)
    slot->second = EntryKey::fromValue(++lastKey_);
  allocCalls_.push_back({match, flag, slot->second});
  return slot->second;
}

VaultKeyManager::EntryKey VaultKeyManager::key(const MatchSpec& match) const {
  const auto slot = keys_.find(match);
  return slot == keys_.end() ? EntryKey() : slot->second;
}

}  // namespace MbbVaultKey
