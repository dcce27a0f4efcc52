#include "Vel/SequenceToValue.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>

#include "TextTestSupport.h"
#include "Vel/RangeException.h"
#include "Vel/ValueToStrep.h"

namespace {

using TextTestSupport::parsed;
using TextTestSupport::rangeFailure;

// The decimal text one step further from zero than `text` ("255" -> "256",
// "-128" -> "-129"), for texts just outside a type's range.
std::string awayFromZero(std::string text) {
  std::size_t i = text.size();
  while (i > 0 && text[i - 1] == '9')
    text[--i] = '0';
  if (i == 0 || text[i - 1] == '-') {
    text.insert(text.begin() + static_cast<std::ptrdiff_t>(i), '1');
  } else {
    ++text[i - 1];
  }
  return text;
}

TEST(AwayFromZeroTest, CarriesAndKeepsTheSign) {
  EXPECT_EQ(awayFromZero("255"), "256");
  EXPECT_EQ(awayFromZero("999"), "1000");
  EXPECT_EQ(awayFromZero("-128"), "-129");
  EXPECT_EQ(awayFromZero("-99"), "-100");
}

template <class T>
class IntegerTextTest : public ::testing::Test {
 protected:
  static std::string expected() {
    const int bits = std::numeric_limits<T>::digits + (std::is_signed_v<T> ? 1 : 0);
    return std::string(std::is_signed_v<T> ? "expected a signed " : "expected an unsigned ") +
           std::to_string(bits) + "-bit number, found ";
  }
  static void expectRoundTrip(T value) {
    const Vel::String text = Vel::valueToStrep(value);
    std::size_t consumed = 0;
    EXPECT_EQ(parsed<T>(text, &consumed), value) << text;
    EXPECT_EQ(consumed, text.size()) << text;
  }
};

using IntegerTypes = ::testing::Types<signed char, unsigned char, short, unsigned short, int,
                                      unsigned, long, unsigned long, long long, unsigned long long>;
TYPED_TEST_SUITE(IntegerTextTest, IntegerTypes);

TYPED_TEST(IntegerTextTest, BoundaryValuesRoundTrip) {
  using T = TypeParam;
  this->expectRoundTrip(T{0});
  this->expectRoundTrip(T{1});
  this->expectRoundTrip(std::numeric_limits<T>::max());
  this->expectRoundTrip(std::numeric_limits<T>::min());
  this->expectRoundTrip(static_cast<T>(std::numeric_limits<T>::max() - 1));
}

TYPED_TEST(IntegerTextTest, ValuesJustOutsideTheRangeAreRefused) {
  using T = TypeParam;
  const std::string tooBig = awayFromZero(Vel::valueToStrep(std::numeric_limits<T>::max()));
  EXPECT_EQ(rangeFailure<T>(tooBig), this->expected() + "'" + tooBig + "'");
  if constexpr (std::is_signed_v<T>) {
    const std::string tooSmall = awayFromZero(Vel::valueToStrep(std::numeric_limits<T>::min()));
    EXPECT_EQ(rangeFailure<T>(tooSmall), this->expected() + "'" + tooSmall + "'");
  } else {
    EXPECT_EQ(rangeFailure<T>("-1"), this->expected() + "'-1'");
    EXPECT_EQ(rangeFailure<T>("-0"), this->expected() + "'-0'");
  }
}

TYPED_TEST(IntegerTextTest, HexadecimalFormIsRead) {
  using T = TypeParam;
  EXPECT_EQ(parsed<T>("0x7f"), T{127});
  EXPECT_EQ(parsed<T>("0X7F"), T{127});
  EXPECT_EQ(parsed<T>("0x0"), T{0});
}

TYPED_TEST(IntegerTextTest, UnreadableTextsAreRefused) {
  using T = TypeParam;
  EXPECT_EQ(rangeFailure<T>(""), this->expected() + "end of text");
  EXPECT_EQ(rangeFailure<T>("abc"), this->expected() + "'abc'");
  EXPECT_EQ(rangeFailure<T>("12ab, 3"), this->expected() + "'12ab'");
  EXPECT_EQ(rangeFailure<T>("+1"), this->expected() + "'+1'");
  EXPECT_EQ(rangeFailure<T>(" 1"), this->expected() + "' '");
  EXPECT_EQ(rangeFailure<T>("'1'"), this->expected() + "\"'\"");
  EXPECT_EQ(rangeFailure<T>("1.5"), this->expected() + "'1.5'");
  EXPECT_EQ(rangeFailure<T>("0x"), this->expected() + "'0x'");
  EXPECT_EQ(rangeFailure<T>("0xg"), this->expected() + "'0xg'");
  EXPECT_EQ(rangeFailure<T>("-"), this->expected() + "'-'");
  EXPECT_EQ(rangeFailure<T>("--1"), this->expected() + "'-'");
}

TYPED_TEST(IntegerTextTest, ReadingStopsAfterTheNumber) {
  using T = TypeParam;
  std::size_t consumed = 0;
  EXPECT_EQ(parsed<T>("42, 'member': True", &consumed), T{42});
  EXPECT_EQ(consumed, 2u);
  EXPECT_EQ(parsed<T>("7})", &consumed), T{7});
  EXPECT_EQ(consumed, 1u);
}

TEST(IntegerTextTest, MessagesNameTheWidth) {
  EXPECT_EQ(rangeFailure<std::uint16_t>("70000"),
            "expected an unsigned 16-bit number, found '70000'");
  EXPECT_EQ(rangeFailure<std::int8_t>("-129"), "expected a signed 8-bit number, found '-129'");
  EXPECT_EQ(rangeFailure<std::uint32_t>("x"), "expected an unsigned 32-bit number, found 'x'");
  EXPECT_EQ(rangeFailure<std::int64_t>(""), "expected a signed 64-bit number, found end of text");
}

TEST(IntegerTextTest, NegativeHexadecimalAndLeadingZeros) {
  EXPECT_EQ(parsed<std::int8_t>("-0x80"), std::int8_t{-128});
  EXPECT_EQ(rangeFailure<std::int8_t>("-0x81"), "expected a signed 8-bit number, found '-0x81'");
  EXPECT_EQ(parsed<std::uint64_t>("0xffffffffffffffff"), std::numeric_limits<std::uint64_t>::max());
  EXPECT_EQ(rangeFailure<std::uint64_t>("0x10000000000000000"),
            "expected an unsigned 64-bit number, found '0x10000000000000000'");
  EXPECT_EQ(parsed<std::uint16_t>("007"), std::uint16_t{7});
}

TEST(IntegerTextTest, LongWordsAreCutInMessages) {
  const std::string digits(100, '9');
  EXPECT_EQ(rangeFailure<std::uint32_t>(digits),
            "expected an unsigned 32-bit number, found '" + std::string(40, '9') + "'...");
}

TEST(IntegerTextTest, ReadingStopsAtEndEvenInsideALongerString) {
  const Vel::String text = "12345";
  Vel::String::IteratorConst pos = text.begin();
  std::uint32_t value = 0;
  Vel::sequenceToValue(pos, text.begin() + 3, &value);
  EXPECT_EQ(value, 123u);
  EXPECT_TRUE(pos == text.begin() + 3);
}

TEST(BoolTextTest, TrueAndFalseRoundTrip) {
  std::size_t consumed = 0;
  EXPECT_TRUE(parsed<bool>(Vel::valueToStrep(true), &consumed));
  EXPECT_EQ(consumed, 4u);
  EXPECT_FALSE(parsed<bool>(Vel::valueToStrep(false), &consumed));
  EXPECT_EQ(consumed, 5u);
  EXPECT_TRUE(parsed<bool>("True})", &consumed));
  EXPECT_EQ(consumed, 4u);
}

TEST(BoolTextTest, OtherWordsAreRefused) {
  EXPECT_EQ(rangeFailure<bool>("true"), "expected True or False, found 'true'");
  EXPECT_EQ(rangeFailure<bool>("Truex"), "expected True or False, found 'Truex'");
  EXPECT_EQ(rangeFailure<bool>("1"), "expected True or False, found '1'");
  EXPECT_EQ(rangeFailure<bool>("Tru"), "expected True or False, found 'Tru'");
  EXPECT_EQ(rangeFailure<bool>(""), "expected True or False, found end of text");
}

TEST(StringTextTest, EscapesRoundTrip) {
  for (const Vel::String& value : {Vel::String(""), Vel::String("abc"), Vel::String("a\\b'c\"d"),
                                   Vel::String("\n\t\r\x01\x7f"), Vel::String("caf\xc3\xa9")}) {
    const Vel::String text = Vel::valueToStrep(value);
    std::size_t consumed = 0;
    EXPECT_EQ(parsed<Vel::String>(text, &consumed), value) << text;
    EXPECT_EQ(consumed, text.size()) << text;
  }
}

TEST(StringTextTest, EveryByteRoundTrips) {
  Vel::String value;
  for (int byte = 0; byte < 256; ++byte)
    value += static_cast<char>(byte);
  EXPECT_EQ(parsed<Vel::String>(Vel::valueToStrep(value)), value);
}

TEST(StringTextTest, HexEscapesTakeEitherCase) {
  EXPECT_EQ(parsed<Vel::String>("'\\x4A\\x4a'"), "JJ");
}

TEST(StringTextTest, ReadingStopsAfterTheClosingQuote) {
  std::size_t consumed = 0;
  EXPECT_EQ(parsed<Vel::String>("'a', 'b'", &consumed), "a");
  EXPECT_EQ(consumed, 3u);
}

TEST(StringTextTest, UnreadableTextsAreRefused) {
  EXPECT_EQ(rangeFailure<Vel::String>("abc"), "expected a quoted string, found 'abc'");
  EXPECT_EQ(rangeFailure<Vel::String>("\"abc\""), "expected a quoted string, found '\"'");
  EXPECT_EQ(rangeFailure<Vel::String>(""), "expected a quoted string, found end of text");
  EXPECT_EQ(rangeFailure<Vel::String>("'abc"), "expected a closing quote, found end of text");
  EXPECT_EQ(rangeFailure<Vel::String>("'"), "expected a closing quote, found end of text");
  EXPECT_EQ(rangeFailure<Vel::String>("'a\\qb'"), "expected an escape sequence, found '\\\\q'");
  EXPECT_EQ(rangeFailure<Vel::String>("'a\\"), "expected an escape sequence, found '\\\\'");
  EXPECT_EQ(rangeFailure<Vel::String>("'\\xZZ'"), "expected an escape sequence, found '\\\\xZZ'");
  EXPECT_EQ(rangeFailure<Vel::String>("'\\x4"), "expected an escape sequence, found '\\\\x4'");
  EXPECT_EQ(rangeFailure<Vel::String>("'\\x4'"), "expected an escape sequence, found \"\\\\x4'\"");
}

TEST(StringTextTest, NamesRoundTrip) {
  const Vel::Name name("group 'one'");
  EXPECT_EQ(parsed<Vel::Name>(Vel::valueToStrep(name)), name);
  EXPECT_EQ(rangeFailure<Vel::Name>("one"), "expected a quoted string, found 'one'");
}

}  // namespace
