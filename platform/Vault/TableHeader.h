#pragma once

#include <cstddef>
#include <cstdint>

#include "Vault/Checksum.h"

namespace Vault {

// The start of a table's segment. The fields up to headerChecksum never change
// once the table is made; the magic is written last, so a segment whose maker
// died before it was finished has no magic and is made again.
struct TableHeader {
  static constexpr std::uint64_t kMagic = 0x3142544c54554156ull;  // "VAULTTB1"
  static constexpr std::uint32_t kVersion = 2;

  std::uint64_t magic;
  std::uint32_t version;
  std::uint32_t headerSize;
  std::uint32_t recordType;
  std::uint32_t recordSize;
  std::uint32_t capacity;
  std::uint32_t slotSize;
  std::uint64_t segmentSize;
  std::uint64_t headerChecksum;  // of the fields above
  // Changes with every write; a reader only trusts it as far as the capacity.
  std::uint32_t recordCount;
  std::uint32_t reserved;
  std::uint64_t writeSequence;

  // The checksum the fixed fields must carry.
  std::uint64_t expectedChecksum() const noexcept {
    return Checksum().add(this, offsetof(TableHeader, headerChecksum)).value();
  }
};

static_assert(sizeof(TableHeader) == 64);

}  // namespace Vault
