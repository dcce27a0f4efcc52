#pragma once

#include <cstddef>
#include <cstdint>

namespace Vault {

// A 64-bit running checksum of the bytes a table stores, fed in parts, so that
// a slot's index, its copy header and its record bytes are covered by one
// value. Each part is taken 8 bytes at a time: xor the word in, multiply by an
// odd prime, fold the high half down. Every step is one-to-one in the value so
// far and in the word, so a change confined to one word always changes the
// checksum; the fold carries high bits into the next multiply, so that flips
// of high bits in two words do not cancel. A part's
// last 1 to 7 bytes form one more word whose top byte is their count, so that
// trailing zero bytes count.
class Checksum {
 public:
  Checksum& add(const void* bytes, std::size_t size) noexcept;
  Checksum& add(std::uint64_t value) noexcept {
    mix(value);
    return *this;
  }
  std::uint64_t value() const noexcept { return value_; }

 private:
  void mix(std::uint64_t word) noexcept {
    value_ = (value_ ^ word) * 0x100000001b3ull;
    value_ ^= value_ >> 29;
  }

  std::uint64_t value_ = 0xcbf29ce484222325ull;
};

}  // namespace Vault
