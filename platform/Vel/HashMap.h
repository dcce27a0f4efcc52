#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>
#include <vector>

#include "Quill/Assert.h"
#include "Vel/FwkHash.h"
#include "Vel/HashMapLink.h"
#include "Vel/Ptr.h"

namespace Vel {

// Intrusive chained hash map of counted references. The key lives in the
// element (`Key T::fwkKey() const`) and the bucket chains run through a link
// in the element (`fwkHmNext()` / `fwkHmNextIs(next)`, e.g. from
// Vel::HashMapLink<T>), so an element is in at most one such map at a time.
// The map holds one reference to each of its elements.
//
// The bucket of a key is given by the top bits of bitReverse(fwkHash(key)), as
// many as the bucket count needs. Every chain is kept in ascending order of
// (reversed hash, key); together the buckets therefore hold all elements in
// one order that growth never changes: doubling the table only cuts each
// chain in two. Iterators walk that order and, holding a reference to their
// current element, find "the next element after it" on each step, which lets
// the map change under them: an element present for the whole iteration is
// visited once, one removed before it is reached is not visited, and one
// inserted meanwhile may or may not be.
//
// `Source` names the configuration type that an element stands for; it is
// only carried, for the owners that need it.
template <class T, FwkKey KeyT, class SourceT = T>
class HashMap {
 public:
  using Element = T;
  using Key = KeyT;
  using Source = SourceT;

  // Walks the map in bucket order; E is T, or T const for IteratorConst.
  template <class E>
  class BasicIterator {
   public:
    BasicIterator() = default;
    // An iterator over elements may be used where one over const elements is asked.
    template <class F,
              class = std::enable_if_t<!std::is_same_v<E, F> && std::is_convertible_v<F*, E*>>>
    BasicIterator(const BasicIterator<F>& other) : map_(other.map_), current_(other.current_) {}

    const Ptr<E>& ptr() const noexcept { return current_; }
    decltype(auto) key() const { return current_->fwkKey(); }
    // The value of the current element, for elements that carry one (the
    // slots of Vel::HashMap2018).
    decltype(auto) value() const { return current_->value(); }
    bool valid() const noexcept { return current_ != nullptr; }
    explicit operator bool() const noexcept { return valid(); }

    // Moves to the element that follows the current one in the map's order,
    // whether or not the current one is still in the map.
    BasicIterator& operator++() {
      current_ = map_->after(*current_);
      return *this;
    }
    const Ptr<E>& operator*() const noexcept { return current_; }
    const Ptr<E>& operator->() const noexcept { return current_; }
    bool operator==(const BasicIterator& other) const noexcept {
      return current_ == other.current_;
    }

   private:
    friend class HashMap;
    template <class F>
    friend class BasicIterator;

    BasicIterator(const HashMap* map, Ptr<E> current) : map_(map), current_(std::move(current)) {}

    const HashMap* map_ = nullptr;
    Ptr<E> current_;
  };
  using Iterator = BasicIterator<T>;
  using IteratorConst = BasicIterator<const T>;

  // Starts with `initialSize` buckets, rounded up to a power of two.
  explicit HashMap(std::uint32_t initialSize = 4)
      : bits_(initialSize > 1 ? static_cast<unsigned>(std::bit_width(initialSize - 1)) : 0u),
        buckets_(std::size_t{1} << bits_) {}
  ~HashMap() { deleteAll(); }
  HashMap(const HashMap&) = delete;
  HashMap& operator=(const HashMap&) = delete;

  // The element with this key, or null.
  Ptr<T> find(const Key& key) { return Ptr<T>(findRaw(key)); }
  Ptr<const T> find(const Key& key) const { return Ptr<const T>(findRaw(key)); }
  // The element with this key, or null, without taking a reference: valid
  // while the map holds it. For look-ups that only read the element.
  const T* findUncounted(const Key& key) const { return findRaw(key); }

  // Adds an element under its own key. Returns false, changing nothing, when
  // an element with that key is present already.
  bool insert(const Ptr<T>& element) {
    QUILL_ASSERT(element != nullptr);
    const Key& key = element->fwkKey();
    const std::uint32_t reversed = reversedHashOf(key);
    const Position position = locate(reversed, key);
    if (holds(position, key))
      return false;
    if constexpr (keepsHash)
      element->fwkHmReversedHashIs(reversed);
    element->fwkHmNextIs(Ptr<T>(position.current));
    linkAfter(position.previous, reversed, element);
    if (++count_ > buckets_.size())
      expandBy(1);
    return true;
  }

  // Takes the element with this key out of the map and returns it, with its
  // link cleared; null when the key is absent.
  Ptr<T> remove(const Key& key) {
    const std::uint32_t reversed = reversedHashOf(key);
    const Position position = locate(reversed, key);
    if (!holds(position, key))
      return nullptr;
    Ptr<T> removed(position.current);
    linkAfter(position.previous, reversed, removed->fwkHmNext());
    removed->fwkHmNextIs(nullptr);
    --count_;
    return removed;
  }

  // Removes one element after another until the map is empty. Each element is
  // released once it is out of the map, so that an element whose destruction
  // acts on the map finds it consistent.
  void deleteAll() {
    while (count_ != 0) {
      for (std::size_t bucket = 0; bucket < buckets_.size(); ++bucket) {
        while (buckets_[bucket])
          removeHead(bucket);
      }
    }
  }

  std::size_t size() const noexcept { return count_; }
  std::size_t buckets() const noexcept { return buckets_.size(); }
  bool empty() const noexcept { return count_ == 0; }
  // The bucket that holds, or would hold, this key.
  std::size_t bucketOf(const Key& key) const { return bucketOfReversed(reversedHashOf(key)); }

  // Grows the table by doubling the bucket count (the only growth there is):
  // every chain is cut into the two buckets that take its place.
  void expandBy(unsigned slotsToShift) {
    QUILL_ASSERT_AT(slotsToShift == 1, "slotsToShift == 1", __FILE__, __LINE__);
    std::vector<Ptr<T>> grown(buckets_.size() * 2);
    ++bits_;
    for (std::size_t bucket = 0; bucket < buckets_.size(); ++bucket) {
      split(std::move(buckets_[bucket]), grown[2 * bucket], grown[2 * bucket + 1]);
    }
    buckets_.swap(grown);
  }

  Iterator begin() { return Iterator(this, firstFrom(0)); }
  Iterator end() { return Iterator(this, nullptr); }
  IteratorConst begin() const { return IteratorConst(this, firstFrom(0)); }
  IteratorConst end() const { return IteratorConst(this, nullptr); }
  Iterator iterator() { return begin(); }
  IteratorConst iteratorConst() const { return begin(); }

 private:
  // Where a key stands in its chain: after `previous` (null at the head of the
  // chain), at or before `current` (null at the end of the chain).
  struct Position {
    T* previous;
    T* current;
  };

  // Whether elements keep their reversed hash in their link (HashMapLink).
  static constexpr bool keepsHash = requires(T & element, const T& constElement) {
    element.fwkHmReversedHashIs(std::uint32_t{});
    { constElement.fwkHmReversedHash() } -> std::convertible_to<std::uint32_t>;
  };

  static std::uint32_t reversedHashOf(const Key& key) { return fwkReversedHashOfKey(key); }

  // The reversed hash of an element in the map.
  static std::uint32_t reversedHashOfElement(const T& element) {
    if constexpr (keepsHash)
      return element.fwkHmReversedHash();
    else
      return reversedHashOf(element.fwkKey());
  }

  std::size_t bucketOfReversed(std::uint32_t reversed) const noexcept {
    return bits_ == 0 ? 0 : reversed >> (32 - bits_);
  }

  // Whether an element comes before (reversed, key) in the map's order.
  static bool precedes(const T& element, std::uint32_t reversed, const Key& key) {
    const std::uint32_t elementReversed = reversedHashOfElement(element);
    return elementReversed < reversed || (elementReversed == reversed && element.fwkKey() < key);
  }

  Position locate(std::uint32_t reversed, const Key& key) const {
    Position position{nullptr, buckets_[bucketOfReversed(reversed)].get()};
    while (position.current != nullptr && precedes(*position.current, reversed, key)) {
      position.previous = position.current;
      position.current = position.current->fwkHmNext().get();
    }
    return position;
  }

  // Whether the element at a located position is the one with that key.
  static bool holds(const Position& position, const Key& key) {
    return position.current != nullptr && position.current->fwkKey() == key;
  }

  T* findRaw(const Key& key) const {
    const Position position = locate(reversedHashOf(key), key);
    return holds(position, key) ? position.current : nullptr;
  }

  // Makes `next` follow `previous`, or head the bucket of `reversed` when
  // there is no previous element.
  void linkAfter(T* previous, std::uint32_t reversed, const Ptr<T>& next) {
    if (previous != nullptr) {
      previous->fwkHmNextIs(next);
    } else {
      buckets_[bucketOfReversed(reversed)] = next;
    }
  }

  void removeHead(std::size_t bucket) {
    Ptr<T> removed = std::move(buckets_[bucket]);
    buckets_[bucket] = removed->fwkHmNext();
    removed->fwkHmNextIs(nullptr);
    --count_;
  }

  // The first element at or after the head of `bucket`, in the map's order.
  Ptr<T> firstFrom(std::size_t bucket) const {
    for (; bucket < buckets_.size(); ++bucket) {
      if (buckets_[bucket])
        return buckets_[bucket];
    }
    return nullptr;
  }

  // The first element that comes after `element` in the map's order; the
  // element itself need not be in the map any more.
  Ptr<T> after(const T& element) const {
    const Key& key = element.fwkKey();
    const std::uint32_t reversed = reversedHashOfElement(element);
    const Position position = locate(reversed, key);
    T* next = holds(position, key) ? position.current->fwkHmNext().get() : position.current;
    if (next != nullptr)
      return Ptr<T>(next);
    return firstFrom(bucketOfReversed(reversed) + 1);
  }

  // Cuts an ordered chain of the table before growth into the two buckets of
  // the grown table: the elements whose next reversed-hash bit is 0 come
  // first in the chain and stay low, the rest move high.
  void split(Ptr<T> chain, Ptr<T>& low, Ptr<T>& high) const {
    T* lastLow = nullptr;
    for (T* element = chain.get(); element != nullptr && !goesHigh(*element);
         element = element->fwkHmNext().get()) {
      lastLow = element;
    }
    if (lastLow == nullptr) {
      high = std::move(chain);
      return;
    }
    high = lastLow->fwkHmNext();
    lastLow->fwkHmNextIs(nullptr);
    low = std::move(chain);
  }

  // Whether an element belongs to the upper of the two buckets that its
  // bucket splits into, once bits_ counts the grown table.
  bool goesHigh(const T& element) const {
    return ((reversedHashOfElement(element) >> (32 - bits_)) & 1u) != 0;
  }

  unsigned bits_;
  std::vector<Ptr<T>> buckets_;
  std::size_t count_ = 0;
};

}  // namespace Vel
