#include "MbbVaultKey/VaultKeyManager.h"

#include "Vault/TableInUseException.h"
#include "Vel/Format.h"

#include <algorithm>

#include "Quill/Assert.h"
#include "Vel/Format.h"
#include "Vel/RangeException.h"

namespace MbbVaultKey {

namespace {

template <class R>
Vel::Ptr<Vault::VaultBase<R>> configOf(const std::unique_ptr<ShadowTable<R>>& table) {
  return table == nullptr ? nullptr : table->config();
}

}  // namespace

VaultKeyManager::VaultKeyManager() = default;

namespace {

// The shadow table `name` of `baseName`, held for writing; another writer of
// it is reported by the base name, as the host knows the tables.
template <class R>
std::unique_ptr<ShadowTable<R>> writerOf(
    const std::string& baseName, const std::string& name, std::uint32_t capacity,
    std::optional<Vault::MbbPostcodef::ShadowOp> indexedOp = std::nullopt) {
  try {
    return std::make_unique<ShadowTable<R>>(name, capacity, indexedOp);
  } catch (const Vault::TableInUseException& e) {
    throw Vault::TableInUseException(Vel::format("shadow tables '%s' are in use by process %d",
                                                 baseName.c_str(), int{e.holder()}),
                                     e.holder());
  }
}

}  // namespace

VaultKeyManager::VaultKeyManager(const std::string& baseName, Capacity capacity)
    : baseName_(baseName),
      // The default entry's record is looked up on every change of the default
      // entry: indexed, so that a full table is not walked for it.
      entries_(writerOf<EntryConfig>(baseName, mbbTableName(baseName), capacity.entries,
                                     Vault::MbbPostcodef::ShadowOp::defaultEntrySet)),
      members_(writerOf<AdtEntryConfig>(baseName, adtTableName(baseName), capacity.members)),
      groups_(writerOf<SelGrpEntryConfig>(baseName, selGrpTableName(baseName), capacity.groups)) {
  keyCountIs(entries_->largestKey(isEntryKey));
  // A restarted agent binds about one key per record it finds.
  keys_.reserve(entries_->size());
}

VaultKeyManager::~VaultKeyManager() = default;

bool VaultKeyManager::unlink(const std::string& baseName) {
  bool removed = Vault::VaultTable<EntryConfig>::unlink(mbbTableName(baseName));
  removed = Vault::VaultTable<AdtEntryConfig>::unlink(adtTableName(baseName)) || removed;
  return Vault::VaultTable<SelGrpEntryConfig>::unlink(selGrpTableName(baseName)) || removed;
}

Vel::Ptr<Vault::VaultBase<VaultKeyManager::EntryConfig>> VaultKeyManager::mbbVaultTableConfig()
    const {
  return configOf(entries_);
}

Vel::Ptr<Vault::VaultBase<VaultKeyManager::AdtEntryConfig>> VaultKeyManager::adtVaultTableConfig()
    const {
  return configOf(members_);
}

Vel::Ptr<Vault::VaultBase<VaultKeyManager::SelGrpEntryConfig>>
VaultKeyManager::selGrpVaultTableConfig() const {
  return configOf(groups_);
}

VaultKeyManager::EntryKey VaultKeyManager::alloc(const MatchSpec& match, bool flag) {
  QUILL_ASSERT(match != nullptr);
  auto [slot, isNew] = keys_.try_emplace(match);
  if (isNew) {
    slot->second = EntryKey::fromValue(++lastKey_);
  }
  allocCalls_.push_back({match, flag, slot->second});
  pendingEntryKey_ = slot->second;
  return slot->second;
}

VaultKeyManager::EntryKey VaultKeyManager::allocAnon(std::uint32_t n) {
  EntryKey key(kAnonHigh, n);
  pendingAnonKey_ = key;
  return key;
}

std::uint32_t VaultKeyManager::anonId(const EntryKey& key) const {
  if (!isAnon(key)) {
    Vel::throwRangeException(Vel::format("shadow key 0x%016llx is not an anonymous key",
                                         static_cast<unsigned long long>(key.value())));
  }
  return key.low();
}

void VaultKeyManager::populate(const EntryKey& key, const MatchSpec& match) {
  QUILL_ASSERT(match != nullptr);
  keys_[match] = key;
  keyCountIs(key);
}

void VaultKeyManager::latestKeyIs(const EntryKey& key) {
  keyCountIs(key);
}

void VaultKeyManager::keyCountIs(const EntryKey& key) noexcept {
  if (isEntryKey(key)) {
    lastKey_ = std::max(lastKey_, key.value());
  }
}

VaultKeyManager::EntryKey VaultKeyManager::key(const MatchSpec& match) const {
  const auto slot = keys_.find(match);
  return slot == keys_.end() ? EntryKey() : slot->second;
}

VaultKeyManager::EntryKey VaultKeyManager::entryKeyTake() {
  EntryKey key = pendingEntryKey_.value_or(EntryKey());
  pendingEntryKey_.reset();
  return key.isZero() ? EntryKey::fromValue(++lastKey_) : key;
}

std::optional<VaultKeyManager::EntryKey> VaultKeyManager::anonKeyTake() {
  return std::exchange(pendingAnonKey_, std::nullopt);
}

}  // namespace MbbVaultKey
