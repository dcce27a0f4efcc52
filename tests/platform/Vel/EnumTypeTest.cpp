#include "Vel/EnumType.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "TextTestSupport.h"
#include "Vel/RangeException.h"
#include "Vel/TextParse.h"

namespace EnumTypeTestTypes {

// An enumeration as a plug-in declares it: its conversions are one-line calls of
// the framework's service on its registration record.
enum class Shade : unsigned int { light = 0, dark = 1, black = 7 };

const Vel::EnumType<unsigned int>& shadeType() {
  static const Vel::EnumType<unsigned int> type(
      "Test::Shade", {{"light", 0}, {"dark", 1}, {"black", 7}, {"noir", 7}});
  return type;
}

void sequenceToValue(Vel::String::IteratorConst& pos, const Vel::String::IteratorConst& end,
                     Shade* out) {
  shadeType().sequenceToValue(pos, end, out);
}

}  // namespace EnumTypeTestTypes

namespace {

using EnumTypeTestTypes::Shade;
using EnumTypeTestTypes::shadeType;
using TextTestSupport::messageOf;

const Vel::EnumType<unsigned int>& actionType() {
  static const Vel::EnumType<unsigned int> type(
      "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileType",
      {{"setLagMemberSelectorActionProfileSpec", 0}});
  return type;
}

// Reads a value of Shade from `text`; *consumed receives how far the reader went.
unsigned int shadeOf(const Vel::String& text, std::size_t* consumed = nullptr) {
  unsigned int value = 99;
  Vel::String::IteratorConst pos = text.begin();
  shadeType().sequenceToValue(pos, text.end(), &value);
  if (consumed != nullptr)
    *consumed = static_cast<std::size_t>(pos - text.begin());
  return value;
}

// Reads a value of Shade from `text`, expecting a RangeException: checks that
// neither the position nor the value was touched and returns the message.
std::string shadeFailure(const Vel::String& text) {
  unsigned int value = 99;
  Vel::String::IteratorConst pos = text.begin();
  const std::string message =
      messageOf<Vel::RangeException>([&] { shadeType().sequenceToValue(pos, text.end(), &value); });
  EXPECT_TRUE(pos == text.begin());
  EXPECT_EQ(value, 99u);
  return message;
}

TEST(EnumTypeTest, IsAnEnumerationTypeRecord) {
  const Vel::TypeRecord& record = shadeType();
  EXPECT_EQ(record.name(), "Test::Shade");
  EXPECT_EQ(record.kind(), Vel::TypeRecord::Kind::enumeration);
  EXPECT_EQ(record.base(), nullptr);
  ASSERT_EQ(shadeType().enumerators().size(), 4u);
  EXPECT_EQ(shadeType().enumerators()[3].name, "noir");
  EXPECT_EQ(shadeType().enumerators()[3].value, 7u);
}

TEST(EnumTypeTest, StringValueIsTheBareName) {
  EXPECT_EQ(actionType().stringValue(0), "setLagMemberSelectorActionProfileSpec");
  EXPECT_EQ(shadeType().stringValue(1), "dark");
  EXPECT_EQ(shadeType().stringValue(7), "black");
  EXPECT_EQ(shadeType().stringValue(4), "4");
}

TEST(EnumTypeTest, ValueToStrepIsTheQuotedName) {
  EXPECT_EQ(actionType().valueToStrep(0), "'setLagMemberSelectorActionProfileSpec'");
  EXPECT_EQ(shadeType().valueToStrep(7), "'black'");
  EXPECT_EQ(shadeType().valueToStrep(4), "4");
  EXPECT_EQ(shadeType().valueToStrep(4294967295u), "4294967295");
}

TEST(EnumTypeTest, PrintWritesTheBareNameOrTheNumber) {
  std::ostringstream out;
  shadeType().print(out, 1) << '|';
  shadeType().print(out, 5);
  EXPECT_EQ(out.str(), "dark|5");
}

TEST(EnumTypeTest, InstanceOfANumberChecksIt) {
  EXPECT_EQ(shadeType().instance(7u), 7u);
  EXPECT_EQ(actionType().instance(0u), 0u);
  EXPECT_EQ(messageOf<Vel::RangeException>([] { shadeType().instance(2u); }),
            "enumeration 'Test::Shade' has no enumerator of value 2");
  EXPECT_EQ(messageOf<Vel::RangeException>([] { actionType().instance(1u); }),
            "enumeration 'BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileType' has no "
            "enumerator of value 1");
}

TEST(EnumTypeTest, InstanceOfANameIsExactAndCaseSensitive) {
  EXPECT_EQ(shadeType().instance(Vel::String("dark")), 1u);
  EXPECT_EQ(shadeType().instance(Vel::String("noir")), 7u);
  EXPECT_EQ(actionType().instance(Vel::String("setLagMemberSelectorActionProfileSpec")), 0u);
  EXPECT_EQ(messageOf<Vel::RangeException>([] { shadeType().instance(Vel::String("Dark")); }),
            "enumeration 'Test::Shade' has no enumerator named 'Dark'");
  EXPECT_EQ(messageOf<Vel::RangeException>([] { shadeType().instance(Vel::String("dark ")); }),
            "enumeration 'Test::Shade' has no enumerator named 'dark '");
  EXPECT_EQ(messageOf<Vel::RangeException>([] { shadeType().instance(Vel::String("")); }),
            "enumeration 'Test::Shade' has no enumerator named ''");
}

TEST(EnumTypeTest, EveryEnumeratorRoundTrips) {
  for (const auto& enumerator : shadeType().enumerators()) {
    const Vel::String text = shadeType().valueToStrep(enumerator.value);
    std::size_t consumed = 0;
    EXPECT_EQ(shadeOf(text, &consumed), enumerator.value) << text;
    EXPECT_EQ(consumed, text.size()) << text;
  }
}

TEST(EnumTypeTest, ReadsQuotedNamesAndEnumeratorNumbers) {
  std::size_t consumed = 0;
  EXPECT_EQ(shadeOf("'noir', x", &consumed), 7u);
  EXPECT_EQ(consumed, 6u);
  EXPECT_EQ(shadeOf("1)", &consumed), 1u);
  EXPECT_EQ(consumed, 1u);
  EXPECT_EQ(shadeOf("0x7"), 7u);
}

TEST(EnumTypeTest, UnknownNamesAndNumbersAreRefused) {
  EXPECT_EQ(shadeFailure("'grey'"), "enumeration 'Test::Shade' has no enumerator named 'grey'");
  EXPECT_EQ(shadeFailure("3"), "enumeration 'Test::Shade' has no enumerator of value 3");
  EXPECT_EQ(shadeFailure("99999999999"), "expected an unsigned 32-bit number, found '99999999999'");
}

TEST(EnumTypeTest, OtherTextsAreRefused) {
  EXPECT_EQ(shadeFailure("dark"),
            "expected an enumerator of enumeration 'Test::Shade', found 'dark'");
  EXPECT_EQ(shadeFailure("-1"), "expected an enumerator of enumeration 'Test::Shade', found '-1'");
  EXPECT_EQ(shadeFailure(""),
            "expected an enumerator of enumeration 'Test::Shade', found end of text");
  EXPECT_EQ(shadeFailure("'dark"), "expected a closing quote, found end of text");
}

TEST(EnumTypeTest, AttributeReaderUsesTheEnumerationsReader) {
  const Vel::String text = "'black'";
  Vel::String::IteratorConst pos = text.begin();
  Shade shade = Shade::light;
  Vel::deserializeAttr(pos, text.end(), "shade", &shade);
  EXPECT_EQ(shade, Shade::black);
  const Vel::String bad = "'white'";
  pos = bad.begin();
  EXPECT_EQ(messageOf<Vel::RangeException>(
                [&] { Vel::deserializeAttr(pos, bad.end(), "shade", &shade); }),
            "attribute 'shade': enumeration 'Test::Shade' has no enumerator named 'white'");
}

TEST(EnumTypeTest, ReaderOfTheEnumerationTypeStoresItsEnumerator) {
  const Vel::String text = "'noir')";
  Vel::String::IteratorConst pos = text.begin();
  Shade shade = Shade::light;
  shadeType().sequenceToValue(pos, text.end(), &shade);
  EXPECT_EQ(shade, Shade::black);
  EXPECT_EQ(pos - text.begin(), 6);
}

TEST(EnumTypeTest, ReaderOfTheEnumerationTypeLeavesItAloneOnFailure) {
  const Vel::String text = "'grey'";
  Vel::String::IteratorConst pos = text.begin();
  Shade shade = Shade::dark;
  EXPECT_EQ(
      messageOf<Vel::RangeException>([&] { shadeType().sequenceToValue(pos, text.end(), &shade); }),
      "enumeration 'Test::Shade' has no enumerator named 'grey'");
  EXPECT_EQ(shade, Shade::dark);
  EXPECT_TRUE(pos == text.begin());
}

TEST(EnumTypeDeathTest, RepeatedNameStopsTheProcess) {
  EXPECT_DEATH(Vel::EnumType<unsigned int>("Test::Twice", {{"a", 0}, {"a", 1}}),
               "Assertion 'enumeratorNameIsNew' failed\\.\n$");
}

}  // namespace
