#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "BfnMbbShared/AdtEntryConfig.h"
#include "BfnMbbShared/SelGrpEntryConfig.h"
#include "BfnTable/MatchSpecBase.h"
#include "MbbVaultKey/ShadowCapacity.h"
#include "MbbVaultKey/ShadowTable.h"
#include "MbbVaultKey/VaultKeyAllocCall.h"
#include "Vault/MbbPostcodef/EntryConfig.h"
#include "Vault/MbbPostcodef/EntryKey.h"
#include "Vault/VaultBase.h"
#include "Vel/Ptr.h"
#include "Vel/PtrInterface.h"

namespace MbbVaultKey {

// Gives every object a table programs into the chip a key for its record in
// the make-before-break shadow tables, and owns those tables.
//
// Keys. alloc(match) gives each match-spec object its key (the same object
// asked again keeps its key; objects are told apart by identity, as tables
// and registries tell them apart): keys count up from 1 and are never 0.
// allocAnon(n) gives the anonymous key of action-profile member or selector
// group n (high word kAnonHigh, low word n); anonId() turns it back into n.
// After a restart, populate() binds an adopted record's key to the match spec
// read back for it, and latestKeyIs() makes new keys start above a key in use.
//
// Shadow tables. A manager made with a base name creates, or re-attaches to,
// three Vault tables in named shared memory (mode 0600): "<base>-mbb" (match
// entries, EntryConfig), "<base>-adt" (action-profile members,
// AdtEntryConfig) and "<base>-selgrp" (selector groups, SelGrpEntryConfig).
// Another process made with the same base name sees the same records; the
// tables outlive the processes until unlink(). The PD interface object writes
// the records (see BfPdIngressMirrorLagGroup::ShadowRecorder) under the key
// allocated just before its chip call: the manager keeps the last key of
// alloc() and of allocAnon() until the recorder takes it. Plug-ins read the
// tables through the ...VaultTableConfig() adapters, read-only.
//
// A manager made without a name is the in-process allocator: keys only, no
// shadow tables (the ...VaultTableConfig() operations give null) and nothing
// is recorded.
//
// Every alloc() call is kept, in order, for hosts and tests to read. The key
// operations are virtual so that a test double can stand in for the manager.
class VaultKeyManager : public Vel::PtrInterface {
 public:
  using EntryKey = Vault::MbbPostcodef::EntryKey;
  using MatchSpec = Vel::Ptr<const BfnTable::MatchSpecBase>;
  using EntryConfig = Vault::MbbPostcodef::EntryConfig;
  using AdtEntryConfig = BfnMbbShared::AdtEntryConfig;
  using SelGrpEntryConfig = BfnMbbShared::SelGrpEntryConfig;

  // The high word of every anonymous key.
  static constexpr std::uint32_t kAnonHigh = 0x80000000u;

  using Capacity = ShadowCapacity;

  VaultKeyManager();
  // Creates or re-attaches to the shadow tables of `baseName` ("/x" or "x"),
  // and holds them for writing for its whole life. Throws
  // Vault::TableInUseException ("shadow tables 'x' are in use by process N")
  // when another key manager holds them, Vel::RangeException for a bad name,
  // a table that cannot be opened, that another user made or that was made
  // with another capacity; Quill::CorruptionDetectedException for a table
  // whose header is damaged.
  explicit VaultKeyManager(const std::string& baseName, Capacity capacity = Capacity());
  ~VaultKeyManager() override;

  // Removes the names of the three tables of `baseName`; true when one existed.
  static bool unlink(const std::string& baseName);
  static std::string mbbTableName(const std::string& baseName) { return baseName + "-mbb"; }
  static std::string adtTableName(const std::string& baseName) { return baseName + "-adt"; }
  static std::string selGrpTableName(const std::string& baseName) { return baseName + "-selgrp"; }

  // The base name; empty for the in-process allocator.
  const std::string& baseName() const noexcept { return baseName_; }
  bool hasShadowTables() const noexcept { return entries_ != nullptr; }

  // The shadow tables as plug-ins read them: walk with first()/next() from a
  // search record and a Vault::IterHint; damage raises
  // Quill::CorruptionDetectedException, whose message the reader hands to the
  // table's corruptionDetected(). Null without shadow tables.
  Vel::Ptr<Vault::VaultBase<EntryConfig>> mbbVaultTableConfig() const;
  Vel::Ptr<Vault::VaultBase<AdtEntryConfig>> adtVaultTableConfig() const;
  Vel::Ptr<Vault::VaultBase<SelGrpEntryConfig>> selGrpVaultTableConfig() const;

  // The key of `match` (not null), allocated on the first call for that
  // object. `flag` is kept with the recorded call. The key is the one the
  // next created match entry is recorded under.
  virtual EntryKey alloc(const MatchSpec& match, bool flag);
  // The anonymous key of member or group `n`; the one the next created
  // member or group is recorded under.
  virtual EntryKey allocAnon(std::uint32_t n);
  // The number an anonymous key was made from. Throws Vel::RangeException for
  // a key that is not anonymous.
  virtual std::uint32_t anonId(const EntryKey& key) const;
  // Binds `key` to `match` (not null): alloc(match) gives `key` from now on,
  // and new keys are allocated above it.
  virtual void populate(const EntryKey& key, const MatchSpec& match);
  // New keys are allocated above `key` (a key alloc() would not give, such as
  // an anonymous one, is not counted).
  virtual void latestKeyIs(const EntryKey& key);
  // The largest key allocated, populated or named by latestKeyIs, or found in
  // the match-entry table on attach.
  EntryKey latestKey() const noexcept { return EntryKey::fromValue(lastKey_); }

  static bool isAnon(const EntryKey& key) noexcept { return key.high() == kAnonHigh; }
  // Keys that alloc() gives: not 0, high word below kAnonHigh.
  static bool isEntryKey(const EntryKey& key) noexcept {
    return !key.isZero() && key.high() < kAnonHigh;
  }

  // The key held by `match`, or key 0 when it has none.
  EntryKey key(const MatchSpec& match) const;
  // Objects holding a key.
  std::size_t keys() const noexcept { return keys_.size(); }

  // Every alloc() call since construction or the last clear(), oldest first.
  const std::vector<VaultKeyAllocCall>& allocCalls() const noexcept { return allocCalls_; }
  // Forgets the recorded calls; the keys stay allocated.
  void clear() noexcept { allocCalls_.clear(); }

  // For the recorder: the key of alloc() not yet taken, or else a new key
  // (for an entry created without one); the key is taken either way.
  EntryKey entryKeyTake();
  // For the recorder: the key of allocAnon() not yet taken, if any.
  std::optional<EntryKey> anonKeyTake();

  // The writable shadow tables; null without shadow tables.
  ShadowTable<EntryConfig>* entryShadow() const noexcept { return entries_.get(); }
  ShadowTable<AdtEntryConfig>* memberShadow() const noexcept { return members_.get(); }
  ShadowTable<SelGrpEntryConfig>* groupShadow() const noexcept { return groups_.get(); }

 private:
  void keyCountIs(const EntryKey& key) noexcept;

  std::string baseName_;
  std::unique_ptr<ShadowTable<EntryConfig>> entries_;
  std::unique_ptr<ShadowTable<AdtEntryConfig>> members_;
  std::unique_ptr<ShadowTable<SelGrpEntryConfig>> groups_;
  std::unordered_map<MatchSpec, EntryKey> keys_;
  std::uint64_t lastKey_ = 0;
  std::optional<EntryKey> pendingEntryKey_;
  std::optional<EntryKey> pendingAnonKey_;
  std::vector<VaultKeyAllocCall> allocCalls_;
};

}  // namespace MbbVaultKey
