// The flat index of the shadow tables: finds what was assigned, forgets what
// was erased, keeps every key reachable when runs of colliding keys are cut by
// erases and when the array doubles, as a standard map would.

#include "Vault/FlatIndex.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <optional>
#include <random>

namespace {

using Index = Vault::FlatIndex<std::uint64_t, std::uint32_t>;

TEST(FlatIndexTest, AnAbsentKeyIsNotFound) {
  Index index;
  EXPECT_TRUE(index.empty());
  EXPECT_EQ(index.find(0), nullptr);
  EXPECT_EQ(index.find(7), nullptr);
  EXPECT_FALSE(index.erase(7));
}

TEST(FlatIndexTest, AssignAddsThenOverwrites) {
  Index index;
  index.assign(7, 70);
  ASSERT_NE(index.find(7), nullptr);
  EXPECT_EQ(*index.find(7), 70u);
  index.assign(7, 71);
  EXPECT_EQ(*index.find(7), 71u);
  EXPECT_EQ(index.size(), 1u);
}

TEST(FlatIndexTest, EraseRemovesOnlyItsKey) {
  Index index;
  index.assign(1, 10);
  index.assign(2, 20);
  EXPECT_TRUE(index.erase(1));
  EXPECT_EQ(index.find(1), nullptr);
  ASSERT_NE(index.find(2), nullptr);
  EXPECT_EQ(*index.find(2), 20u);
  EXPECT_EQ(index.size(), 1u);
  EXPECT_FALSE(index.erase(1));
}

TEST(FlatIndexTest, TakeRemovesItsKeyAndGivesItsValue) {
  Index index;
  index.assign(1, 10);
  index.assign(2, 20);
  EXPECT_EQ(index.take(2), 20u);
  EXPECT_EQ(index.find(2), nullptr);
  EXPECT_EQ(index.size(), 1u);
  EXPECT_EQ(index.take(2), std::nullopt);
  EXPECT_EQ(index.take(1), 10u);
  EXPECT_TRUE(index.empty());
}

TEST(FlatIndexTest, KeysOfEveryWidthAndTheLargestAreKept) {
  Vault::FlatIndex<std::uint32_t, std::uint64_t> index;
  index.assign(0, 1);
  index.assign(0xffffffffu, 2);
  index.assign(0x80000000u, 3);
  EXPECT_EQ(*index.find(0), 1u);
  EXPECT_EQ(*index.find(0xffffffffu), 2u);
  EXPECT_EQ(*index.find(0x80000000u), 3u);
}

TEST(FlatIndexTest, GrowsWithoutLosingAKey) {
  Index index;
  for (std::uint64_t key = 1; key <= 100000; ++key) {
    index.assign(key << 32 | key, static_cast<std::uint32_t>(key));
  }
  EXPECT_EQ(index.size(), 100000u);
  for (std::uint64_t key = 1; key <= 100000; ++key) {
    const std::uint32_t* value = index.find(key << 32 | key);
    ASSERT_NE(value, nullptr) << key;
    ASSERT_EQ(*value, key);
  }
}

TEST(FlatIndexTest, ClearForgetsEverything) {
  Index index;
  for (std::uint64_t key = 0; key < 100; ++key) {
    index.assign(key, 1);
  }
  index.clear();
  EXPECT_TRUE(index.empty());
  EXPECT_EQ(index.find(5), nullptr);
  index.assign(5, 6);
  EXPECT_EQ(*index.find(5), 6u);
}

// Few distinct keys in a small array collide often, so erases cut runs that
// wrap round the end of the array; the index must answer as a std::map does.
TEST(FlatIndexTest, RandomChangesGiveWhatAStandardMapGives) {
  Index index;
  std::map<std::uint64_t, std::uint32_t> expected;
  std::mt19937_64 random(5);
  for (int step = 0; step < 200000; ++step) {
    const std::uint64_t key = random() % 64;
    const std::uint32_t value = static_cast<std::uint32_t>(random());
    if (random() % 2 == 0) {
      index.assign(key, value);
      expected[key] = value;
    } else {
      ASSERT_EQ(index.erase(key), expected.erase(key) == 1);
    }
    ASSERT_EQ(index.size(), expected.size());
  }
  for (std::uint64_t key = 0; key < 64; ++key) {
    const auto found = expected.find(key);
    const std::uint32_t* value = index.find(key);
    ASSERT_EQ(value != nullptr, found != expected.end()) << key;
    if (value != nullptr) {
      EXPECT_EQ(*value, found->second);
    }
  }
}

}  // namespace
