#include "Vel/EntityType.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ReflectTestFamily.h"
#include "ReflectTestHelpers.h"
#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Allocate.h"
#include "Vel/BuiltinType.h"
#include "Vel/Entity.h"
#include "Vel/GenericCall.h"
#include "Vel/GenericIf.h"
#include "Vel/ObjectReference.h"
#include "Vel/OperationNotSupportedException.h"
#include "Vel/TypeNode.h"

namespace {

using Library::messageOf;
using Library::Room;
using Vel::AttributeRecord;
using Vel::GenericIf;
using Vel::GenericValue;
using Vel::TypeRecord;

// An entity type whose record lists the entity attributes again, ahead of its
// own, and serves only its own attribute `width`; `ghost` is listed but served
// by no type.
class Porch : public Vel::Entity {
 public:
  using Vel::Entity::Entity;
  const TypeRecord* fwkType() const override;
  std::uint32_t width = 3;
};

Vel::GenericReply porchAttribute(Vel::GenericCall& call) {
  if (call.attributeNumber() == 258)
    return call.answerRead(call.object<Porch>().width);
  return call.notOwned();
}

const TypeRecord& porchType() {
  static const TypeRecord record(
      "Test::Porch", TypeRecord::Kind::entity, &Vel::entityType(),
      {
          {"name", Vel::BuiltinType<Vel::Name>::instance(), 130},
          {"fullName", Vel::BuiltinType<Vel::Name>::instance(), 141},
          {"parent", Vel::entityType(), 138},
          {"parentAttrName", Vel::BuiltinType<Vel::String>::instance(), 139},
          {"entity", Vel::entityType(), 143},
          {"width", Vel::BuiltinType<std::uint32_t>::instance(), 258},
          {"ghost", Vel::BuiltinType<bool>::instance(), 300},
      },
      {.attribute = &porchAttribute});
  return record;
}

const TypeRecord* Porch::fwkType() const {
  return &porchType();
}

template <class Run>
std::string notSupportedMessage(Run run) {
  return messageOf<Vel::OperationNotSupportedException>(run);
}

std::vector<std::string> namesOf(const std::vector<const AttributeRecord*>& attributes) {
  std::vector<std::string> names;
  for (const AttributeRecord* attribute : attributes)
    names.push_back(attribute->name());
  return names;
}

class EntityTypeTest : public ::testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Vel::Entity>().liveObjects(), 0u);
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Porch>().liveObjects(), 0u);
  }

  // Reads a plain attribute by name.
  static GenericValue read(const GenericValue& object, const char* attribute) {
    return GenericIf(object).attribute(attribute, GenericIf::opRead);
  }

  Library::LeakCheck leakCheck_;
};

TEST_F(EntityTypeTest, RecordIsRegisteredAsVelEntity) {
  const TypeRecord& type = Vel::entityType();
  EXPECT_EQ(&type, &Vel::entityType());
  EXPECT_EQ(Vel::typeNode("Vel::Entity"), &type);
  EXPECT_EQ(type.name(), "Vel::Entity");
  EXPECT_EQ(type.kind(), TypeRecord::Kind::entity);
  EXPECT_EQ(type.base(), nullptr);
}

TEST_F(EntityTypeTest, AttributesHaveTheirFixedNumbersInDeclarationOrder) {
  const std::vector<AttributeRecord>& attributes = Vel::entityType().attributes();
  ASSERT_EQ(attributes.size(), 5u);
  const struct {
    const char* name;
    unsigned number;
    const TypeRecord* type;
  } expected[] = {
      {"name", 130, &Vel::BuiltinType<Vel::Name>::instance()},
      {"fullName", 141, &Vel::BuiltinType<Vel::Name>::instance()},
      {"parent", 138, &Vel::entityType()},
      {"parentAttrName", 139, &Vel::BuiltinType<Vel::String>::instance()},
      {"entity", 143, &Vel::entityType()},
  };
  for (std::size_t i = 0; i < attributes.size(); ++i) {
    SCOPED_TRACE(expected[i].name);
    EXPECT_EQ(attributes[i].name(), expected[i].name);
    EXPECT_EQ(attributes[i].number(), expected[i].number);
    EXPECT_EQ(&attributes[i].type(), expected[i].type);
    EXPECT_EQ(&attributes[i].owner(), &Vel::entityType());
    EXPECT_EQ(attributes[i].flags(), AttributeRecord::plain);
  }
  EXPECT_EQ(Vel::Entity::nameAttribute, 130u);
  EXPECT_EQ(Vel::Entity::parentAttribute, 138u);
  EXPECT_EQ(Vel::Entity::parentAttrNameAttribute, 139u);
  EXPECT_EQ(Vel::Entity::fullNameAttribute, 141u);
  EXPECT_EQ(Vel::Entity::entityAttribute, 143u);
}

TEST_F(EntityTypeTest, PlainEntityAnswersTheBaseRecord) {
  const Vel::Ptr<Vel::Entity> hall = Vel::allocate<Vel::Entity>("hall");
  EXPECT_EQ(hall->fwkType(), &Vel::entityType());
  const GenericValue self(Vel::entityType(), hall);
  EXPECT_EQ(read(self, "name").get<Vel::Name>(), "hall");
  EXPECT_EQ(read(self, "fullName").get<Vel::Name>(), "hall");
  const GenericValue parent = read(self, "parent");
  EXPECT_TRUE(parent.isNull());
  EXPECT_EQ(parent.type(), &Vel::entityType());
  EXPECT_EQ(read(self, "parentAttrName").get<Vel::String>(), "");
  EXPECT_EQ(read(self, "entity").get<Vel::Ptr<Vel::Entity>>(), hall);
  EXPECT_EQ(hall->references(), 2u);  // `self` holds one
}

TEST_F(EntityTypeTest, DerivedEntityPassesTheEntityAttributesToTheBaseRecord) {
  const Vel::Ptr<Room> hall = Vel::allocate<Room>("hall");
  const Vel::Ptr<Room> east = hall->alcoveIs("east");
  GenericIf eastIf(east);
  EXPECT_EQ(&eastIf.type(), &Library::roomType);
  EXPECT_EQ(eastIf.attribute("name", GenericIf::opRead).get<Vel::Name>(), "east");
  EXPECT_EQ(eastIf.attribute("fullName", GenericIf::opRead).get<Vel::Name>(), "hall/alcove/east");
  EXPECT_EQ(eastIf.attribute("parentAttrName", GenericIf::opRead).get<Vel::String>(), "alcove");
  const GenericValue parent = eastIf.attribute("parent", GenericIf::opRead);
  EXPECT_EQ(parent.type(), &Vel::entityType());
  EXPECT_EQ(parent.get<Vel::Ptr<Room>>(), hall);
  // Reflective access to the answer goes through the parent's own record.
  EXPECT_EQ(&GenericIf(parent).type(), &Library::roomType);
  EXPECT_EQ(read(parent, "fullName").get<Vel::Name>(), "hall");
  EXPECT_EQ(eastIf.attribute("entity", GenericIf::opRead).get<Vel::Ptr<Room>>(), east);
}

TEST_F(EntityTypeTest, EntityAttributesAreFoundByNumberThroughTheDerivedRecord) {
  const Vel::Ptr<Room> hall = Vel::allocate<Room>("hall");
  const Vel::Ptr<Room> west = hall->alcoveIs("west");
  for (unsigned number : {130u, 138u, 139u, 141u, 143u}) {
    const AttributeRecord* attribute = Library::roomType.attribute(number);
    ASSERT_NE(attribute, nullptr) << number;
    EXPECT_EQ(&attribute->owner(), &Vel::entityType());
  }
  GenericIf westIf(west);
  EXPECT_EQ(westIf.attribute(*Library::roomType.attribute(141), GenericIf::opRead).get<Vel::Name>(),
            "hall/alcove/west");
  EXPECT_EQ(
      westIf.attribute(*Library::roomType.attribute(138), GenericIf::opRead).get<Vel::Ptr<Room>>(),
      hall);
}

TEST_F(EntityTypeTest, DerivedRecordListsTheEntityAttributesFirst) {
  EXPECT_EQ(namesOf(Library::roomType.allAttributes()),
            (std::vector<std::string>{"name", "fullName", "parent", "parentAttrName", "entity",
                                      "shelf", "open", "alcove"}));
}

TEST_F(EntityTypeTest, EntityAttributesAreReadOnly) {
  const Vel::Ptr<Room> hall = Vel::allocate<Room>("hall");
  GenericIf hallIf(hall);
  EXPECT_EQ(notSupportedMessage([&] {
              hallIf.attribute("name", GenericIf::opWrite,
                               {Vel::BuiltinType<Vel::Name>::value("lobby")});
            }),
            "Operation 1 is not supported on attribute 'name' of type 'Vel::Entity'");
  EXPECT_EQ(notSupportedMessage([&] { hallIf.attribute("parent", GenericIf::opDelete); }),
            "Operation 2 is not supported on attribute 'parent' of type 'Vel::Entity'");
  EXPECT_EQ(notSupportedMessage([&] { hallIf.attribute("entity", GenericIf::opContains); }),
            "Operation 5 is not supported on attribute 'entity' of type 'Vel::Entity'");
  EXPECT_EQ(hall->name(), "hall");
}

TEST_F(EntityTypeTest, RelistedEntityAttributesAreServedByTheBaseRecord) {
  const Vel::Ptr<Porch> porch = Vel::allocate<Porch>("front");
  GenericIf porchIf(porch);
  const AttributeRecord& name = porchIf.attributeRecord("name");
  EXPECT_EQ(&name.owner(), &porchType());
  EXPECT_EQ(porchIf.attribute(name, GenericIf::opRead).get<Vel::Name>(), "front");
  EXPECT_EQ(porchIf.attribute("entity", GenericIf::opRead).get<Vel::Ptr<Porch>>(), porch);
  EXPECT_EQ(porchIf.attribute("width", GenericIf::opRead).get<std::uint32_t>(), 3u);
  EXPECT_EQ(namesOf(porchType().allAttributes()),
            (std::vector<std::string>{"name", "fullName", "parent", "parentAttrName", "entity",
                                      "width", "ghost"}));
  EXPECT_EQ(notSupportedMessage([&] { porchIf.attribute("name", GenericIf::opWrite); }),
            "Operation 1 is not supported on attribute 'name' of type 'Test::Porch'");
  EXPECT_EQ(notSupportedMessage([&] { porchIf.attribute("ghost", GenericIf::opRead); }),
            "Operation 0 is not supported on attribute 'ghost' of type 'Test::Porch'");
}

TEST_F(EntityTypeTest, EntityReferencePrintsAndReadsBackUnderTheEntityRecord) {
  const Vel::Ptr<Vel::Entity> hall = Vel::allocate<Vel::Entity>("hall");
  const std::string text = GenericIf(hall).text();
  EXPECT_EQ(text,
            "Ref('Vel::Entity', " + std::to_string(Vel::ObjectReference::idOf(hall.get())) + ")");
  EXPECT_EQ(GenericIf::valueFromText("Vel::Entity", text).get<Vel::Ptr<Vel::Entity>>(), hall);
  const Vel::Ptr<Room> room = Vel::allocate<Room>("annex");
  EXPECT_EQ(GenericIf::valueFromText("Vel::Entity", GenericIf(room).text()).get<Vel::Ptr<Room>>(),
            room);
}

}  // namespace
