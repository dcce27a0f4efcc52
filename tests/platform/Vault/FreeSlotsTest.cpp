// The free slots of a table: handed out lowest first, across word and group
// boundaries, as a plain ordered set of slot numbers would hand them out.

#include "Vault/FreeSlots.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <set>

namespace {

TEST(FreeSlotsTest, ANewSetHasNoFreeSlot) {
  Vault::FreeSlots slots(100);
  EXPECT_TRUE(slots.empty());
  EXPECT_EQ(slots.size(), 0u);
  EXPECT_EQ(slots.capacity(), 100u);
  EXPECT_FALSE(slots.contains(0));
  EXPECT_FALSE(slots.contains(99));
}

TEST(FreeSlotsTest, TheLowestFreeSlotComesFirst) {
  Vault::FreeSlots slots(10);
  slots.add(7);
  slots.add(3);
  slots.add(9);
  EXPECT_EQ(slots.size(), 3u);
  EXPECT_EQ(slots.takeLowest(), 3u);
  EXPECT_EQ(slots.takeLowest(), 7u);
  slots.add(0);
  EXPECT_EQ(slots.takeLowest(), 0u);
  EXPECT_EQ(slots.takeLowest(), 9u);
  EXPECT_TRUE(slots.empty());
}

TEST(FreeSlotsTest, FreeingAFreeSlotAgainChangesNothing) {
  Vault::FreeSlots slots(10);
  slots.add(4);
  slots.add(4);
  EXPECT_EQ(slots.size(), 1u);
  EXPECT_EQ(slots.takeLowest(), 4u);
  EXPECT_TRUE(slots.empty());
  EXPECT_FALSE(slots.contains(4));
}

TEST(FreeSlotsTest, SlotsAcrossWordsAndGroupsOfWordsComeInOrder) {
  // 64 slots a word, 64 words a group: these fall in different words and groups.
  const std::uint32_t capacity = 65536;
  Vault::FreeSlots slots(capacity);
  for (std::uint32_t slot : {65535u, 4096u, 4095u, 64u, 63u, 0u}) {
    slots.add(slot);
  }
  for (std::uint32_t slot : {0u, 63u, 64u, 4095u, 4096u, 65535u}) {
    EXPECT_EQ(slots.takeLowest(), slot);
  }
  EXPECT_TRUE(slots.empty());
}

TEST(FreeSlotsTest, ClearLeavesNoFreeSlotOfTheSameCapacity) {
  Vault::FreeSlots slots(300);
  slots.add(1);
  slots.add(299);
  slots.clear();
  EXPECT_TRUE(slots.empty());
  EXPECT_FALSE(slots.contains(299));
  EXPECT_EQ(slots.capacity(), 300u);
  slots.add(299);
  EXPECT_EQ(slots.takeLowest(), 299u);
}

TEST(FreeSlotsTest, RandomChangesGiveWhatAnOrderedSetGives) {
  const std::uint32_t capacity = 5000;
  Vault::FreeSlots slots(capacity);
  std::set<std::uint32_t> expected;
  std::mt19937 random(11);
  std::uniform_int_distribution<std::uint32_t> slotOf(0, capacity - 1);
  for (int step = 0; step < 100000; ++step) {
    if (expected.empty() || random() % 3 != 0) {
      const std::uint32_t slot = slotOf(random);
      slots.add(slot);
      expected.insert(slot);
    } else {
      ASSERT_EQ(slots.takeLowest(), *expected.begin());
      expected.erase(expected.begin());
    }
    ASSERT_EQ(slots.size(), expected.size());
  }
  for (std::uint32_t slot = 0; slot < capacity; ++slot) {
    ASSERT_EQ(slots.contains(slot), expected.count(slot) == 1) << slot;
  }
}

}  // namespace
