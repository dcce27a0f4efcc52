#pragma once

#include <cstddef>
#include <cstdint>

namespace Vault {

// A 64-bit running checksum (FNV-1a) of the bytes a table stores: fed in parts,
// so that a slot's index, its copy header and its record bytes are covered by
// one value.
class Checksum {
 public:
  Checksum& add(const void* bytes, std::size_t size) noexcept;
  Checksum& add(std::uint64_t value) noexcept { return add(&value, sizeof value); }
  std::uint64_t value() const noexcept { return value_; }

 private:
  std::uint64_t value_ = 0xcbf29ce484222325ull;
};

}  // namespace Vault
