#include "Vel/TypeRecord.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

#include "ReflectTestFamily.h"
#include "ReflectTestHelpers.h"
#include "Vel/BuiltinType.h"
#include "Vel/EnumOperations.h"
#include "Vel/NameInUseException.h"
#include "Vel/ReferenceOperations.h"
#include "Vel/TypeNode.h"

namespace {

using Vel::AttributeRecord;
using Vel::TypeRecord;

std::vector<std::string> namesOf(const std::vector<const AttributeRecord*>& attributes) {
  std::vector<std::string> names;
  for (const AttributeRecord* a : attributes)
    names.push_back(a->name());
  return names;
}

TEST(TypeRecordTest, RecordKeepsNameKindAndBase) {
  EXPECT_EQ(Library::deskLampType.name(), "Library::DeskLamp");
  EXPECT_EQ(Library::deskLampType.kind(), TypeRecord::Kind::object);
  EXPECT_EQ(Library::deskLampType.base(), &Library::lampType);
  EXPECT_TRUE(Library::deskLampType.isA(&Library::lampType));
  EXPECT_FALSE(Library::lampType.isA(&Library::deskLampType));
  EXPECT_TRUE(Library::shelfType.isObjectType());
  EXPECT_FALSE(Library::positionType.isObjectType());
}

TEST(TypeRecordTest, RecordMadeWithoutTableHasNoAttributesAndNoOperations) {
  const TypeRecord bare("Library::Bare", TypeRecord::Kind::value);
  EXPECT_TRUE(bare.attributes().empty());
  EXPECT_EQ(bare.operations().attribute, nullptr);
  EXPECT_EQ(bare.operations().hash, nullptr);
}

TEST(TypeRecordTest, AttributeRecordDescribesTheAttribute) {
  const AttributeRecord& book = Library::shelfType.attributes()[2];
  EXPECT_EQ(book.name(), "book");
  EXPECT_EQ(&book.owner(), &Library::shelfType);
  EXPECT_EQ(&book.type(), &Library::bookType);
  EXPECT_EQ(book.number(), 132u);
  EXPECT_EQ(book.keyType(), &Vel::BuiltinType<std::uint32_t>::instance());
  EXPECT_EQ(book.qualifiedName(), "Library::Shelf::book");
  EXPECT_TRUE(book.isCollection());
  EXPECT_TRUE(book.isReadWrite());
  EXPECT_TRUE(book.isNotifying());
  EXPECT_FALSE(book.isConstructorArg());
}

TEST(TypeRecordTest, FlagsTellPlainReadOnlyAndConstructorAttributes) {
  const AttributeRecord& serial = *Library::shelfType.attribute("serial");
  EXPECT_EQ(serial.flags(), AttributeRecord::constructorArg);
  EXPECT_FALSE(serial.isCollection());
  EXPECT_FALSE(serial.isReadWrite());
  EXPECT_FALSE(serial.isNotifying());
  EXPECT_TRUE(serial.isConstructorArg());
  EXPECT_EQ(serial.keyType(), nullptr);
  EXPECT_EQ(Library::shelfType.attribute("label")->flags(), AttributeRecord::readWrite);
}

TEST(TypeRecordTest, AttributeIsFoundByNameAndByNumberInTheTypeThenItsBases) {
  const TypeRecord extra("Library::ExtraLamp", TypeRecord::Kind::object, &Library::lampType,
                         {{"shade", Vel::BuiltinType<Vel::String>::instance(), 132}}, {});
  EXPECT_EQ(&extra.attribute("shade")->owner(), &extra);
  EXPECT_EQ(&extra.attribute("watts")->owner(), &Library::lampType);
  EXPECT_EQ(extra.attribute(131u)->name(), "finish");
  EXPECT_EQ(extra.attribute(132u)->name(), "shade");
  EXPECT_EQ(extra.attribute("colour"), nullptr);
  EXPECT_EQ(extra.attribute(200u), nullptr);
}

TEST(TypeRecordTest, AttributeListedAgainIsFoundInTheDerivedType) {
  EXPECT_EQ(&Library::deskLampType.attribute("watts")->owner(), &Library::deskLampType);
  EXPECT_EQ(&Library::deskLampType.attribute(131u)->owner(), &Library::deskLampType);
}

TEST(TypeRecordTest, AllAttributesListTheBasesFirstAndRelistedOnesInTheirPlace) {
  const TypeRecord extra("Library::ExtraLamp", TypeRecord::Kind::object, &Library::deskLampType,
                         {{"shade", Vel::BuiltinType<Vel::String>::instance(), 132},
                          {"finish", Library::finishType, 131}},
                         {});
  const std::vector<const AttributeRecord*> all = extra.allAttributes();
  EXPECT_EQ(namesOf(all), (std::vector<std::string>{"watts", "finish", "shade"}));
  EXPECT_EQ(&all[0]->owner(), &Library::deskLampType);
  EXPECT_EQ(&all[1]->owner(), &extra);
  EXPECT_EQ(namesOf(Library::shelfType.allAttributes()),
            (std::vector<std::string>{"label", "serial", "book", "lamp", "position"}));
}

TEST(TypeRecordTest, ObjectAndEnumerationRecordsGetTheFrameworksOperationsWhereTheyNameNone) {
  const TypeRecord::Operations& lamp = Library::lampType.operations();
  EXPECT_EQ(lamp.value, &Vel::ReferenceOperations::operation);
  EXPECT_EQ(lamp.fromText, &Vel::ReferenceOperations::fromText);
  EXPECT_EQ(lamp.toText, &Vel::ReferenceOperations::toText);
  EXPECT_EQ(lamp.hash, &Vel::ReferenceOperations::hash);
  EXPECT_EQ(lamp.fromArgs, nullptr);
  const TypeRecord::Operations& finish = Library::finishType.operations();
  EXPECT_EQ(finish.toText, &Vel::EnumOperations::toText);
  EXPECT_EQ(finish.fromArgs, &Vel::EnumOperations::fromArgs);
}

TEST(TypeRecordTest, OperationNamedByTheRecordWinsOverTheFrameworks) {
  const TypeRecord own("Library::Own", TypeRecord::Kind::object, nullptr, {},
                       {.hash = &TypeRecord::unhashable});
  EXPECT_EQ(own.operations().hash, &TypeRecord::unhashable);
  EXPECT_EQ(own.operations().toText, &Vel::ReferenceOperations::toText);
}

// ---- Registration by name

TEST(TypeRecordTest, RegisteredRecordIsFoundByName) {
  EXPECT_EQ(Vel::typeNode("Library::Shelf"), &Library::shelfType);
  EXPECT_EQ(Vel::typeNode("Library::Position"), &Library::positionType);
  EXPECT_EQ(Vel::typeNode("Library::Nothing"), nullptr);
}

TEST(TypeRecordTest, RecordsAreListedInTheOrderOfRegistration) {
  const std::vector<const TypeRecord*> all = Vel::typeNodes();
  auto at = [&](const TypeRecord& t) {
    return std::find(all.begin(), all.end(), &t) - all.begin();
  };
  EXPECT_LT(at(Vel::BuiltinType<Vel::Name>::instance()), at(Library::finishType));
  EXPECT_LT(at(Library::finishType), at(Library::positionType));
  EXPECT_LT(at(Library::bookType), at(Library::shelfType));
  EXPECT_LT(at(Library::shelfType), static_cast<std::ptrdiff_t>(all.size()));
}

TEST(TypeRecordTest, RegisteringTheSameRecordAgainIsHarmless) {
  const std::size_t before = Vel::typeNodes().size();
  Vel::typeNodeIs(Library::shelfType);
  EXPECT_EQ(Vel::typeNodes().size(), before);
  EXPECT_EQ(Vel::typeNode("Library::Shelf"), &Library::shelfType);
}

TEST(TypeRecordTest, AnotherRecordUnderATakenNameIsRefused) {
  const std::size_t before = Vel::typeNodes().size();
  const TypeRecord impostor("Library::Shelf", TypeRecord::Kind::entity);
  EXPECT_EQ(Library::messageOf<Vel::NameInUseException>([&] { Vel::typeNodeIs(impostor); }),
            "Type name 'Library::Shelf' is already registered for another type");
  EXPECT_EQ(Vel::typeNode("Library::Shelf"), &Library::shelfType);
  EXPECT_EQ(Vel::typeNodes().size(), before);
}

}  // namespace
