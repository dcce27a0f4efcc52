#pragma once

#include <cstdint>

namespace MbbVaultKey {

// How many records each shadow table of a key manager holds; fixed when a
// table is made, and a table re-attached must have been made with the same
// number.
struct ShadowCapacity {
  std::uint32_t entries = 65537;  // the chip's 65536 entries and its default entry
  std::uint32_t members = 16384;
  std::uint32_t groups = 4096;
};

}  // namespace MbbVaultKey
