#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "Vel/Format.h"

namespace {

TEST(FormatTest, FillsSeveralArguments) {
  EXPECT_EQ(
      Vel::format("%s() failed: %s", "p4_pd_kestro_switch_mirror_lag_add", "Object not found"),
      "p4_pd_kestro_switch_mirror_lag_add() failed: Object not found");
  EXPECT_EQ(Vel::format("%d %u %x %s %c %.2f %%", -5, 7u, 255u, "abc", 'z', 1.5),
            "-5 7 ff abc z 1.50 %");
  EXPECT_EQ(Vel::format("%llu/%lld", 18446744073709551615ull, -9223372036854775807ll),
            "18446744073709551615/-9223372036854775807");
}

TEST(FormatTest, ReturnsAFrameworkString) {
  static_assert(std::is_same_v<decltype(Vel::format("%d", 1)), Vel::String>);
  const Vel::String text = Vel::format("%d", 1);
  EXPECT_EQ(text, "1");
}

TEST(FormatTest, EmptyOutputIsAnEmptyString) {
  EXPECT_EQ(Vel::format("%s", ""), "");
  EXPECT_TRUE(Vel::format("%s", "").empty());
}

TEST(FormatTest, LongOutputIsKeptWhole) {
  const std::string piece(100000, 'a');
  const Vel::String text = Vel::format("<%s|%s>", piece.c_str(), piece.c_str());
  EXPECT_EQ(text, "<" + piece + "|" + piece + ">");
  EXPECT_EQ(text.size(), 200003u);

  EXPECT_EQ(Vel::format("%*d", 5000, 7), std::string(4999, ' ') + "7");
}

TEST(FormatTest, NulCharactersInTheOutputAreKept) {
  const Vel::String text = Vel::format("a%cb", 0);
  EXPECT_EQ(text.size(), 3u);
  EXPECT_EQ(text, std::string("a\0b", 3));
}

}  // namespace
