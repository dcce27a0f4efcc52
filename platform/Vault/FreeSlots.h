#pragma once

#include <bit>
#include <cstdint>
#include <vector>

namespace Vault {

// The free slots of a table of `capacity` slots, handed out lowest first.
// One bit per slot tells whether it is free, and one bit per word of those
// tells whether the word has any free slot, so that taking the lowest free
// slot or freeing one costs a few word operations, whatever the table's size
// and without allocating. A new set has no free slot.
class FreeSlots {
 public:
  FreeSlots() = default;
  explicit FreeSlots(std::uint32_t capacity) { reset(capacity); }

  // No slot free, in a table of `capacity` slots.
  void reset(std::uint32_t capacity) {
    capacity_ = capacity;
    count_ = 0;
    slots_.assign(wordsFor(capacity), 0);
    words_.assign(wordsFor(static_cast<std::uint32_t>(slots_.size())), 0);
  }
  // No slot free.
  void clear() { reset(capacity_); }

  std::uint32_t capacity() const noexcept { return capacity_; }
  std::uint32_t size() const noexcept { return count_; }
  bool empty() const noexcept { return count_ == 0; }
  bool contains(std::uint32_t slot) const noexcept {
    return slot < capacity_ && (slots_[slot / kBits] & bitOf(slot)) != 0;
  }

  // Marks `slot` (below the capacity) free; nothing changes when it is free already.
  void add(std::uint32_t slot) noexcept {
    std::uint64_t& word = slots_[slot / kBits];
    if ((word & bitOf(slot)) != 0) {
      return;
    }
    word |= bitOf(slot);
    words_[slot / kBits / kBits] |= bitOf(slot / kBits);
    ++count_;
  }

  // Takes the lowest free slot out of the set; the set must not be empty.
  std::uint32_t takeLowest() noexcept {
    std::uint32_t group = 0;
    while (words_[group] == 0) {
      ++group;
    }
    const std::uint32_t wordIndex =
        group * kBits + static_cast<std::uint32_t>(std::countr_zero(words_[group]));
    std::uint64_t& word = slots_[wordIndex];
    const std::uint32_t slot =
        wordIndex * kBits + static_cast<std::uint32_t>(std::countr_zero(word));
    word &= word - 1;
    if (word == 0) {
      words_[group] &= ~bitOf(wordIndex);
    }
    --count_;
    return slot;
  }

 private:
  static constexpr std::uint32_t kBits = 64;

  static std::uint64_t bitOf(std::uint32_t index) noexcept {
    return std::uint64_t{1} << (index % kBits);
  }
  static std::size_t wordsFor(std::uint32_t bits) noexcept { return (bits + kBits - 1) / kBits; }

  std::uint32_t capacity_ = 0;
  std::uint32_t count_ = 0;
  // Bit s of word w: slot w * 64 + s is free.
  std::vector<std::uint64_t> slots_;
  // Bit b of word g: slots_[g * 64 + b] has a free slot.
  std::vector<std::uint64_t> words_;
};

}  // namespace Vault
