#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "Vault/FlatIndex.h"
#include "Vault/IterHint.h"
#include "Vault/MbbPostcodef/EntryKey.h"
#include "Vault/MbbPostcodef/ShadowOp.h"
#include "Vault/ReadOnlyVaultTable.h"
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
    const Held* held = heldOf(key.value());
    if (held == nullptr || held->intent) {
      return false;
    }
    record = held->record;
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
    for (const Held* held : inKeyOrder()) {
      if (!held->intent && match(held->record)) {
        return held->record;
      }
    }
    return std::nullopt;
  }
  // The first finished record, in key order, that the indexed operation wrote
  // (what recordWhere() finds for it), without a walk; nothing without an
  // indexed operation.
  std::optional<R> firstIndexed() const {
    for (std::uint64_t key : indexed_) {
      const Held* held = heldOf(key);
      if (held != nullptr && !held->intent) {
        return held->record;
      }
    }
    return std::nullopt;
  }
  // Finished records and intents together.
  std::size_t size() const noexcept { return size_; }
  // Finished records, or intents, in key order.
  std::vector<R> records() const { return collect(false); }
  std::vector<R> intents() const { return collect(true); }
  // The largest key of a record or intent for which `counts` holds; key 0 when none.
  EntryKey largestKey(const std::function<bool(const EntryKey&)>& counts) const {
    const std::vector<const Held*> order = inKeyOrder();
    for (auto held = order.rbegin(); held != order.rend(); ++held) {
      EntryKey key = EntryKey::fromValue((*held)->record.vaultKey());
      if (counts(key)) {
        return key;
      }
    }
    return EntryKey();
  }

  // Writes the intent of `record` over whatever its key held. Throws
  // Vel::RangeException when the table is full; nothing changes then.
  void intentIs(const R& record) {
    hold(table_->intentIs(record), record, true);
    reindex(record);
  }
  // Writes `record` finished, after removing any other record of its handle.
  void recordIs(const R& record) {
    if (std::optional<EntryKey> other = keyOfHandle(record.handle())) {
      if (other->value() != record.vaultKey()) {
        recordDel(*other);
      }
    }
    hold(table_->writeInSlot(record), record, false);
    keyOfHandle_.assign(record.handle(), record.vaultKey());
    reindex(record);
  }
  // Removes the record or intent of `key`; false when there is none.
  bool recordDel(const EntryKey& key) {
    Held* held = heldOf(key.value());
    if (held == nullptr) {
      return false;
    }
    table_->remove(held->record);
    forgetHandle(*held);
    held->used = false;
    --size_;
    unindex(key.value());
    return true;
  }

 private:
  // What this process knows of one slot of the table: the record or intent
  // it holds, when it is used.
  struct Held {
    R record;
    bool used = false;
    bool intent = false;
  };

  void load() {
    R record;
    Vault::IterHint hint;
    for (bool found = table_->first(record, hint); found; found = table_->next(record, hint)) {
      if (loadHeld(record, false)) {
        keyOfHandle_.assign(record.handle(), record.vaultKey());
      }
    }
    for (bool found = table_->firstIntent(record, hint); found;
         found = table_->nextIntent(record, hint)) {
      loadHeld(record, true);
    }
  }
  // Holds a record found by the walk of attach in the slot the writer knows
  // it by; false for one the writer does not index (damaged since), which
  // cannot be written or removed by key either.
  bool loadHeld(const R& record, bool intent) {
    const std::optional<std::uint32_t> slot = table_->writer().slotOf(record.vaultKey());
    if (!slot) {
      return false;
    }
    hold(*slot, record, intent);
    reindex(record);
    return true;
  }
  // Keeps `record`, just written into `slot`, in place of what the slot held.
  void hold(std::uint32_t slot, const R& record, bool intent) {
    if (slot >= bySlot_.size()) {
      bySlot_.resize(slot + 1);
    }
    Held& held = bySlot_[slot];
    if (held.used) {
      forgetHandle(held);
    } else {
      ++size_;
    }
    held.record = record;
    held.used = true;
    held.intent = intent;
  }
  // What the slot of `key` holds, when it holds that key.
  const Held* heldOf(std::uint64_t key) const noexcept {
    const std::optional<std::uint32_t> slot = table_->writer().slotOf(key);
    if (!slot || *slot >= bySlot_.size()) {
      return nullptr;
    }
    const Held& held = bySlot_[*slot];
    return held.used && held.record.vaultKey() == key ? &held : nullptr;
  }
  Held* heldOf(std::uint64_t key) noexcept {
    return const_cast<Held*>(std::as_const(*this).heldOf(key));
  }
  // Every used slot, in key order: for the walks that promise it, which are
  // rare (attach, reports), so that no order is kept on every write.
  std::vector<const Held*> inKeyOrder() const {
    std::vector<const Held*> order;
    order.reserve(size_);
    for (const Held& held : bySlot_) {
      if (held.used) {
        order.push_back(&held);
      }
    }
    std::sort(order.begin(), order.end(), [](const Held* left, const Held* right) {
      return left->record.vaultKey() < right->record.vaultKey();
    });
    return order;
  }
  // Keeps the index in step with `record`, just written under its key.
  void reindex(const R& record) {
    if (!indexedOp_) {
      return;
    }
    if (Vault::MbbPostcodef::shadowOpOf(record.opId()) == *indexedOp_) {
      indexed_.insert(record.vaultKey());
    } else {
      unindex(record.vaultKey());
    }
  }
  // Takes `key` out of the index. The index holds the few records of a rare
  // operation and is mostly empty: then there is nothing to look for.
  void unindex(std::uint64_t key) {
    if (!indexed_.empty()) {
      indexed_.erase(key);
    }
  }
  std::optional<R> find(const EntryKey& key, bool intent) const {
    const Held* held = heldOf(key.value());
    if (held == nullptr || held->intent != intent) {
      return std::nullopt;
    }
    return held->record;
  }
  std::vector<R> collect(bool intent) const {
    std::vector<R> found;
    for (const Held* held : inKeyOrder()) {
      if (held->intent == intent) {
        found.push_back(held->record);
      }
    }
    return found;
  }
  // Drops the handle index entry of `held`, when it is a finished record.
  void forgetHandle(const Held& held) {
    if (held.intent) {
      return;
    }
    const std::uint32_t handle = held.record.handle();
    const std::uint64_t* indexed = keyOfHandle_.find(handle);
    if (indexed != nullptr && *indexed == held.record.vaultKey()) {
      keyOfHandle_.erase(handle);
    }
  }

  Vel::Ptr<Vault::VaultTable<R>> table_;
  Vel::Ptr<Vault::VaultBase<R>> config_;
  // What each slot of the table holds, by the writer's slot number: the
  // writer's index of keys finds a record's slot, and slots are taken lowest
  // first, so this stays as long as the table's fullest use.
  std::vector<Held> bySlot_;
  std::size_t size_ = 0;
  Vault::FlatIndex<std::uint32_t, std::uint64_t> keyOfHandle_;
  // The keys of the records (finished or intents) of the indexed operation.
  std::optional<ShadowOp> indexedOp_;
  std::set<std::uint64_t> indexed_;
  std::uint32_t damagedFreed_ = 0;
};

}  // namespace MbbVaultKey
