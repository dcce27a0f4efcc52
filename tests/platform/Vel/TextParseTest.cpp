#include "Vel/TextParse.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "TextTestSupport.h"
#include "Vel/Format.h"
#include "Vel/ParseException.h"
#include "Vel/RangeException.h"
#include "Vel/ValueToStrep.h"

namespace TextParseTestTypes {

// A type with its own reader, found by argument-dependent look-up.
struct Colour {
  int code = 0;
};

// Reads the whole text "blue"; "green" is refused as a parse failure, anything
// else as a value out of range.
void sequenceToValue(Vel::String::IteratorConst& pos, const Vel::String::IteratorConst& end,
                     Colour* out) {
  const Vel::String text(pos, end);
  if (text == "green")
    throw Vel::ParseException("green is not a colour");
  if (text != "blue")
    Vel::throwRangeException("no such colour");
  out->code = 2;
  pos = end;
}

}  // namespace TextParseTestTypes

namespace {

using TextTestSupport::messageOf;

// A value with the composite text form "Value('Test::Pair', ** {'id': 5, 'member': True})".
struct Pair {
  std::uint32_t id = 0;
  bool member = false;

  bool operator==(const Pair&) const = default;

  Vel::String strep() const {
    return Vel::format("Value('Test::Pair', ** {'id': %s, 'member': %s})",
                       Vel::valueToStrep(id).c_str(), Vel::valueToStrep(member).c_str());
  }

  static Pair parse(Vel::String::IteratorConst& pos, const Vel::String::IteratorConst& end) {
    Pair pair;
    Vel::needString(pos, end, "Value('Test::Pair', ** {");
    Vel::needString(pos, end, "'id': ");
    Vel::deserializeAttr(pos, end, "id", &pair.id);
    Vel::needString(pos, end, ", 'member': ");
    Vel::deserializeAttr(pos, end, "member", &pair.member);
    Vel::needString(pos, end, "})");
    return pair;
  }

  static Pair parseWhole(const Vel::String& text) {
    Vel::String::IteratorConst pos = text.begin();
    const Pair pair = parse(pos, text.end());
    Vel::strepToValueEnd(pos, text.end());
    return pair;
  }
};

// Runs needString on `text` and checks that a failure leaves the position alone.
std::string needStringFailure(const Vel::String& text, const char* literal) {
  Vel::String::IteratorConst pos = text.begin();
  const std::string message =
      messageOf<Vel::ParseException>([&] { Vel::needString(pos, text.end(), literal); });
  EXPECT_TRUE(pos == text.begin());
  return message;
}

TEST(NeedStringTest, AdvancesPastTheLiteral) {
  const Vel::String text = "'id': 5";
  Vel::String::IteratorConst pos = text.begin();
  Vel::needString(pos, text.end(), "'id': ");
  EXPECT_EQ(pos - text.begin(), 6);
  Vel::needString(pos, text.end(), "");
  EXPECT_EQ(pos - text.begin(), 6);
}

TEST(NeedStringTest, MismatchNamesTheLiteralAndTheTextFound) {
  EXPECT_EQ(needStringFailure("abc})", "})"), "expected '})', found 'ab'");
  EXPECT_EQ(needStringFailure("'id' 5", "'id': "), "expected \"'id': \", found \"'id' 5\"");
  EXPECT_EQ(needStringFailure("Value('X'", "Value('Y'"),
            "expected \"Value('Y'\", found \"Value('X'\"");
}

TEST(NeedStringTest, TextEndingEarlyIsReported) {
  EXPECT_EQ(needStringFailure("", "})"), "expected '})', found end of text");
  EXPECT_EQ(needStringFailure("}", "})"), "expected '})', found '}' at end of text");
}

TEST(NeedStringTest, ControlCharactersAreEscapedInTheMessage) {
  EXPECT_EQ(needStringFailure("\n\x01", ", "), "expected ', ', found '\\n\\x01'");
}

TEST(NeedStringTest, DoesNotLookPastEnd) {
  const Vel::String text = "})";
  Vel::String::IteratorConst pos = text.begin();
  const std::string message =
      messageOf<Vel::ParseException>([&] { Vel::needString(pos, text.begin() + 1, "})"); });
  EXPECT_EQ(message, "expected '})', found '}' at end of text");
}

TEST(StrepToValueEndTest, AcceptsTheEndOfText) {
  const Vel::String text = "5";
  EXPECT_NO_THROW(Vel::strepToValueEnd(text.end(), text.end()));
}

TEST(StrepToValueEndTest, LeftoverTextIsNamed) {
  const Vel::String text = "5 extra";
  const std::string message =
      messageOf<Vel::ParseException>([&] { Vel::strepToValueEnd(text.begin() + 1, text.end()); });
  EXPECT_EQ(message, "text left over after the value: ' extra'");
}

TEST(StrepToValueEndTest, LongLeftoverIsCut) {
  const Vel::String text = "5" + std::string(100, 'x');
  const std::string message =
      messageOf<Vel::ParseException>([&] { Vel::strepToValueEnd(text.begin() + 1, text.end()); });
  EXPECT_EQ(message, "text left over after the value: '" + std::string(40, 'x') + "'...");
}

TEST(DeserializeAttrTest, ReadsTheValue) {
  const Vel::String text = "70, x";
  Vel::String::IteratorConst pos = text.begin();
  std::uint16_t value = 0;
  Vel::deserializeAttr(pos, text.end(), "id", &value);
  EXPECT_EQ(value, 70u);
  EXPECT_EQ(pos - text.begin(), 2);
}

TEST(DeserializeAttrTest, RangeFailureNamesTheAttribute) {
  const Vel::String text = "x";
  Vel::String::IteratorConst pos = text.begin();
  std::uint32_t value = 9;
  const std::string message =
      messageOf<Vel::RangeException>([&] { Vel::deserializeAttr(pos, text.end(), "id", &value); });
  EXPECT_EQ(message, "attribute 'id': expected an unsigned 32-bit number, found 'x'");
  EXPECT_TRUE(pos == text.begin());
  EXPECT_EQ(value, 9u);
}

TEST(DeserializeAttrTest, UsesTheTypesOwnReader) {
  const Vel::String text = "blue";
  Vel::String::IteratorConst pos = text.begin();
  TextParseTestTypes::Colour colour;
  Vel::deserializeAttr(pos, text.end(), "colour", &colour);
  EXPECT_EQ(colour.code, 2);
  const Vel::String bad = "pink";
  pos = bad.begin();
  EXPECT_EQ(messageOf<Vel::RangeException>(
                [&] { Vel::deserializeAttr(pos, bad.end(), "colour", &colour); }),
            "attribute 'colour': no such colour");
}

TEST(DeserializeAttrTest, OtherExceptionsPassUnchanged) {
  const Vel::String text = "green";
  Vel::String::IteratorConst pos = text.begin();
  TextParseTestTypes::Colour colour;
  EXPECT_EQ(messageOf<Vel::ParseException>(
                [&] { Vel::deserializeAttr(pos, text.end(), "colour", &colour); }),
            "green is not a colour");
}

TEST(RethrowFromDeserializeAttrTest, PrefixesTheAttributeName) {
  const Vel::RangeException original("expected True or False, found 'yes'");
  EXPECT_EQ(
      messageOf<Vel::RangeException>([&] { Vel::rethrowFromDeserializeAttr(original, "member"); }),
      "attribute 'member': expected True or False, found 'yes'");
}

TEST(CompositeTextTest, ValueRoundTrips) {
  for (const Pair& pair : {Pair{}, Pair{5, true}, Pair{4294967295u, false}}) {
    EXPECT_EQ(Pair::parseWhole(pair.strep()), pair) << pair.strep();
  }
  EXPECT_EQ((Pair{5, true}).strep(), "Value('Test::Pair', ** {'id': 5, 'member': True})");
}

TEST(CompositeTextTest, FailuresSayWhereTheTextWentWrong) {
  EXPECT_EQ(messageOf<Vel::ParseException>([] { Pair::parseWhole("Value('Test::Other'"); }),
            "expected \"Value('Test::Pair', ** {\", found \"Value('Test::Other'\" at end of text");
  EXPECT_EQ(messageOf<Vel::RangeException>(
                [] { Pair::parseWhole("Value('Test::Pair', ** {'id': -5, 'member': True})"); }),
            "attribute 'id': expected an unsigned 32-bit number, found '-5'");
  EXPECT_EQ(messageOf<Vel::RangeException>(
                [] { Pair::parseWhole("Value('Test::Pair', ** {'id': 5, 'member': yes})"); }),
            "attribute 'member': expected True or False, found 'yes'");
  EXPECT_EQ(messageOf<Vel::ParseException>(
                [] { Pair::parseWhole("Value('Test::Pair', ** {'id': 5, 'member': True}"); }),
            "expected '})', found '}' at end of text");
  EXPECT_EQ(messageOf<Vel::ParseException>(
                [] { Pair::parseWhole("Value('Test::Pair', ** {'id': 5, 'member': True}) "); }),
            "text left over after the value: ' '");
}

}  // namespace
