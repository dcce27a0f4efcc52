#include <gtest/gtest.h>

#include <cstdint>

#include "Vel/BitReverse.h"

namespace {

TEST(BitReverseTest, ReversesSingleBits) {
  EXPECT_EQ(Vel::bitReverse(0u), 0u);
  EXPECT_EQ(Vel::bitReverse(1u), 0x80000000u);
  EXPECT_EQ(Vel::bitReverse(2u), 0x40000000u);
  EXPECT_EQ(Vel::bitReverse(0x80000000u), 1u);
  EXPECT_EQ(Vel::bitReverse(0x00010000u), 0x00008000u);
}

TEST(BitReverseTest, ReversesPatterns) {
  EXPECT_EQ(Vel::bitReverse(0xffffffffu), 0xffffffffu);
  EXPECT_EQ(Vel::bitReverse(3u), 0xc0000000u);
  EXPECT_EQ(Vel::bitReverse(6u), 0x60000000u);
  EXPECT_EQ(Vel::bitReverse(0x0000000fu), 0xf0000000u);
  EXPECT_EQ(Vel::bitReverse(0x12345678u), 0x1e6a2c48u);
  EXPECT_EQ(Vel::bitReverse(0xdeadbeefu), 0xf77db57bu);
  EXPECT_EQ(Vel::bitReverse(0xaaaaaaaau), 0x55555555u);
}

TEST(BitReverseTest, ReversingTwiceGivesTheWordBack) {
  for (std::uint32_t word = 1; word < 0xf0000000u; word = word * 7 + 13) {
    EXPECT_EQ(Vel::bitReverse(Vel::bitReverse(word)), word);
  }
}

TEST(BitReverseTest, IsAConstantExpression) {
  static_assert(Vel::bitReverse(5u) == 0xa0000000u);
  SUCCEED();
}

}  // namespace
