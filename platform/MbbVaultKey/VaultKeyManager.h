#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "BfnTable/MatchSpecBase.h"
#include "MbbVaultKey/VaultKeyAllocCall.h"
#include "Vault/MbbPostcodef/EntryKey.h"
#include "Vel/Ptr.h"
#include "Vel/PtrInterface.h"

namespace MbbVaultKey {

// Gives every match-table entry a key for its record in the make-before-break
// shadow table. This is the in-process allocator: keys are handed out from 1
// upwards, one per match-spec object (the same object asked again keeps its
// key), and are never 0. The operations are virtual so that a manager backed
// by shared-memory shadow tables can take over behind the same interface.
// Every alloc() call is kept, in order, for hosts and tests to read.
class VaultKeyManager : public Vel::PtrInterface {
 public:
  using EntryKey = Vault::MbbPostcodef::EntryKey;
  using MatchSpec = Vel::Ptr<const BfnTable::MatchSpecBase>;

  VaultKeyManager() = default;
  ~VaultKeyManager() override;

  // The key of `match` (not null), allocated on the first call for that object. `flag`
  // is handed through to shadow-table back ends; this allocator only records it.
  virtual EntryKey alloc(const MatchSpec& match, bool flag);

  // The key held by `match`, or key 0 when it has none.
  EntryKey key(const MatchSpec& match) const;
  // Objects holding a key.
  std::size_t keys() const noexcept { return keys_.size(); }

  // Every alloc() call since construction or the last clear(), oldest first.
  const std::vector<VaultKeyAllocCall>& allocCalls() const noexcept { return allocCalls_; }
  // Forgets the recorded calls; the keys stay allocated.
  void clear() noexcept { allocCalls_.clear(); }

 private:
  std::unordered_map<MatchSpec, EntryKey> keys_;
  std::uint64_t lastKey_ = 0;
  std::vector<VaultKeyAllocCall> allocCalls_;
};

}  // namespace MbbVaultKey
