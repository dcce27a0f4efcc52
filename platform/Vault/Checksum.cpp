#include "Vault/Checksum.h"

#include <cstring>

namespace Vault {

Checksum& Checksum::add(const void* bytes, std::size_t size) noexcept {
  const auto* p = static_cast<const unsigned char*>(bytes);
  const std::size_t whole = size / sizeof(std::uint64_t);
  for (std::size_t i = 0; i < whole; ++i, p += sizeof(std::uint64_t)) {
    std::uint64_t word;
    std::memcpy(&word, p, sizeof word);
    mix(word);
  }
  if (const std::size_t rest = size % sizeof(std::uint64_t); rest != 0) {
    std::uint64_t word = static_cast<std::uint64_t>(rest) << 56;
    for (std::size_t i = 0; i < rest; ++i)
      word |= static_cast<std::uint64_t>(p[i]) << (8 * i);
    mix(word);
  }
  return *this;
}

}  // namespace Vault
