#include "Vault/MbbPostcodef/EntryKey.h"

#include <gtest/gtest.h>

namespace Vault::MbbPostcodef {
namespace {

TEST(EntryKeyTest, DefaultKeyIsZero) {
  constexpr EntryKey key;
  EXPECT_EQ(key.high(), 0u);
  EXPECT_EQ(key.low(), 0u);
  EXPECT_TRUE(key.isZero());
}

TEST(EntryKeyTest, KeepsBothWords) {
  const EntryKey key(0x12345678u, 0x9abcdef0u);
  EXPECT_EQ(key.high(), 0x12345678u);
  EXPECT_EQ(key.low(), 0x9abcdef0u);
  EXPECT_EQ(key.value(), 0x123456789abcdef0u);
  EXPECT_FALSE(key.isZero());
  EXPECT_EQ(EntryKey::fromValue(0x123456789abcdef0u), key);
}

TEST(EntryKeyTest, EqualOnlyWhenBothWordsAre) {
  EXPECT_EQ(EntryKey(1, 2), EntryKey(1, 2));
  EXPECT_FALSE(EntryKey(1, 2) == EntryKey(2, 1));
  EXPECT_FALSE(EntryKey(1, 2) == EntryKey(1, 3));
}

TEST(EntryKeyTest, OrderedHighWordFirst) {
  EXPECT_TRUE(EntryKey(0, 9) < EntryKey(1, 0));
  EXPECT_TRUE(EntryKey(1, 5) < EntryKey(1, 9));
  EXPECT_FALSE(EntryKey(2, 0) < EntryKey(1, 0xffffffffu));
  EXPECT_FALSE(EntryKey(1, 5) < EntryKey(1, 5));
  EXPECT_TRUE(EntryKey::fromValue(5) < EntryKey::fromValue(9));
}

}  // namespace
}  // namespace Vault::MbbPostcodef
