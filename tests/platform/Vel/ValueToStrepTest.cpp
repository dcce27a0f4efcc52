#include "Vel/ValueToStrep.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <type_traits>

namespace {

using Vel::valueToStrep;

// True when valueToStrep accepts a T: used to check which argument types the
// overload set takes and which it refuses.
template <class T>
concept HasStrep = requires(T value) {
  { Vel::valueToStrep(value) } -> std::same_as<Vel::String>;
};

TEST(ValueToStrepTest, UnsignedIntegersAreDecimal) {
  EXPECT_EQ(valueToStrep(std::uint8_t{0}), "0");
  EXPECT_EQ(valueToStrep(std::numeric_limits<std::uint8_t>::max()), "255");
  EXPECT_EQ(valueToStrep(std::numeric_limits<std::uint16_t>::max()), "65535");
  EXPECT_EQ(valueToStrep(std::uint32_t{5}), "5");
  EXPECT_EQ(valueToStrep(std::numeric_limits<std::uint32_t>::max()), "4294967295");
  EXPECT_EQ(valueToStrep(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
  EXPECT_EQ(valueToStrep(std::numeric_limits<unsigned long long>::max()), "18446744073709551615");
}

TEST(ValueToStrepTest, SignedIntegersAreDecimalWithMinus) {
  EXPECT_EQ(valueToStrep(std::int8_t{0}), "0");
  EXPECT_EQ(valueToStrep(std::numeric_limits<std::int8_t>::min()), "-128");
  EXPECT_EQ(valueToStrep(std::numeric_limits<std::int8_t>::max()), "127");
  EXPECT_EQ(valueToStrep(std::numeric_limits<std::int16_t>::min()), "-32768");
  EXPECT_EQ(valueToStrep(std::numeric_limits<std::int32_t>::min()), "-2147483648");
  EXPECT_EQ(valueToStrep(std::int32_t{-1}), "-1");
  EXPECT_EQ(valueToStrep(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
  EXPECT_EQ(valueToStrep(std::numeric_limits<long long>::max()), "9223372036854775807");
}

TEST(ValueToStrepTest, BoolsAreTrueAndFalse) {
  EXPECT_EQ(valueToStrep(true), "True");
  EXPECT_EQ(valueToStrep(false), "False");
}

TEST(ValueToStrepTest, StringsAreSingleQuoted) {
  EXPECT_EQ(valueToStrep(Vel::String("abc")), "'abc'");
  EXPECT_EQ(valueToStrep(Vel::String()), "''");
  EXPECT_EQ(valueToStrep(Vel::String("say \"hi\"")), "'say \"hi\"'");
}

TEST(ValueToStrepTest, StringsEscapeBackslashQuoteAndControls) {
  EXPECT_EQ(valueToStrep(Vel::String("a\\b'c")), "'a\\\\b\\'c'");
  EXPECT_EQ(valueToStrep(Vel::String("\n\t\r")), "'\\n\\t\\r'");
  EXPECT_EQ(valueToStrep(Vel::String("\x01\x1f\x7f")), "'\\x01\\x1f\\x7f'");
  EXPECT_EQ(valueToStrep(Vel::String(1, '\0')), "'\\x00'");
}

TEST(ValueToStrepTest, BytesFromHexEightyUpAreKept) {
  EXPECT_EQ(valueToStrep(Vel::String("caf\xc3\xa9")), "'caf\xc3\xa9'");
}

TEST(ValueToStrepTest, NamesAndCStringsAreWrittenLikeStrings) {
  EXPECT_EQ(valueToStrep(Vel::Name("group'1")), "'group\\'1'");
  EXPECT_EQ(valueToStrep("plain"), "'plain'");
}

TEST(ValueToStrepTest, QuoteTextUsesTheGivenQuote) {
  EXPECT_EQ(Vel::quoteText("it's \"x\"", '"'), "\"it's \\\"x\\\"\"");
  EXPECT_EQ(Vel::quoteText("it's", '\''), "'it\\'s'");
}

TEST(ValueToStrepTest, CharSizedIntegersAreNumbers) {
  EXPECT_EQ(valueToStrep(static_cast<std::uint8_t>('A')), "65");
  EXPECT_EQ(valueToStrep(static_cast<std::int8_t>(-1)), "-1");
  EXPECT_EQ(valueToStrep(static_cast<signed char>('A')), "65");
}

TEST(ValueToStrepTest, OverloadSetAcceptsNumbersBoolsAndStrings) {
  static_assert(HasStrep<bool>);
  static_assert(HasStrep<signed char>);
  static_assert(HasStrep<unsigned char>);
  static_assert(HasStrep<short>);
  static_assert(HasStrep<unsigned short>);
  static_assert(HasStrep<int>);
  static_assert(HasStrep<unsigned>);
  static_assert(HasStrep<long>);
  static_assert(HasStrep<unsigned long>);
  static_assert(HasStrep<long long>);
  static_assert(HasStrep<unsigned long long>);
  static_assert(HasStrep<Vel::String>);
  static_assert(HasStrep<Vel::Name>);
  static_assert(HasStrep<const char*>);
  static_assert(HasStrep<char*>);
  // A string literal is text, not a pointer turned into a bool.
  EXPECT_EQ(valueToStrep("True"), "'True'");
}

TEST(ValueToStrepTest, OverloadSetRefusesCharactersAndPointers) {
  static_assert(!HasStrep<char>);
  static_assert(!HasStrep<wchar_t>);
  static_assert(!HasStrep<char8_t>);
  static_assert(!HasStrep<char16_t>);
  static_assert(!HasStrep<char32_t>);
  static_assert(!HasStrep<std::nullptr_t>);
  static_assert(!HasStrep<const int*>);
  static_assert(!HasStrep<bool*>);
  static_assert(!HasStrep<const Vel::String*>);
  static_assert(!HasStrep<double>);
  SUCCEED();
}

}  // namespace

namespace {

TEST(ValueToStrepDeathTest, NullCStringStopsTheProcess) {
  const char* missing = nullptr;
  EXPECT_DEATH(Vel::valueToStrep(missing), "Assertion 'value != nullptr' failed\\.\n$");
}

}  // namespace
