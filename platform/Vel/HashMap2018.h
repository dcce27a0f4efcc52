#pragma once

#include <cstdint>
#include <optional>
#include <type_traits>
#include <utility>

#include "Quill/Assert.h"
#include "Vel/Allocate.h"
#include "Vel/ExternalKey.h"
#include "Vel/HashMap.h"
#include "Vel/HashMapLink.h"
#include "Vel/Ptr.h"
#include "Vel/PtrInterface.h"

namespace Vel {

// Chained hash map of values in slots that the map owns. With the default
// policy Vel::ExternalKey the key is given on insert and kept in the slot;
// with any other KeyFunktor the key of a slot is `KeyFunktor()(value)`, and a
// slot's value may only be replaced by one with the same key. Slots are
// counted framework objects chained in a Vel::HashMap, so look-up, bucket
// order and deletion-tolerant iteration are those of Vel::HashMap; iterators
// give `key()` and `value()` of the current slot. A map with external keys
// keeps the slot of its last removed key, emptied, for its next insert.
template <class KeyT, class ValueT, class KeyFunktor = ExternalKey>
class HashMap2018 {
  static constexpr bool externalKey = std::is_same_v<KeyFunktor, ExternalKey>;
  struct NoKey {};

 public:
  using Key = KeyT;
  using Value = ValueT;

  // One key and value of the map.
  class Slot : public PtrInterface, public HashMapLink<Slot> {
   public:
    Slot(const Key& key, const Value& value) requires externalKey : key_(key), value_(value) {}
    explicit Slot(const Value& value) requires(!externalKey) : value_(value) {}

    const Key& fwkKey() const noexcept requires externalKey { return key_; }
    Key fwkKey() const requires(!externalKey) { return KeyFunktor()(value_); }

    const Value& value() const noexcept { return value_; }
    // Replaces the value; in a map whose keys come from the values the new
    // value must have the slot's key.
    void valueIs(const Value& _value) {
      if constexpr (!externalKey) {
        QUILL_ASSERT_AT(fwkKey() == KeyFunktor()(_value), "fwkKey() == KeyFunktor()( _value )",
                        __FILE__, __LINE__);
      }
      value_ = _value;
    }

   private:
    friend class HashMap2018;
    // A slot kept for the next insert: it holds no key and no value meanwhile.
    void forget() requires externalKey {
      key_ = Key{};
      value_ = Value{};
    }
    void reuse(const Key& key, const Value& value) requires externalKey {
      key_ = key;
      value_ = value;
    }

    [[no_unique_address]] std::conditional_t<externalKey, Key, NoKey> key_;
    Value value_;
  };

  using Slots = HashMap<Slot, Key>;
  using Iterator = typename Slots::Iterator;
  using IteratorConst = typename Slots::IteratorConst;

  // Starts with `initialSize` buckets, rounded up to a power of two.
  explicit HashMap2018(std::uint32_t initialSize = 4) : slots_(initialSize) {}
  ~HashMap2018() {
    if (spare_)
      spare_->velAllocTrack()->unparked();
  }
  HashMap2018(const HashMap2018&) = delete;
  HashMap2018& operator=(const HashMap2018&) = delete;

  // The slot of this key, or null.
  Ptr<Slot> find(const Key& key) { return slots_.find(key); }
  Ptr<const Slot> find(const Key& key) const { return slots_.find(key); }
  // The value of this key, or null, without taking a reference to its slot:
  // valid while the map holds the key. For look-ups that only read the value.
  const Value* valueOf(const Key& key) const {
    const Slot* slot = slots_.findUncounted(key);
    return slot != nullptr ? &slot->value() : nullptr;
  }

  // Adds a value under a key. Returns its new slot, or null, changing
  // nothing, when the key is present already.
  Ptr<Slot> insert(const Key& key, const Value& value) requires externalKey {
    if (!spare_)
      return added(allocate<Slot>(key, value));
    Ptr<Slot> slot = std::move(spare_);
    slot->velAllocTrack()->allocated();
    slot->reuse(key, value);
    if (slots_.insert(slot))
      return slot;
    keep(std::move(slot));
    return nullptr;
  }
  // Adds a value under its own key, as insert(key, value) does.
  Ptr<Slot> insert(const Value& value) requires(!externalKey) {
    return added(allocate<Slot>(value));
  }

  // Takes the key out of the map and returns its value; no value when the key
  // is absent.
  std::optional<Value> remove(const Key& key) {
    Ptr<Slot> removed = slots_.remove(key);
    if (!removed)
      return std::nullopt;
    Value value = removed->value();
    if constexpr (externalKey)
      keep(std::move(removed));
    return value;
  }

  // Removes one slot after another until the map is empty.
  void deleteAll() { slots_.deleteAll(); }

  std::size_t size() const noexcept { return slots_.size(); }
  std::size_t buckets() const noexcept { return slots_.buckets(); }
  bool empty() const noexcept { return slots_.empty(); }
  std::size_t bucketOf(const Key& key) const { return slots_.bucketOf(key); }

  Iterator begin() { return slots_.begin(); }
  Iterator end() { return slots_.end(); }
  IteratorConst begin() const { return slots_.begin(); }
  IteratorConst end() const { return slots_.end(); }
  Iterator iterator() { return begin(); }
  IteratorConst iteratorConst() const { return begin(); }

 private:
  Ptr<Slot> added(Ptr<Slot> slot) { return slots_.insert(slot) ? slot : nullptr; }
  // Keeps a slot out of the map for the next insert when none is kept yet
  // and nothing else refers to it (one reference, no framework flag), else
  // lets it go. Its type's allocation record counts a kept slot as released.
  void keep(Ptr<Slot> slot) requires externalKey {
    if (spare_ || slot->referenceWord() != 1 || slot->velAllocTrack() == nullptr)
      return;
    slot->forget();
    slot->velAllocTrack()->released();
    spare_ = std::move(slot);
  }

  Slots slots_;
  // The slot of the last key removed, kept for the next key inserted: a key
  // that comes and goes (an entry added, then deleted) costs no allocation.
  Ptr<Slot> spare_;
};

}  // namespace Vel
