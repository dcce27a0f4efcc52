#pragma once

#include <cstdint>

namespace Vel {

// The 32 bits of a word in reverse order: bit 0 becomes bit 31 and so on. Hash
// tables take their bucket from the top bits of the reversed hash, so that the
// low, most varying bits of a key choose the bucket and doubling the table
// splits every bucket into two neighbours.
constexpr std::uint32_t bitReverse(std::uint32_t word) noexcept {
  word = ((word >> 1) & 0x55555555u) | ((word & 0x55555555u) << 1);
  word = ((word >> 2) & 0x33333333u) | ((word & 0x33333333u) << 2);
  word = ((word >> 4) & 0x0f0f0f0fu) | ((word & 0x0f0f0f0fu) << 4);
  word = ((word >> 8) & 0x00ff00ffu) | ((word & 0x00ff00ffu) << 8);
  return (word >> 16) | (word << 16);
}

}  // namespace Vel
