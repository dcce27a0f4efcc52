#include "Vel/BuiltinType.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>

#include "ReflectTestHelpers.h"
#include "Vel/GenericIf.h"
#include "Vel/RangeException.h"
#include "Vel/TypeNode.h"

namespace {

using Vel::BuiltinType;
using Vel::GenericIf;
using Vel::GenericValue;

template <class T>
void expectRegisteredAs(const char* name) {
  const Vel::TypeRecord& record = BuiltinType<T>::instance();
  EXPECT_EQ(record.name(), name);
  EXPECT_EQ(record.kind(), Vel::TypeRecord::Kind::builtin);
  EXPECT_EQ(record.base(), nullptr);
  EXPECT_TRUE(record.attributes().empty());
  EXPECT_EQ(Vel::typeNode(name), &record);
}

TEST(BuiltinTypeTest, FrameworkRegistersItsBuiltinTypes) {
  expectRegisteredAs<std::uint8_t>("uint8_t");
  expectRegisteredAs<std::uint16_t>("uint16_t");
  expectRegisteredAs<std::uint32_t>("uint32_t");
  expectRegisteredAs<std::uint64_t>("uint64_t");
  expectRegisteredAs<std::int8_t>("int8_t");
  expectRegisteredAs<std::int16_t>("int16_t");
  expectRegisteredAs<std::int32_t>("int32_t");
  expectRegisteredAs<std::int64_t>("int64_t");
  expectRegisteredAs<bool>("bool");
  expectRegisteredAs<Vel::String>("Vel::String");
  expectRegisteredAs<Vel::Name>("Vel::Name");
}

TEST(BuiltinTypeTest, ValueCarriesItsBuiltinRecord) {
  const GenericValue value = BuiltinType<std::int64_t>::value(-5);
  EXPECT_EQ(value.type(), &BuiltinType<std::int64_t>::instance());
  EXPECT_EQ(value.get<std::int64_t>(), -5);
}

TEST(BuiltinTypeTest, IsDefaultAndEqualityCompareTheNumbers) {
  GenericIf zero(BuiltinType<std::uint16_t>::value(0));
  GenericIf seven(BuiltinType<std::uint16_t>::value(7));
  EXPECT_TRUE(zero.valueOperation(GenericIf::opIsDefault).get<bool>());
  EXPECT_FALSE(seven.valueOperation(GenericIf::opIsDefault).get<bool>());
  EXPECT_TRUE(
      seven.valueOperation(GenericIf::opEqual, {BuiltinType<std::uint16_t>::value(7)}).get<bool>());
  EXPECT_FALSE(
      seven.valueOperation(GenericIf::opEqual, {BuiltinType<std::uint16_t>::value(8)}).get<bool>());
}

TEST(BuiltinTypeTest, EmptyStringIsTheDefaultString) {
  EXPECT_TRUE(GenericIf(BuiltinType<Vel::Name>::value(""))
                  .valueOperation(GenericIf::opIsDefault)
                  .get<bool>());
  EXPECT_FALSE(GenericIf(BuiltinType<Vel::Name>::value("a"))
                   .valueOperation(GenericIf::opIsDefault)
                   .get<bool>());
}

TEST(BuiltinTypeTest, EqualityNeedsASecondValueOfTheSameType) {
  GenericIf seven(BuiltinType<std::uint16_t>::value(7));
  EXPECT_EQ(Library::messageOf<Vel::RangeException>([&] {
              seven.valueOperation(GenericIf::opEqual, {BuiltinType<std::uint32_t>::value(7)});
            }),
            "A value of type 'uint32_t' cannot be read as 'unsigned short'");
}

TEST(BuiltinTypeTest, HashIsTheStandardHashOfTheValue) {
  EXPECT_EQ(GenericIf(BuiltinType<std::uint32_t>::value(99)).hash(),
            std::hash<std::uint32_t>()(99));
  EXPECT_EQ(GenericIf(BuiltinType<Vel::String>::value("x")).hash(), std::hash<std::string>()("x"));
}

TEST(BuiltinTypeTest, ValueIsBuiltFromOneArgumentOfItsType) {
  const GenericValue value =
      GenericIf::valueFromArgs("int16_t", {BuiltinType<std::int16_t>::value(-3)});
  EXPECT_EQ(value.type(), &BuiltinType<std::int16_t>::instance());
  EXPECT_EQ(value.get<std::int16_t>(), -3);
  EXPECT_EQ(
      Library::messageOf<Vel::RangeException>([] { GenericIf::valueFromArgs("int16_t", {}); }),
      "Type 'int16_t' takes 1 constructor argument, 0 given");
}

TEST(BuiltinTypeTest, ValueIsCopiedFromARawPointer) {
  const bool raw = true;
  const GenericValue value = GenericIf::valueFromRawPtr("bool", &raw);
  EXPECT_EQ(value.type(), &BuiltinType<bool>::instance());
  EXPECT_TRUE(value.get<bool>());
}

}  // namespace
