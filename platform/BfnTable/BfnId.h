#pragma once

#include <cstdint>

namespace BfnTable {

// An identifier as the configuration names it: one unsigned 32-bit number,
// compared and hashed by that number; 0 is an ordinary id. `Tag` keeps ids of
// different kinds (members, groups) from being mixed up.
template <class Tag>
class BfnId {
 public:
  constexpr BfnId(std::uint32_t value = 0) noexcept : value_(value) {}

  constexpr std::uint32_t value() const noexcept { return value_; }
  constexpr operator std::uint32_t() const noexcept { return value_; }

  friend constexpr bool operator==(BfnId a, BfnId b) noexcept { return a.value_ == b.value_; }
  friend constexpr bool operator<(BfnId a, BfnId b) noexcept { return a.value_ < b.value_; }
  // The framework's hash maps find an id's bucket from this hash.
  friend constexpr std::uint32_t fwkHash(BfnId id) noexcept { return id.value_; }

 private:
  std::uint32_t value_;
};

}  // namespace BfnTable
