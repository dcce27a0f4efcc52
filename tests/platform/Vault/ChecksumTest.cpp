#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <set>
#include <vector>

#include "Vault/Checksum.h"

namespace {

std::uint64_t checksumOf(const std::vector<unsigned char>& bytes) {
  return Vault::Checksum().add(bytes.data(), bytes.size()).value();
}

std::vector<unsigned char> numberedBytes(std::size_t size) {
  std::vector<unsigned char> bytes(size);
  for (std::size_t i = 0; i < size; ++i)
    bytes[i] = static_cast<unsigned char>(i * 37 + 11);
  return bytes;
}

TEST(Checksum, NothingFedKeepsTheStartingValue) {
  EXPECT_EQ(Vault::Checksum().value(), 0xcbf29ce484222325ull);
  EXPECT_EQ(Vault::Checksum().add(nullptr, 0).value(), 0xcbf29ce484222325ull);
}

TEST(Checksum, OneWordIsOneStep) {
  const std::uint64_t word = 0x0123456789abcdefull;
  std::uint64_t step = (0xcbf29ce484222325ull ^ word) * 0x100000001b3ull;
  step ^= step >> 29;
  EXPECT_EQ(Vault::Checksum().add(word).value(), step);
  unsigned char bytes[8];
  std::memcpy(bytes, &word, sizeof bytes);
  EXPECT_EQ(Vault::Checksum().add(bytes, sizeof bytes).value(),
            Vault::Checksum().add(word).value());
}

// Every single-bit flip of a record-sized buffer (a slot index, a copy header
// and a record), whole words and a tail alike, changes the checksum.
TEST(Checksum, EverySingleBitFlipChangesIt) {
  for (std::size_t size : {1u, 7u, 8u, 13u, 56u, 61u}) {
    const std::vector<unsigned char> bytes = numberedBytes(size);
    const std::uint64_t original = checksumOf(bytes);
    std::set<std::uint64_t> seen{original};
    for (std::size_t bit = 0; bit < size * 8; ++bit) {
      std::vector<unsigned char> flipped = bytes;
      flipped[bit / 8] ^= static_cast<unsigned char>(1u << (bit % 8));
      EXPECT_TRUE(seen.insert(checksumOf(flipped)).second) << "size " << size << ", bit " << bit;
    }
  }
}

// Two flipped bits anywhere in a record-sized buffer never cancel out, also
// when both are the top bits of their words.
TEST(Checksum, EveryTwoBitFlipChangesIt) {
  const std::vector<unsigned char> bytes = numberedBytes(56);
  const std::uint64_t original = checksumOf(bytes);
  for (std::size_t first = 0; first < bytes.size() * 8; ++first) {
    for (std::size_t second = first + 1; second < bytes.size() * 8; ++second) {
      std::vector<unsigned char> flipped = bytes;
      flipped[first / 8] ^= static_cast<unsigned char>(1u << (first % 8));
      flipped[second / 8] ^= static_cast<unsigned char>(1u << (second % 8));
      ASSERT_NE(checksumOf(flipped), original) << "bits " << first << " and " << second;
    }
  }
}

TEST(Checksum, TrailingZeroBytesCount) {
  std::set<std::uint64_t> seen;
  for (std::size_t size = 0; size <= 16; ++size)
    EXPECT_TRUE(seen.insert(checksumOf(std::vector<unsigned char>(size, 0))).second) << size;
}

TEST(Checksum, PartsAreTakenInOrder) {
  const std::uint64_t a = 1, b = 2;
  EXPECT_NE(Vault::Checksum().add(a).add(b).value(), Vault::Checksum().add(b).add(a).value());
}

}  // namespace
