#pragma once

#include <cstdint>

namespace Vault::MbbPostcodef {

// The id of the operation that wrote a shadow record (0: none), so that a
// later process can tell which writes belong together.
class OpId {
 public:
  constexpr OpId() noexcept = default;
  explicit constexpr OpId(std::uint32_t value) noexcept : value_(value) {}

  constexpr std::uint32_t value() const noexcept { return value_; }
  bool operator==(const OpId&) const = default;

 private:
  std::uint32_t value_ = 0;
};

}  // namespace Vault::MbbPostcodef
