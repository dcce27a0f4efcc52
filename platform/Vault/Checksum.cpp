#include "Vault/Checksum.h"

namespace Vault {

Checksum& Checksum::add(const void* bytes, std::size_t size) noexcept {
  const auto* p = static_cast<const unsigned char*>(bytes);
  for (std::size_t i = 0; i < size; ++i) {
    value_ = (value_ ^ p[i]) * 0x100000001b3ull;
  }
  return *this;
}

}  // namespace Vault
