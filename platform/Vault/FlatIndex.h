#pragma once

#include <bit>
#include <concepts>
#include <cstdint>
#include <optional>
#include <vector>

namespace Vault {

// A map from unsigned integer keys to small values, kept in one array (open
// addressing, linear probing, a power-of-two size at most half full), for the
// indexes that every shadow record write looks up: a look-up is a multiply, a
// shift and, nearly always, one probe, with no division and no allocation
// except when the array doubles. Erasing moves later entries of the same run
// back, so that no tombstones are left to slow look-ups down.
template <std::unsigned_integral Key, class Value>
class FlatIndex {
 public:
  FlatIndex() { clear(); }

  std::size_t size() const noexcept { return size_; }
  bool empty() const noexcept { return size_ == 0; }

  // The value of `key`, or null; valid until the next change.
  const Value* find(Key key) const noexcept {
    const Entry& entry = entries_[probe(key)];
    return entry.used ? &entry.value : nullptr;
  }
  // Sets the value of `key`, adding the key when it is absent.
  void assign(Key key, const Value& value) {
    std::size_t at = probe(key);
    if (!entries_[at].used) {
      if (2 * (size_ + 1) > entries_.size()) {
        rebuild(2 * entries_.size());
        at = probe(key);
      }
      entries_[at].used = true;
      entries_[at].key = key;
      ++size_;
    }
    entries_[at].value = value;
  }
  // Removes `key`; false when it is absent.
  bool erase(Key key) noexcept { return take(key).has_value(); }
  // Removes `key` and returns its value; nothing when it is absent.
  std::optional<Value> take(Key key) noexcept {
    std::size_t hole = probe(key);
    if (!entries_[hole].used) {
      return std::nullopt;
    }
    const Value taken = entries_[hole].value;
    // Later entries of the run whose home is not between the hole and them
    // move back into the hole, so that every entry stays reachable from home.
    for (std::size_t next = following(hole); entries_[next].used; next = following(next)) {
      const std::size_t home = homeOf(entries_[next].key);
      if (distance(home, next) >= distance(hole, next)) {
        entries_[hole] = entries_[next];
        hole = next;
      }
    }
    entries_[hole].used = false;
    --size_;
    return taken;
  }
  void clear() {
    entries_.assign(kInitialSize, Entry{});
    shift_ = 64 - static_cast<unsigned>(std::countr_zero(kInitialSize));
    size_ = 0;
  }

 private:
  struct Entry {
    Key key{};
    Value value{};
    bool used = false;
  };
  static constexpr std::size_t kInitialSize = 16;
  static constexpr std::uint64_t kGoldenRatio = 0x9e3779b97f4a7c15ull;

  std::size_t homeOf(Key key) const noexcept {
    return static_cast<std::size_t>((static_cast<std::uint64_t>(key) * kGoldenRatio) >> shift_);
  }
  std::size_t following(std::size_t at) const noexcept { return (at + 1) & (entries_.size() - 1); }
  // How many steps forward `to` lies from `from`, round the end of the array.
  std::size_t distance(std::size_t from, std::size_t to) const noexcept {
    return (to - from) & (entries_.size() - 1);
  }
  // The entry that holds `key`, or the unused entry where it would go.
  std::size_t probe(Key key) const noexcept {
    std::size_t at = homeOf(key);
    while (entries_[at].used && entries_[at].key != key) {
      at = following(at);
    }
    return at;
  }
  void rebuild(std::size_t entries) {
    std::vector<Entry> old(entries);
    old.swap(entries_);
    shift_ = 64 - static_cast<unsigned>(std::countr_zero(entries));
    size_ = 0;
    for (const Entry& entry : old) {
      if (entry.used) {
        entries_[probe(entry.key)] = entry;
        ++size_;
      }
    }
  }

  std::vector<Entry> entries_;
  unsigned shift_ = 64;
  std::size_t size_ = 0;
};

}  // namespace Vault
