#pragma once

#include <compare>
#include <cstdint>

namespace Vault::MbbPostcodef {

// The key of one record of a make-before-break shadow table: 64 bits kept as
// two unsigned 32-bit words and ordered high word first. Key 0 stands for "no
// key"; allocated keys are never 0.
class EntryKey {
 public:
  constexpr EntryKey() noexcept = default;
  constexpr EntryKey(std::uint32_t high, std::uint32_t low) noexcept : high_(high), low_(low) {}

  // The key whose two words are the upper and lower halves of `value`.
  static constexpr EntryKey fromValue(std::uint64_t value) noexcept {
    return EntryKey(static_cast<std::uint32_t>(value >> 32), static_cast<std::uint32_t>(value));
  }

  constexpr std::uint32_t high() const noexcept { return high_; }
  constexpr std::uint32_t low() const noexcept { return low_; }
  // The two words as one number, high word first.
  constexpr std::uint64_t value() const noexcept {
    return (static_cast<std::uint64_t>(high_) << 32) | low_;
  }
  constexpr bool isZero() const noexcept { return high_ == 0 && low_ == 0; }

  friend constexpr bool operator==(const EntryKey&, const EntryKey&) noexcept = default;
  // High words decide; low words break a tie.
  friend constexpr std::strong_ordering operator<=>(const EntryKey&,
                                                    const EntryKey&) noexcept = default;

 private:
  std::uint32_t high_ = 0;
  std::uint32_t low_ = 0;
};

}  // namespace Vault::MbbPostcodef
