#pragma once

#include <cstdint>

namespace BfnMbbShared {

// A range of action-data addresses in the chip: the first address and the
// number of addresses.
struct AdtAddrRange {
  std::uint32_t start = 0;
  std::uint32_t count = 0;

  bool operator==(const AdtAddrRange&) const = default;
};

}  // namespace BfnMbbShared
