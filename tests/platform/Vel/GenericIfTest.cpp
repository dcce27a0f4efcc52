#include "Vel/GenericIf.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "ReflectTestFamily.h"
#include "ReflectTestHelpers.h"
#include "Vel/Allocate.h"
#include "Vel/BuiltinType.h"
#include "Vel/OperationNotSupportedException.h"
#include "Vel/RangeException.h"
#include "Vel/TypeRecord.h"
#include "Vel/UnhashableTypeException.h"

namespace {

using Library::Book;
using Library::DeskLamp;
using Library::Finish;
using Library::Lamp;
using Library::messageOf;
using Library::Position;
using Library::Shelf;
using Vel::GenericIf;
using Vel::GenericValue;

GenericValue u32(std::uint32_t v) {
  return Vel::BuiltinType<std::uint32_t>::value(v);
}
GenericValue u16(std::uint16_t v) {
  return Vel::BuiltinType<std::uint16_t>::value(v);
}
GenericValue boolean(bool v) {
  return Vel::BuiltinType<bool>::value(v);
}
GenericValue text(const char* v) {
  return Vel::BuiltinType<Vel::String>::value(v);
}
GenericValue position(std::uint32_t row, bool front) {
  return GenericValue(Library::positionType, Position{row, front});
}

template <class Run>
std::string notSupportedMessage(Run run) {
  return messageOf<Vel::OperationNotSupportedException>(run);
}

template <class Run>
std::string rangeMessage(Run run) {
  return messageOf<Vel::RangeException>(run);
}

class GenericIfTest : public ::testing::Test {
 protected:
  Library::LeakCheck leakCheck_;

  Vel::Ptr<Shelf> shelf_ = Vel::allocate<Shelf>(17);
  GenericIf shelfIf_{shelf_};
};

// ---- Plain attributes of an object

TEST_F(GenericIfTest, AccessGoesThroughTheRecordOfTheObjectsType) {
  EXPECT_EQ(&shelfIf_.type(), &Library::shelfType);
  EXPECT_EQ(shelfIf_.self().get<Vel::Ptr<Shelf>>(), shelf_);
}

TEST_F(GenericIfTest, ReadWriteAttributeIsWrittenAndReadByName) {
  EXPECT_TRUE(shelfIf_.attribute("label", GenericIf::opWrite, {text("fiction")}).empty());
  EXPECT_EQ(shelf_->label(), "fiction");
  const GenericValue label = shelfIf_.attribute("label", GenericIf::opRead);
  EXPECT_EQ(label.get<Vel::String>(), "fiction");
  EXPECT_EQ(label.type(), &Vel::BuiltinType<Vel::String>::instance());
}

TEST_F(GenericIfTest, AttributeIsReachedByItsRecordAsByItsName) {
  const Vel::AttributeRecord& label = shelfIf_.attributeRecord("label");
  shelfIf_.attribute(label, GenericIf::opWrite, {text("poetry")});
  EXPECT_EQ(shelfIf_.attribute(label, GenericIf::opRead).get<Vel::String>(), "poetry");
}

TEST_F(GenericIfTest, ReadOnlyConstructorAttributeIsReadButNotWritten) {
  EXPECT_EQ(shelfIf_.attribute("serial", GenericIf::opRead).get<std::uint32_t>(), 17u);
  EXPECT_EQ(notSupportedMessage([&] { shelfIf_.attribute("serial", 1, {u32(3)}); }),
            "Operation 1 is not supported on attribute 'serial' of type 'Library::Shelf'");
  EXPECT_EQ(shelf_->serial(), 17u);
}

TEST_F(GenericIfTest, PlainAttributeAnswersNoCollectionOrValueOperation) {
  for (unsigned op : {2u, 3u, 4u, 5u, 6u, 9u, 10u, 99u}) {
    EXPECT_EQ(notSupportedMessage([&] { shelfIf_.attribute("label", op, {text("x")}); }),
              "Operation " + std::to_string(op) +
                  " is not supported on attribute 'label' of type 'Library::Shelf'");
  }
}

TEST_F(GenericIfTest, ValueOfTheWrongTypeIsRefusedByTheWrite) {
  EXPECT_EQ(rangeMessage([&] { shelfIf_.attribute("label", GenericIf::opWrite, {u32(1)}); }),
            "A value of type 'uint32_t' cannot be read as 'Vel::String'");
}

TEST_F(GenericIfTest, MissingArgumentIsARangeException) {
  EXPECT_EQ(rangeMessage([&] { shelfIf_.attribute("label", GenericIf::opWrite); }),
            "Argument 0 is missing: the call has 0 arguments");
}

TEST_F(GenericIfTest, UnknownAttributeNameIsARangeException) {
  EXPECT_EQ(rangeMessage([&] { shelfIf_.attribute("colour", GenericIf::opRead); }),
            "Type 'Library::Shelf' has no attribute 'colour'");
}

TEST_F(GenericIfTest, AttributeOfAnotherTypeIsRefused) {
  const Vel::AttributeRecord& title = *Library::bookType.attribute("title");
  EXPECT_EQ(rangeMessage([&] { shelfIf_.attribute(title, GenericIf::opRead); }),
            "Attribute 'Library::Book::title' is not an attribute of type 'Library::Shelf'");
}

// ---- Object and value attributes

TEST_F(GenericIfTest, ObjectAttributeIsWrittenAndReadAsACountedReference) {
  Vel::Ptr<Lamp> lamp = Vel::allocate<Lamp>();
  shelfIf_.attribute("lamp", GenericIf::opWrite, {GenericValue(Library::lampType, lamp)});
  EXPECT_EQ(shelf_->lamp(), lamp);
  const GenericValue read = shelfIf_.attribute("lamp", GenericIf::opRead);
  EXPECT_EQ(read.type(), &Library::lampType);
  EXPECT_EQ(read.get<Vel::Ptr<Lamp>>(), lamp);
  EXPECT_EQ(lamp->references(), 3u);  // here, in the shelf, in the answer

  shelfIf_.attribute("lamp", GenericIf::opWrite, {GenericValue(Library::lampType, nullptr)});
  EXPECT_TRUE(shelfIf_.attribute("lamp", GenericIf::opRead).isNull());
}

TEST_F(GenericIfTest, ObjectOfTheWrongTypeIsRefusedByTheWrite) {
  Vel::Ptr<Book> book = Vel::allocate<Book>(1, "Odes");
  EXPECT_EQ(rangeMessage([&] {
              shelfIf_.attribute("lamp", GenericIf::opWrite,
                                 {GenericValue(Library::bookType, book)});
            }),
            "A value of type 'Library::Book' cannot be read as 'Vel::Ptr<Library::Lamp>'");
  EXPECT_EQ(shelf_->lamp(), nullptr);
}

TEST_F(GenericIfTest, AccessToAnObjectAnswerUsesTheObjectsRunTimeType) {
  shelf_->lampIs(Vel::allocate<DeskLamp>());
  GenericIf lampIf(shelfIf_.attribute("lamp", GenericIf::opRead));
  EXPECT_EQ(&lampIf.type(), &Library::deskLampType);
}

TEST_F(GenericIfTest, ValueAttributeOfAnObjectIsWrittenAndRead) {
  shelfIf_.attribute("position", GenericIf::opWrite, {position(4, true)});
  EXPECT_EQ(shelf_->position(), (Position{4, true}));
  const GenericValue read = shelfIf_.attribute("position", GenericIf::opRead);
  EXPECT_EQ(read.type(), &Library::positionType);
  EXPECT_EQ(read.get<Position>(), (Position{4, true}));
}

TEST_F(GenericIfTest, EnumerationAttributeIsWrittenAndReadAsTheEnumeration) {
  Vel::Ptr<Lamp> lamp = Vel::allocate<Lamp>();
  GenericIf lampIf(lamp);
  lampIf.attribute("finish", GenericIf::opWrite,
                   {GenericValue(Library::finishType, Finish::glossy)});
  EXPECT_EQ(lamp->finish(), Finish::glossy);
  const GenericValue read = lampIf.attribute("finish", GenericIf::opRead);
  EXPECT_EQ(read.type(), &Library::finishType);
  EXPECT_EQ(read.get<Finish>(), Finish::glossy);
}

// ---- Passing on to the base type

TEST_F(GenericIfTest, DerivedTypeAnsweringNothingIsServedByItsBase) {
  Vel::Ptr<DeskLamp> lamp = Vel::allocate<DeskLamp>();
  GenericIf lampIf(lamp);
  EXPECT_EQ(&lampIf.type(), &Library::deskLampType);
  EXPECT_EQ(&lampIf.attributeRecord("watts").owner(), &Library::deskLampType);
  lampIf.attribute("watts", GenericIf::opWrite, {u16(60)});
  EXPECT_EQ(lamp->watts(), 60u);
  EXPECT_EQ(lampIf.attribute("watts", GenericIf::opRead).get<std::uint16_t>(), 60u);
  EXPECT_EQ(lampIf.attribute("finish", GenericIf::opRead).get<Finish>(), Finish::matte);
}

TEST_F(GenericIfTest, BaseTypesAttributeRecordServesADerivedObject) {
  Vel::Ptr<DeskLamp> lamp = Vel::allocate<DeskLamp>();
  GenericIf lampIf(lamp);
  const Vel::AttributeRecord& watts = *Library::lampType.attribute("watts");
  lampIf.attribute(watts, GenericIf::opWrite, {u16(25)});
  EXPECT_EQ(lamp->watts(), 25u);
}

TEST_F(GenericIfTest, BaseTypesRefusalNamesTheAttributeAsAsked) {
  Vel::Ptr<DeskLamp> lamp = Vel::allocate<DeskLamp>();
  GenericIf lampIf(lamp);
  EXPECT_EQ(notSupportedMessage([&] { lampIf.attribute("watts", GenericIf::opDelete, {u16(1)}); }),
            "Operation 2 is not supported on attribute 'watts' of type 'Library::DeskLamp'");
}

TEST_F(GenericIfTest, AttributeThatNoTypeServesIsNotSupported) {
  const Vel::TypeRecord unserved("Library::Unserved", Vel::TypeRecord::Kind::value, nullptr,
                                 {{"size", Vel::BuiltinType<std::uint32_t>::instance(), 2}}, {});
  GenericIf valueIf(GenericValue(unserved, 5u));
  EXPECT_EQ(notSupportedMessage([&] { valueIf.attribute("size", GenericIf::opRead); }),
            "Operation 0 is not supported on attribute 'size' of type 'Library::Unserved'");
}

// ---- Collection attribute

TEST_F(GenericIfTest, InsertCreatesTheElementThroughTheMutatorWithItsArguments) {
  const GenericValue book = shelfIf_.attribute("book", GenericIf::opWrite, {u32(7), text("Odes")});
  EXPECT_EQ(book.type(), &Library::bookType);
  EXPECT_EQ(book.get<Vel::Ptr<Book>>(), shelf_->book(7));
  EXPECT_EQ(shelf_->book(7)->title(), "Odes");
  const GenericValue again =
      shelfIf_.attribute("book", GenericIf::opWrite, {u32(7), text("Other")});
  EXPECT_EQ(again.get<Vel::Ptr<Book>>(), shelf_->book(7));
  EXPECT_EQ(shelf_->book(7)->title(), "Odes");
}

TEST_F(GenericIfTest, LookUpAnswersTheElementOrNull) {
  shelf_->bookIs(7, "Odes");
  EXPECT_EQ(shelfIf_.attribute("book", GenericIf::opRead, {u32(7)}).get<Vel::Ptr<Book>>(),
            shelf_->book(7));
  const GenericValue absent = shelfIf_.attribute("book", GenericIf::opRead, {u32(8)});
  EXPECT_TRUE(absent.isNull());
  EXPECT_EQ(absent.type(), &Library::bookType);
}

TEST_F(GenericIfTest, DeleteRemovesThroughTheDeleteMutatorAndAnswersTheRemovedElement) {
  const Vel::Ptr<Book> book = shelf_->bookIs(7, "Odes");
  const GenericValue removed = shelfIf_.attribute("book", GenericIf::opDelete, {u32(7)});
  EXPECT_EQ(removed.get<Vel::Ptr<Book>>(), book);
  EXPECT_EQ(shelf_->book(7), nullptr);
  EXPECT_TRUE(shelfIf_.attribute("book", GenericIf::opDelete, {u32(7)}).isNull());
}

TEST_F(GenericIfTest, ContainsTellsWhetherTheKeyIsPresent) {
  shelf_->bookIs(7, "Odes");
  const GenericValue present = shelfIf_.attribute("book", GenericIf::opContains, {u32(7)});
  EXPECT_EQ(present.type(), &Vel::BuiltinType<bool>::instance());
  EXPECT_TRUE(present.get<bool>());
  EXPECT_FALSE(shelfIf_.attribute("book", GenericIf::opContains, {u32(8)}).get<bool>());
}

TEST_F(GenericIfTest, CountersAnswerTheCollectionsBookkeepingAsUnsignedNumbers) {
  for (std::uint32_t id = 1; id <= 5; ++id)
    shelf_->bookIs(id, "Vol");
  const GenericValue size = shelfIf_.attribute("book", GenericIf::opSize);
  EXPECT_EQ(size.type(), &Vel::BuiltinType<std::uint32_t>::instance());
  EXPECT_EQ(size.get<std::uint32_t>(), 5u);
  EXPECT_EQ(shelfIf_.attribute("book", GenericIf::opBucketCount).get<std::uint32_t>(),
            shelf_->books().bucket_count());
}

TEST_F(GenericIfTest, CollectionAnswersNoOtherOperation) {
  for (unsigned op : {6u, 7u, 8u, 9u, 10u, 11u}) {
    EXPECT_EQ(notSupportedMessage([&] { shelfIf_.attribute("book", op, {u32(1)}); }),
              "Operation " + std::to_string(op) +
                  " is not supported on attribute 'book' of type 'Library::Shelf'");
  }
}

TEST_F(GenericIfTest, KeyOfTheWrongTypeIsRefused) {
  EXPECT_EQ(rangeMessage([&] { shelfIf_.attribute("book", GenericIf::opRead, {text("7")}); }),
            "A value of type 'Vel::String' cannot be read as 'unsigned int'");
}

TEST_F(GenericIfTest, ElementsAreReachedReflectivelyInTurn) {
  shelf_->bookIs(7, "Odes");
  GenericIf bookIf(shelfIf_.attribute("book", GenericIf::opRead, {u32(7)}));
  bookIf.attribute("title", GenericIf::opWrite, {text("Epodes")});
  EXPECT_EQ(shelf_->book(7)->title(), "Epodes");
  EXPECT_EQ(bookIf.attribute("id", GenericIf::opRead).get<std::uint32_t>(), 7u);
}

// ---- Operations of a value itself

TEST_F(GenericIfTest, AttributesOfAValueAreReadFromItAndWrittenIntoTheCopyHeld) {
  const GenericValue original = position(4, false);
  GenericIf positionIf(original);
  EXPECT_EQ(positionIf.attribute("row", GenericIf::opRead).get<std::uint32_t>(), 4u);
  positionIf.attribute("front", GenericIf::opWrite, {boolean(true)});
  EXPECT_TRUE(positionIf.attribute("front", GenericIf::opRead).get<bool>());
  EXPECT_EQ(positionIf.self().get<Position>(), (Position{4, true}));
  EXPECT_EQ(original.get<Position>(), (Position{4, false}));
}

TEST_F(GenericIfTest, ReadOnlyAttributeOfAValueIsNotWritten) {
  GenericIf positionIf(position(4, false));
  EXPECT_EQ(notSupportedMessage([&] { positionIf.attribute("row", GenericIf::opWrite, {u32(1)}); }),
            "Operation 1 is not supported on attribute 'row' of type 'Library::Position'");
}

TEST_F(GenericIfTest, IsDefaultTestsAgainstTheDefaultValue) {
  EXPECT_TRUE(GenericIf(position(0, false)).valueOperation(GenericIf::opIsDefault).get<bool>());
  EXPECT_FALSE(GenericIf(position(0, true)).valueOperation(GenericIf::opIsDefault).get<bool>());
  EXPECT_FALSE(GenericIf(position(1, false)).valueOperation(GenericIf::opIsDefault).get<bool>());
}

TEST_F(GenericIfTest, EqualityComparesWithASecondValueOfTheType) {
  GenericIf positionIf(position(3, true));
  const GenericValue equal = positionIf.valueOperation(GenericIf::opEqual, {position(3, true)});
  EXPECT_EQ(equal.type(), &Vel::BuiltinType<bool>::instance());
  EXPECT_TRUE(equal.get<bool>());
  EXPECT_FALSE(positionIf.valueOperation(GenericIf::opEqual, {position(3, false)}).get<bool>());
  EXPECT_FALSE(positionIf.valueOperation(GenericIf::opEqual, {position(2, true)}).get<bool>());
}

TEST_F(GenericIfTest, ValueAnswersNoOtherOperation) {
  GenericIf positionIf(position(3, true));
  for (unsigned op : {0u, 1u, 2u, 5u, 8u, 11u}) {
    EXPECT_EQ(notSupportedMessage([&] { positionIf.valueOperation(op, {position(3, true)}); }),
              "Operation " + std::to_string(op) + " is not supported on type 'Library::Position'");
  }
}

TEST_F(GenericIfTest, ObjectReferenceIsDefaultWhenNullAndEqualToTheSameObject) {
  GenericIf nullIf(GenericValue(Library::lampType, nullptr));
  EXPECT_TRUE(nullIf.valueOperation(GenericIf::opIsDefault).get<bool>());
  EXPECT_FALSE(shelfIf_.valueOperation(GenericIf::opIsDefault).get<bool>());
  EXPECT_TRUE(
      shelfIf_.valueOperation(GenericIf::opEqual, {GenericValue(Library::shelfType, shelf_)})
          .get<bool>());
  Vel::Ptr<Shelf> other = Vel::allocate<Shelf>(17);
  EXPECT_FALSE(
      shelfIf_.valueOperation(GenericIf::opEqual, {GenericValue(Library::shelfType, other)})
          .get<bool>());
  EXPECT_EQ(notSupportedMessage([&] { shelfIf_.valueOperation(3); }),
            "Operation 3 is not supported on type 'Library::Shelf'");
}

// ---- Text, hash and construction

TEST_F(GenericIfTest, TextFormIsTheValuesOwn) {
  EXPECT_EQ(GenericIf(position(4, true)).text(),
            "Value('Library::Position', ** {'row': 4, 'front': True})");
}

TEST_F(GenericIfTest, UnhashableValueTypeRaisesUnhashableType) {
  EXPECT_EQ(messageOf<Vel::UnhashableTypeException>([] { GenericIf(position(4, true)).hash(); }),
            "Unhashable type: 'Library::Position'");
}

TEST_F(GenericIfTest, ValueIsBuiltFromConstructorArgumentsInAttributeOrder) {
  const GenericValue value = GenericIf::valueFromArgs("Library::Position", {u32(9), boolean(true)});
  EXPECT_EQ(value.type(), &Library::positionType);
  EXPECT_EQ(value.get<Position>(), (Position{9, true}));
}

TEST_F(GenericIfTest, ConstructorArgumentsMustMatchInNumberAndType) {
  EXPECT_EQ(rangeMessage([] { GenericIf::valueFromArgs("Library::Position", {u32(9)}); }),
            "Type 'Library::Position' takes 2 constructor arguments, 1 given");
  EXPECT_EQ(rangeMessage([] {
              GenericIf::valueFromArgs("Library::Position", {boolean(true), u32(9)});
            }),
            "A value of type 'bool' cannot be read as 'unsigned int'");
}

TEST_F(GenericIfTest, ValueIsCopiedFromARawPointer) {
  const Position raw{11, true};
  const GenericValue value = GenericIf::valueFromRawPtr("Library::Position", &raw);
  EXPECT_EQ(value.type(), &Library::positionType);
  EXPECT_EQ(value.get<Position>(), raw);
}

TEST_F(GenericIfTest, OperationsThatATypeDoesNotOfferAreNotSupported) {
  EXPECT_EQ(notSupportedMessage([] { GenericIf::valueFromArgs("Library::Shelf", {}); }),
            "Operation fromArgs is not supported on type 'Library::Shelf'");
  EXPECT_EQ(notSupportedMessage([&] { shelfIf_.notifieeIs(nullptr); }),
            "Operation notifiee is not supported on type 'Library::Shelf'");
  EXPECT_EQ(notSupportedMessage([&] { shelfIf_.iterator("label"); }),
            "Operation iterator is not supported on attribute 'label' of type 'Library::Shelf'");
  EXPECT_EQ(notSupportedMessage([&] { shelfIf_.iteratorAtKey("label", u32(1)); }),
            "Operation iteratorAtKey is not supported on attribute 'label' of type "
            "'Library::Shelf'");
  const Vel::TypeRecord bare("Library::Bare", Vel::TypeRecord::Kind::value);
  EXPECT_EQ(notSupportedMessage([&] { bare.valueFromText("x"); }),
            "Operation fromText is not supported on type 'Library::Bare'");
  EXPECT_EQ(notSupportedMessage([&] { bare.valueFromRawPtr(nullptr); }),
            "Operation fromRawPtr is not supported on type 'Library::Bare'");
  EXPECT_EQ(notSupportedMessage([&] { GenericIf(GenericValue(bare, 1)).text(); }),
            "Operation toText is not supported on type 'Library::Bare'");
  EXPECT_EQ(
      messageOf<Vel::UnhashableTypeException>([&] { GenericIf(GenericValue(bare, 1)).hash(); }),
      "Unhashable type: 'Library::Bare'");
}

TEST_F(GenericIfTest, UnknownTypeNameIsARangeException) {
  EXPECT_EQ(rangeMessage([] { GenericIf::valueFromArgs("Library::Nothing", {}); }),
            "No type named 'Library::Nothing'");
}

// ---- Access itself

TEST_F(GenericIfTest, AccessToNothingIsARangeException) {
  EXPECT_EQ(rangeMessage([] { GenericIf{GenericValue()}; }), "Reflective access to an empty value");
  EXPECT_EQ(rangeMessage([] { GenericIf{Vel::Ptr<Shelf>()}; }),
            "Reflective access to a null object");
  EXPECT_EQ(rangeMessage([] { GenericIf{Vel::allocate<Vel::PtrInterface>()}; }),
            "Reflective access to an object without a type record");
}

TEST_F(GenericIfTest, AttributeOfANullReferenceIsARangeException) {
  GenericIf nullIf(GenericValue(Library::lampType, nullptr));
  EXPECT_EQ(&nullIf.type(), &Library::lampType);
  EXPECT_EQ(rangeMessage([&] { nullIf.attribute("watts", GenericIf::opRead); }),
            "Reflective call on a null reference of type 'Library::Lamp'");
}

TEST_F(GenericIfTest, AccessHoldsTheObjectAlive) {
  {
    GenericIf bookIf(Vel::allocate<Book>(1, "Odes"));
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Book>().liveObjects(), 1u);
    EXPECT_EQ(bookIf.attribute("title", GenericIf::opRead).get<Vel::String>(), "Odes");
  }
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Book>().liveObjects(), 0u);
}

}  // namespace
