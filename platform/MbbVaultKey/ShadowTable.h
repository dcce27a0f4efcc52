#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Vault/FlatIndex.h"
#include "Vault/IterHint.h"
#include "Vault/MbbPostcodef/EntryKey.h"
#include "Vault/MbbPostcodef/ShadowOp.h"
#include "Vault/ReadOnlyVaultTable.h"
#include "Vault/SpareNodes.h"
#include "Vault/VaultTable.h"
#include "Vel/Allocate.h"
#include "Vel/Ptr.h"

namespace MbbVaultKey {

// One shadow table of records R as the platform writes it: the Vault table in
// named shared memory, made or re-attached by name, with what this process
// knows of it (every record and intent by key, and the key of each chip
// handle), and the read-only adapter through which plug-ins read it.
//
// Records are finished (Vault's InUse slots, which readers see) or intents (an
// operation under way, which readers do not see). A chip object has at most
// one finished record: recordIs() first removes any other record of the same
// handle, so that a writer killed in between leaves the other record gone and
// the new one still an intent, never two records of one object.
//
// On attach, slots that fail their checks are freed (damagedFreed() tells how
// many), so that the table can be walked again.
//
// A table may index the records of one operation (`indexedOp`, such as the
// default entry's set in the entry table), so that the first of them is found
// without a walk (firstIndexed()).
template <class R>
class ShadowTable {
 public:
  using EntryKey = Vault::MbbPostcodef::EntryKey;
  using ShadowOp = Vault::MbbPostcodef::ShadowOp;

  ShadowTable(const std::string& name, std::uint32_t capacity,
              std::optional<ShadowOp> indexedOp = std::nullopt)
      : table_(Vel::allocate<Vault::VaultTable<R>>(name, capacity)),
        config_(Vel::allocate<Vault::ReadOnlyVaultTable<R>>(name)),
        indexedOp_(indexedOp) {
    if (table_->writer().damagedSlotCount() != 0) {
      damagedFreed_ = table_->cleanup();
    }
    load();
  }

  const std::string& name() const noexcept { return table_->name(); }
  // The table as readers see it: finished records only, read-only.
  const Vel::Ptr<Vault::VaultBase<R>>& config() const noexcept { return config_; }
  // The writer's table, for housekeeping and tests.
  Vault::VaultTable<R>& table() const noexcept { return *table_; }
  std::uint32_t damagedFreed() const noexcept { return damagedFreed_; }

  // The finished record of `key`, or nothing.
  std::optional<R> record(const EntryKey& key) const { return find(key, false); }
  // The intent of `key`, or nothing.
  std::optional<R> intent(const EntryKey& key) const { return find(key, true); }
  // Copies the finished record of `key` into `record`; false, leaving it as
  // it was, when there is none.
  bool recordInto(const EntryKey& key, R& record) const {
    auto found = byKey_.find(key.value());
    if (found == byKey_.end() || found->second.intent) {
      return false;
    }
    record = found->second.record;
    return true;
  }
  // Copies the finished record of a chip handle into `record`; false, leaving
  // it as it was, when there is none.
  bool recordOfHandleInto(std::uint32_t handle, R& record) const {
    const std::uint64_t* key = keyOfHandle_.find(handle);
    return key != nullptr && recordInto(EntryKey::fromValue(*key), record);
  }
  // The key of the finished record of a chip handle, or nothing.
  std::optional<EntryKey> keyOfHandle(std::uint32_t handle) const {
    const std::uint64_t* found = keyOfHandle_.find(handle);
    if (found == nullptr) {
      return std::nullopt;
    }
    return EntryKey::fromValue(*found);
  }
  // The first finished record (in key order) for which `match` holds.
  std::optional<R> recordWhere(const std::function<bool(const R&)>& match) const {
    for (const auto& [key, slot] : byKey_) {
      if (!slot.intent && match(slot.record)) {
        return slot.record;
      }
    }
    return std::nullopt;
  }
  // The first finished record, in key order, that the indexed operation wrote
  // (what recordWhere() finds for it), without a walk; nothing without an
  // indexed operation.
  std::optional<R> firstIndexed() const {
    for (std::uint64_t key : indexed_) {
      auto slot = byKey_.find(key);
      if (slot != byKey_.end() && !slot->second.intent) {
        return slot->second.record;
      }
    }
    return std::nullopt;
  }
  // Finished records and intents together.
  std::size_t size() const noexcept { return byKey_.size(); }
  // Finished records, or intents, in key order.
  std::vector<R> records() const { return collect(false); }
  std::vector<R> intents() const { return collect(true); }
  // The largest key of a record or intent for which `counts` holds; key 0 when none.
  EntryKey largestKey(const std::function<bool(const EntryKey&)>& counts) const {
    for (auto slot = byKey_.rbegin(); slot != byKey_.rend(); ++slot) {
      EntryKey key = EntryKey::fromValue(slot->first);
      if (counts(key)) {
        return key;
      }
    }
    return EntryKey();
  }

  // Writes the intent of `record` over whatever its key held. Throws
  // Vel::RangeException when the table is full; nothing changes then.
  void intentIs(const R& record) {
    table_->intentIs(record);
    forgetHandle(record.vaultKey());
    spareSlots_.assign(byKey_, record.vaultKey(), Slot{record, true});
    reindex(record);
  }
  // Writes `record` finished, after removing any other record of its handle.
  void recordIs(const R& record) {
    if (std::optional<EntryKey> other = keyOfHandle(record.handle())) {
      if (other->value() != record.vaultKey()) {
        recordDel(*other);
      }
    }
    table_->write(record);
    forgetHandle(record.vaultKey());
    spareSlots_.assign(byKey_, record.vaultKey(), Slot{record, false});
    keyOfHandle_.assign(record.handle(), record.vaultKey());
    reindex(record);
  }
  // Removes the record or intent of `key`; false when there is none.
  bool recordDel(const EntryKey& key) {
    auto found = byKey_.find(key.value());
    if (found == byKey_.end()) {
      return false;
    }
    table_->remove(found->second.record);
    forgetHandle(key.value());
    spareSlots_.erase(byKey_, found);
    if (indexedOp_) {
      indexed_.erase(key.value());
    }
    return true;
  }

 private:
  struct Slot {
    R record;
    bool intent;
  };

  void load() {
    R record;
    Vault::IterHint hint;
    for (bool found = table_->first(record, hint); found; found = table_->next(record, hint)) {
      byKey_[record.vaultKey()] = {record, false};
      keyOfHandle_.assign(record.handle(), record.vaultKey());
      reindex(record);
    }
    for (bool found = table_->firstIntent(record, hint); found;
         found = table_->nextIntent(record, hint)) {
      byKey_[record.vaultKey()] = {record, true};
      reindex(record);
    }
  }
  // Keeps the index in step with `record`, just written under its key.
  void reindex(const R& record) {
    if (!indexedOp_) {
      return;
    }
    if (Vault::MbbPostcodef::shadowOpOf(record.opId()) == *indexedOp_) {
      indexed_.insert(record.vaultKey());
    } else {
      indexed_.erase(record.vaultKey());
    }
  }
  std::optional<R> find(const EntryKey& key, bool intent) const {
    auto found = byKey_.find(key.value());
    if (found == byKey_.end() || found->second.intent != intent) {
      return std::nullopt;
    }
    return found->second.record;
  }
  std::vector<R> collect(bool intent) const {
    std::vector<R> found;
    for (const auto& [key, slot] : byKey_) {
      if (slot.intent == intent) {
        found.push_back(slot.record);
      }
    }
    return found;
  }
  // Drops the handle index entry of the finished record of `key`, if any.
  void forgetHandle(std::uint64_t key) {
    auto slot = byKey_.find(key);
    if (slot == byKey_.end() || slot->second.intent) {
      return;
    }
    const std::uint32_t handle = slot->second.record.handle();
    const std::uint64_t* indexed = keyOfHandle_.find(handle);
    if (indexed != nullptr && *indexed == key) {
      keyOfHandle_.erase(handle);
    }
  }

  Vel::Ptr<Vault::VaultTable<R>> table_;
  Vel::Ptr<Vault::VaultBase<R>> config_;
  using ByKey = std::map<std::uint64_t, Slot>;
  ByKey byKey_;
  Vault::FlatIndex<std::uint32_t, std::uint64_t> keyOfHandle_;
  // Nodes of the map kept for the next record, which mostly follows a removal.
  Vault::SpareNodes<ByKey> spareSlots_;
  // The keys of the records (finished or intents) of the indexed operation.
  std::optional<ShadowOp> indexedOp_;
  std::set<std::uint64_t> indexed_;
  std::uint32_t damagedFreed_ = 0;
};

}  // namespace MbbVaultKey
