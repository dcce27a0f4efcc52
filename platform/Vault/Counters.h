#pragma once

#include <cstdint>

namespace Vault {

// What one process did to a table through one table object.
struct Counters {
  std::uint64_t writes = 0;
  std::uint64_t removes = 0;
  std::uint64_t reads = 0;  // records returned by first() and next()
};

}  // namespace Vault
