#pragma once

#include <cstdint>

#include "BfIngressMirrorLagGroup/table/IngressMirrorLagGroupTable.h"
#include "MbbVaultKey/VaultKeyManager.h"
#include "Vault/MbbPostcodef/EntryConfig.h"
#include "Vault/MbbPostcodef/EntryKey.h"

namespace BfIngressMirrorLagGroup {

// Adopts the match entries that an earlier instance of the program left in the
// chip, as the match-entry shadow table of the key manager records them: each
// record's entry is read back from the chip by its handle, and its handle goes
// into the table's registry under the read-back match spec, to which the
// record's key is then bound in the key manager. Later writes of those entries
// through the registry's match specs modify them instead of adding them again.
//
// The record of the default entry is adopted under the table's default match
// spec, so that the default entry can be set again or reset through it.
//
// A damaged shadow table ends the walk at the first damaged record: the
// records before it stay adopted and the table's corruption handler is told.
class EntryShadowReplay {
 public:
  using EntryConfig = Vault::MbbPostcodef::EntryConfig;
  using EntryKey = Vault::MbbPostcodef::EntryKey;

  EntryShadowReplay(IngressMirrorLagGroupTable& table, MbbVaultKey::VaultKeyManager& keys) noexcept
      : table_(table), keys_(keys) {}

  // Walks the whole shadow table (which must exist), then lets the key manager
  // allocate new keys above the largest key seen, when one was seen.
  void replay();

  // Records whose entries were adopted, and records whose handles the chip no
  // longer knows.
  std::uint32_t adopted() const noexcept { return adopted_; }
  std::uint32_t skipped() const noexcept { return skipped_; }
  // The largest record key seen; key 0 when the walk found none.
  const EntryKey& largestKey() const noexcept { return largestKey_; }
  // True when the walk stopped at a damaged record.
  bool corrupted() const noexcept { return corrupted_; }

 private:
  void walk();
  void adopt(const EntryConfig& record);

  IngressMirrorLagGroupTable& table_;
  MbbVaultKey::VaultKeyManager& keys_;
  std::uint32_t adopted_ = 0;
  std::uint32_t skipped_ = 0;
  EntryKey largestKey_;
  bool corrupted_ = false;
};

}  // namespace BfIngressMirrorLagGroup
