// Text forms of values through their type records, and values built from text:
// builtin values, a user value type, enumerations and references to objects.

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>

#include "ReflectTestFamily.h"
#include "ReflectTestHelpers.h"
#include "Vel/Allocate.h"
#include "Vel/BuiltinType.h"
#include "Vel/Format.h"
#include "Vel/GenericIf.h"
#include "Vel/ObjectReference.h"
#include "Vel/ParseException.h"
#include "Vel/RangeException.h"

namespace {

using Library::Book;
using Library::DeskLamp;
using Library::Finish;
using Library::Lamp;
using Library::messageOf;
using Library::Position;
using Vel::BuiltinType;
using Vel::GenericIf;
using Vel::GenericValue;

template <class Run>
std::string rangeMessage(Run run) {
  return messageOf<Vel::RangeException>(run);
}

template <class Run>
std::string parseMessage(Run run) {
  return messageOf<Vel::ParseException>(run);
}

std::string referenceText(const char* typeName, const Vel::PtrInterface* object) {
  return std::string("Ref('") + typeName + "', " +
         std::to_string(Vel::ObjectReference::idOf(object)) + ")";
}

class GenericTextTest : public ::testing::Test {
 protected:
  Library::LeakCheck leakCheck_;
};

// ---- Builtin values

TEST_F(GenericTextTest, BuiltinValuesPrintInTheFrameworksTextForms) {
  EXPECT_EQ(GenericIf(BuiltinType<std::uint32_t>::value(4000000000u)).text(), "4000000000");
  EXPECT_EQ(GenericIf(BuiltinType<std::int8_t>::value(-7)).text(), "-7");
  EXPECT_EQ(GenericIf(BuiltinType<std::uint8_t>::value(200)).text(), "200");
  EXPECT_EQ(GenericIf(BuiltinType<bool>::value(true)).text(), "True");
  EXPECT_EQ(GenericIf(BuiltinType<Vel::String>::value("it's")).text(), "'it\\'s'");
  EXPECT_EQ(GenericIf(BuiltinType<Vel::Name>::value("shelf1")).text(), "'shelf1'");
}

TEST_F(GenericTextTest, BuiltinValuesAreReadFromTheirWholeText) {
  EXPECT_EQ(GenericIf::valueFromText("uint16_t", "65535").get<std::uint16_t>(), 65535u);
  EXPECT_EQ(GenericIf::valueFromText("int64_t", "-12").get<std::int64_t>(), -12);
  EXPECT_FALSE(GenericIf::valueFromText("bool", "False").get<bool>());
  EXPECT_EQ(GenericIf::valueFromText("Vel::Name", "'a b'").get<Vel::Name>(), "a b");
  const GenericValue value = GenericIf::valueFromText("uint8_t", "0x1f");
  EXPECT_EQ(value.type(), &BuiltinType<std::uint8_t>::instance());
  EXPECT_EQ(value.get<std::uint8_t>(), 31u);
}

TEST_F(GenericTextTest, BuiltinTextFollowedByMoreTextIsRefused) {
  EXPECT_EQ(parseMessage([] { GenericIf::valueFromText("uint32_t", "7, 8"); }),
            "text left over after the value: ', 8'");
}

TEST_F(GenericTextTest, BuiltinTextOutOfRangeIsRefused) {
  EXPECT_EQ(rangeMessage([] { GenericIf::valueFromText("uint16_t", "65536"); }),
            "expected an unsigned 16-bit number, found '65536'");
}

// ---- A value type

TEST_F(GenericTextTest, ValueTypePrintsItsOwnTextForm) {
  EXPECT_EQ(GenericIf(GenericValue(Library::positionType, Position{4, true})).text(),
            "Value('Library::Position', ** {'row': 4, 'front': True})");
}

TEST_F(GenericTextTest, ValueTypeIsReadBackFromItsTextForm) {
  const GenericValue value = GenericIf::valueFromText(
      "Library::Position", "Value('Library::Position', ** {'row': 12, 'front': False})");
  EXPECT_EQ(value.type(), &Library::positionType);
  EXPECT_EQ(value.get<Position>(), (Position{12, false}));
}

TEST_F(GenericTextTest, ValueTypeTextFollowedByMoreTextIsRefused) {
  EXPECT_EQ(parseMessage([] {
              GenericIf::valueFromText(
                  "Library::Position",
                  "Value('Library::Position', ** {'row': 12, 'front': False})x");
            }),
            "text left over after the value: 'x'");
}

TEST_F(GenericTextTest, ValueTypeTextCutShortIsRefused) {
  EXPECT_EQ(parseMessage([] {
              GenericIf::valueFromText("Library::Position",
                                       "Value('Library::Position', ** {'row': 12, 'front': False}");
            }),
            "expected '})', found '}' at end of text");
}

TEST_F(GenericTextTest, ValueTypeTextWithABadFieldNamesTheField) {
  EXPECT_EQ(rangeMessage([] {
              GenericIf::valueFromText(
                  "Library::Position",
                  "Value('Library::Position', ** {'row': -1, 'front': False})");
            }),
            "attribute 'row': expected an unsigned 32-bit number, found '-1'");
}

// ---- Enumerations

TEST_F(GenericTextTest, EnumerationPrintsThroughItsEnumerationService) {
  EXPECT_EQ(GenericIf(GenericValue(Library::finishType, Finish::glossy)).text(), "'glossy'");
}

TEST_F(GenericTextTest, EnumerationIsReadByNameOrNumber) {
  const GenericValue byName = GenericIf::valueFromText("Library::Finish", "'glossy'");
  EXPECT_EQ(byName.type(), &Library::finishType);
  EXPECT_EQ(byName.get<Finish>(), Finish::glossy);
  EXPECT_EQ(GenericIf::valueFromText("Library::Finish", "0").get<Finish>(), Finish::matte);
  EXPECT_EQ(rangeMessage([] { GenericIf::valueFromText("Library::Finish", "'shiny'"); }),
            "enumeration 'Library::Finish' has no enumerator named 'shiny'");
  EXPECT_EQ(parseMessage([] { GenericIf::valueFromText("Library::Finish", "'matte' "); }),
            "text left over after the value: ' '");
}

TEST_F(GenericTextTest, EnumerationIsBuiltFromItsValueOrCopied) {
  const GenericValue built = GenericIf::valueFromArgs(
      "Library::Finish", {GenericValue(Library::finishType, Finish::glossy)});
  EXPECT_EQ(built.get<Finish>(), Finish::glossy);
  EXPECT_EQ(rangeMessage([] { GenericIf::valueFromArgs("Library::Finish", {}); }),
            "Type 'Library::Finish' takes 1 constructor argument, 0 given");
  const unsigned int raw = 1;
  EXPECT_EQ(GenericIf::valueFromRawPtr("Library::Finish", &raw).get<Finish>(), Finish::glossy);
  const unsigned int unknown = 5;
  EXPECT_EQ(rangeMessage([&] { GenericIf::valueFromRawPtr("Library::Finish", &unknown); }),
            "enumeration 'Library::Finish' has no enumerator of value 5");
}

TEST_F(GenericTextTest, EnumerationIsComparedAndHashedByItsNumber) {
  GenericIf glossy(GenericValue(Library::finishType, Finish::glossy));
  EXPECT_FALSE(glossy.valueOperation(GenericIf::opIsDefault).get<bool>());
  EXPECT_TRUE(GenericIf(GenericValue(Library::finishType, Finish::matte))
                  .valueOperation(GenericIf::opIsDefault)
                  .get<bool>());
  EXPECT_TRUE(
      glossy.valueOperation(GenericIf::opEqual, {GenericValue(Library::finishType, Finish::glossy)})
          .get<bool>());
  EXPECT_FALSE(
      glossy.valueOperation(GenericIf::opEqual, {GenericValue(Library::finishType, Finish::matte)})
          .get<bool>());
  EXPECT_EQ(glossy.hash(), std::hash<unsigned int>()(1));
}

// ---- References to objects

TEST_F(GenericTextTest, ReferencePrintsAsAReferenceTextNeverAnAddress) {
  const Vel::Ptr<Lamp> lamp = Vel::allocate<Lamp>();
  EXPECT_EQ(GenericIf(GenericValue(Library::lampType, nullptr)).text(), "None");
  EXPECT_EQ(GenericIf(lamp).text(), referenceText("Library::Lamp", lamp.get()));
}

TEST_F(GenericTextTest, ReferenceIsReadBackAsTheSameLiveObject) {
  const Vel::Ptr<DeskLamp> lamp = Vel::allocate<DeskLamp>();
  const GenericValue read = GenericIf::valueFromText("Library::Lamp", GenericIf(lamp).text());
  EXPECT_EQ(read.type(), &Library::lampType);
  EXPECT_EQ(read.get<Vel::Ptr<DeskLamp>>(), lamp);
  EXPECT_TRUE(GenericIf::valueFromText("Library::Lamp", "None").isNull());
}

TEST_F(GenericTextTest, ReferenceToAnObjectOfAnotherTypeIsRefused) {
  const Vel::Ptr<Book> book = Vel::allocate<Book>(1, "Odes");
  EXPECT_EQ(
      rangeMessage([&] { GenericIf::valueFromText("Library::Lamp", GenericIf(book).text()); }),
      "An object of type 'Library::Book' is not a 'Library::Lamp'");
  EXPECT_EQ(rangeMessage([&] { GenericIf::valueFromRawPtr("Library::Lamp", book.get()); }),
            "An object of type 'Library::Book' is not a 'Library::Lamp'");
}

TEST_F(GenericTextTest, ReferenceTextCarryingTheObjectsAddressIsRefused) {
  const Vel::Ptr<Lamp> lamp = Vel::allocate<Lamp>();
  const std::string printed = GenericIf(lamp).text();
  const std::string decimal = std::to_string(reinterpret_cast<std::uintptr_t>(lamp.get()));
  EXPECT_EQ(rangeMessage([&] {
              GenericIf::valueFromText("Library::Lamp", "Ref('Library::Lamp', " + decimal + ")");
            }),
            "Ref('Library::Lamp', " + decimal + ") names no live object");
  const std::string pointer = Vel::format("%p", static_cast<void*>(lamp.get()));
  EXPECT_EQ(rangeMessage([&] { GenericIf::valueFromText("Library::Lamp", pointer); }),
            "expected a reference, found '" + pointer + "'");
  EXPECT_EQ(GenericIf::valueFromText("Library::Lamp", printed).get<Vel::Ptr<Lamp>>(), lamp);
  EXPECT_EQ(lamp->references(), 1u);
}

TEST_F(GenericTextTest, ReferenceTextFollowedByMoreTextIsRefused) {
  const Vel::Ptr<Lamp> lamp = Vel::allocate<Lamp>();
  EXPECT_EQ(parseMessage(
                [&] { GenericIf::valueFromText("Library::Lamp", GenericIf(lamp).text() + "!"); }),
            "text left over after the value: '!'");
}

TEST_F(GenericTextTest, ReferenceIsCopiedFromTheObjectsAddressAndHashedByIdentity) {
  const Vel::Ptr<Lamp> lamp = Vel::allocate<Lamp>();
  const GenericValue copied = GenericIf::valueFromRawPtr("Library::Lamp", lamp.get());
  EXPECT_EQ(copied.get<Vel::Ptr<Lamp>>(), lamp);
  EXPECT_EQ(GenericIf(copied).hash(), std::hash<const Vel::PtrInterface*>()(lamp.get()));
}

// ---- Attribute answers print through their records

TEST_F(GenericTextTest, AttributeAnswersPrintThroughTheirRecords) {
  const Vel::Ptr<Library::Shelf> shelf = Vel::allocate<Library::Shelf>(3);
  shelf->labelIs("poetry");
  shelf->lampIs(Vel::allocate<Lamp>());
  GenericIf shelfIf(shelf);
  EXPECT_EQ(GenericIf(shelfIf.attribute("label", GenericIf::opRead)).text(), "'poetry'");
  EXPECT_EQ(GenericIf(shelfIf.attribute("serial", GenericIf::opRead)).text(), "3");
  EXPECT_EQ(GenericIf(shelfIf.attribute("lamp", GenericIf::opRead)).text(),
            referenceText("Library::Lamp", shelf->lamp().get()));
  EXPECT_EQ(GenericIf(shelfIf.attribute("position", GenericIf::opRead)).text(),
            "Value('Library::Position', ** {'row': 0, 'front': False})");
}

}  // namespace
