#include "Vel/GenericValue.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "ReflectTestFamily.h"
#include "ReflectTestHelpers.h"
#include "Vel/Allocate.h"
#include "Vel/BuiltinType.h"
#include "Vel/RangeException.h"

namespace {

using Library::Book;
using Library::DeskLamp;
using Library::Lamp;
using Vel::GenericValue;

template <class Read>
std::string rangeMessage(Read read) {
  return Library::messageOf<Vel::RangeException>(read);
}

class GenericValueTest : public ::testing::Test {
 protected:
  Library::LeakCheck leakCheck_;
};

TEST_F(GenericValueTest, EmptyValueHasNoTypeAndCannotBeRead) {
  GenericValue empty;
  EXPECT_TRUE(empty.empty());
  EXPECT_TRUE(empty.isNull());
  EXPECT_EQ(empty.type(), nullptr);
  EXPECT_EQ(rangeMessage([&] { empty.get<bool>(); }), "An empty value cannot be read as 'bool'");
}

TEST_F(GenericValueTest, NumberIsReadAsItsOwnTypeOnly) {
  const GenericValue value = Vel::BuiltinType<std::uint32_t>::value(7);
  EXPECT_EQ(value.type(), &Vel::BuiltinType<std::uint32_t>::instance());
  EXPECT_FALSE(value.isReference());
  EXPECT_FALSE(value.isNull());
  EXPECT_EQ(value.get<std::uint32_t>(), 7u);
  EXPECT_EQ(rangeMessage([&] { value.get<std::int32_t>(); }),
            "A value of type 'uint32_t' cannot be read as 'int'");
  EXPECT_EQ(rangeMessage([&] { value.get<std::uint16_t>(); }),
            "A value of type 'uint32_t' cannot be read as 'unsigned short'");
}

TEST_F(GenericValueTest, TextFromCharactersIsHeldAsString) {
  const GenericValue value(Vel::BuiltinType<Vel::String>::instance(), "shelf");
  EXPECT_EQ(value.get<Vel::String>(), "shelf");
  EXPECT_EQ(rangeMessage([&] { value.get<Vel::Name>(); }),
            "A value of type 'Vel::String' cannot be read as 'Vel::Name'");
}

TEST_F(GenericValueTest, RefChangesTheValueInPlace) {
  GenericValue value(Library::positionType, Library::Position{3, false});
  value.ref<Library::Position>().front = true;
  EXPECT_EQ(value.get<Library::Position>(), (Library::Position{3, true}));
  EXPECT_EQ(rangeMessage([&] { value.ref<bool>(); }),
            "A value of type 'Library::Position' cannot be read as 'bool'");
}

TEST_F(GenericValueTest, EnumerationIsHeldAsItsNumber) {
  const GenericValue value(Library::finishType, Library::Finish::glossy);
  EXPECT_EQ(value.get<Library::Finish>(), Library::Finish::glossy);
  EXPECT_EQ(value.get<unsigned int>(), 1u);
  EXPECT_EQ(rangeMessage([&] { value.get<bool>(); }),
            "A value of type 'Library::Finish' cannot be read as 'bool'");
}

TEST_F(GenericValueTest, ReferenceIsNarrowedToTheTypeAskedFor) {
  const Vel::Ptr<DeskLamp> lamp = Vel::allocate<DeskLamp>();
  const GenericValue value(Library::lampType, lamp);
  EXPECT_TRUE(value.isReference());
  EXPECT_FALSE(value.isNull());
  EXPECT_EQ(value.get<Vel::Ptr<Lamp>>().get(), lamp.get());
  EXPECT_EQ(value.get<Vel::Ptr<DeskLamp>>().get(), lamp.get());
  EXPECT_EQ(value.get<Vel::Ptr<const Lamp>>().get(), lamp.get());
  EXPECT_EQ(value.object().get(), lamp.get());
  EXPECT_EQ(rangeMessage([&] { value.get<Vel::Ptr<Book>>(); }),
            "A value of type 'Library::Lamp' cannot be read as 'Vel::Ptr<Library::Book>'");
}

TEST_F(GenericValueTest, NullReferenceReadsAsNullOfAnyObjectType) {
  const GenericValue value(Library::lampType, nullptr);
  EXPECT_TRUE(value.isReference());
  EXPECT_TRUE(value.isNull());
  EXPECT_EQ(value.get<Vel::Ptr<Book>>(), nullptr);
  EXPECT_EQ(rangeMessage([&] { value.get<bool>(); }),
            "A value of type 'Library::Lamp' cannot be read as 'bool'");
}

TEST_F(GenericValueTest, PlainValueIsNotAReference) {
  const GenericValue value = Vel::BuiltinType<bool>::value(true);
  EXPECT_EQ(rangeMessage([&] { value.object(); }),
            "A value of type 'bool' cannot be read as 'Vel::Ptr<Vel::PtrInterface const>'");
  EXPECT_EQ(rangeMessage([&] { value.get<Vel::Ptr<Lamp>>(); }),
            "A value of type 'bool' cannot be read as 'Vel::Ptr<Library::Lamp>'");
}

TEST_F(GenericValueTest, ReferenceKeepsTheObjectAliveUntilTheLastCopyGoes) {
  Vel::Ptr<Lamp> lamp = Vel::allocate<Lamp>();
  const Lamp* raw = lamp.get();
  GenericValue value(Library::lampType, std::move(lamp));
  GenericValue copy = value;
  EXPECT_EQ(raw->references(), 2u);
  value = GenericValue();
  EXPECT_EQ(raw->references(), 1u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Lamp>().liveObjects(), 1u);
  copy = GenericValue();
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Lamp>().liveObjects(), 0u);
}

}  // namespace
