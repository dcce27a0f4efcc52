#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "BfnTable/BfnSdkHandle.h"
#include "Vel/Allocate.h"
#include "Vel/AttributeRecord.h"
#include "Vel/BuiltinType.h"
#include "Vel/EntityType.h"
#include "Vel/EnumType.h"
#include "Vel/GenericIf.h"
#include "Vel/TypeNode.h"

namespace BfIngressMirrorLagGroup {
namespace {

using Vel::AttributeRecord;

constexpr unsigned kPlain = AttributeRecord::plain;
constexpr unsigned kCollection = AttributeRecord::collection;
constexpr unsigned kReadWrite = AttributeRecord::readWrite;
constexpr unsigned kConstructorArg = AttributeRecord::constructorArg;
constexpr unsigned kNotifying = AttributeRecord::notifying;

// One attribute as its type's record lists it; `key` is the name of the key
// type of a collection, empty for a plain attribute.
struct Attribute {
  std::string name;
  unsigned number;
  unsigned flags;
  std::string type;
  std::string key;

  bool operator==(const Attribute&) const = default;
};

void PrintTo(const Attribute& a, std::ostream* out) {
  *out << "{" << a.name << ", " << a.number << ", flags " << a.flags << ", " << a.type;
  if (!a.key.empty())
    *out << " by " << a.key;
  *out << "}";
}

// The type's own attribute table, in order, as registered under `name`.
std::vector<Attribute> tableOf(const std::string& name) {
  const Vel::TypeRecord* type = Vel::typeNode(name);
  EXPECT_NE(type, nullptr) << name;
  std::vector<Attribute> table;
  if (type == nullptr)
    return table;
  for (const AttributeRecord& a : type->attributes()) {
    EXPECT_EQ(&a.owner(), type) << a.name();
    table.push_back({a.name(), a.number(), a.flags(), a.type().name(),
                     a.keyType() != nullptr ? a.keyType()->name() : ""});
  }
  return table;
}

const std::string kNs = "BfIngressMirrorLagGroup::";
const std::string kU8 = Vel::BuiltinType<std::uint8_t>::instance().name();
const std::string kU16 = Vel::BuiltinType<std::uint16_t>::instance().name();
const std::string kU32 = Vel::BuiltinType<std::uint32_t>::instance().name();
const std::string kBool = Vel::BuiltinType<bool>::instance().name();
const std::string kSdkHandle = Vel::BuiltinType<BfnTable::BfnSdkEntryHandle>::instance().name();
const std::string kActionType = kNs + "IngressMirrorLagGroupActionProfileType";

const std::vector<std::string> kEntities = {
    "IngressMirrorLagGroupTable",         "IngressMirrorLagGroupActionProfileEntry",
    "IngressMirrorLagGroupMember",        "IngressMirrorLagGroupTableHandles",
    "IngressMirrorLagGroupActionProfile", "IngressMirrorLagGroupGroup"};

TEST(AttributeTableTest, Table) {
  EXPECT_EQ(tableOf(kNs + "IngressMirrorLagGroupTable"),
            (std::vector<Attribute>{
                {"helper", 258, kConstructorArg, kNs + "IngressMirrorLagGroupTableHelper", ""},
                {"vaultKeyManager", 259, kConstructorArg, "MbbVaultKey::VaultKeyManager", ""},
                {"statusManager", 260, kConstructorArg, "BfnTableStatusManager::StatusManager", ""},
                {"defaultMatchSpec", 261, kPlain, kNs + "IngressMirrorLagGroupMatchSpec", ""},
                {"entry", 262, kCollection | kReadWrite, kNs + "IngressMirrorLagGroupTableEntry",
                 kNs + "IngressMirrorLagGroupMatchSpec"},
                {"entryByHandle", 263, kCollection, kNs + "IngressMirrorLagGroupTableEntry",
                 kSdkHandle}}));
}

TEST(AttributeTableTest, SetLagMemberSelectorSpecListsTheBaseAttributesAgain) {
  const std::vector<Attribute> specAttributes{{"actionType", 130, kReadWrite, kActionType, ""},
                                              {"lagMemberSelector", 131, kReadWrite, kU16, ""}};
  EXPECT_EQ(tableOf(kNs + "IngressMirrorLagGroupBaseActionProfileSpec"), specAttributes);
  EXPECT_EQ(tableOf(kNs + "SetLagMemberSelectorActionProfileSpec"), specAttributes);
  const Vel::TypeRecord& derived =
      Vel::GenericIf::typeNamed(kNs + "SetLagMemberSelectorActionProfileSpec");
  const Vel::TypeRecord& base =
      Vel::GenericIf::typeNamed(kNs + "IngressMirrorLagGroupBaseActionProfileSpec");
  EXPECT_EQ(derived.base(), &base);
  EXPECT_EQ(base.base(), nullptr);
  // The derived spec serves no attribute itself: every call passes on to the base.
  EXPECT_EQ(derived.operations().attribute, nullptr);
  EXPECT_EQ(derived.operations().iterator, nullptr);
  EXPECT_EQ(derived.operations().iteratorAtKey, nullptr);
  EXPECT_EQ(derived.operations().notifiee, nullptr);
  // The inherited record stands at the place of the base's.
  const std::vector<const AttributeRecord*> all = derived.allAttributes();
  ASSERT_EQ(all.size(), 2u);
  EXPECT_EQ(&all[0]->owner(), &derived);
  EXPECT_EQ(&all[1]->owner(), &derived);

  const auto spec = Vel::allocate<SetLagMemberSelectorActionProfileSpec>();
  Vel::GenericIf specIf(spec);
  EXPECT_EQ(&specIf.attributeRecord("lagMemberSelector").owner(), &derived);
  specIf.attribute("lagMemberSelector", Vel::GenericIf::opWrite,
                   {Vel::BuiltinType<std::uint16_t>::value(33)});
  EXPECT_EQ(spec->lagMemberSelector(), 33u);
  // The base's own record serves the derived object too.
  EXPECT_EQ(specIf.attribute(*base.attribute("lagMemberSelector"), Vel::GenericIf::opRead)
                .get<std::uint16_t>(),
            33u);
}

TEST(AttributeTableTest, TableEntry) {
  EXPECT_EQ(tableOf(kNs + "IngressMirrorLagGroupTableEntry"),
            (std::vector<Attribute>{
                {"match", 2, kConstructorArg, kNs + "IngressMirrorLagGroupMatchSpec", ""},
                {"memberOrGroup", 3, kReadWrite | kConstructorArg,
                 kNs + "IngressMirrorLagGroupMemberOrGroupOrNone", ""}}));
  EXPECT_EQ(Vel::typeNode(kNs + "IngressMirrorLagGroupTableEntry")->base(), nullptr);
}

TEST(AttributeTableTest, ActionTypeIsAnEnumerationOfOneEnumerator) {
  const Vel::TypeRecord& type = Vel::GenericIf::typeNamed(kActionType);
  EXPECT_EQ(type.kind(), Vel::TypeRecord::Kind::enumeration);
  EXPECT_TRUE(type.attributes().empty());
  const auto* enumeration = dynamic_cast<const Vel::EnumType<unsigned int>*>(&type);
  ASSERT_NE(enumeration, nullptr);
  ASSERT_EQ(enumeration->enumerators().size(), 1u);
  EXPECT_EQ(enumeration->enumerators()[0].name, "setLagMemberSelectorActionProfileSpec");
  EXPECT_EQ(enumeration->enumerators()[0].value, 0u);
  const Vel::GenericValue value =
      Vel::GenericIf::valueFromText(kActionType, "'setLagMemberSelectorActionProfileSpec'");
  EXPECT_EQ(value.get<IngressMirrorLagGroupActionProfileType>(),
            setLagMemberSelectorActionProfileSpec);
  EXPECT_EQ(Vel::GenericIf(value).text(), "'setLagMemberSelectorActionProfileSpec'");
}

TEST(AttributeTableTest, MatchSpec) {
  EXPECT_EQ(tableOf(kNs + "IngressMirrorLagGroupMatchSpec"),
            (std::vector<Attribute>{{"ingMirrorMdMirrorSession", 130, kReadWrite, kU16, ""}}));
  const Vel::TypeRecord* base = Vel::typeNode(kNs + "IngressMirrorLagGroupMatchSpec")->base();
  ASSERT_NE(base, nullptr);
  EXPECT_EQ(base->name(), "BfnTable::MatchSpecBase");
  EXPECT_EQ(base->kind(), Vel::TypeRecord::Kind::object);
}

TEST(AttributeTableTest, StateMachineHasNoAttributeNumbered136) {
  EXPECT_EQ(tableOf(kNs + "IngressMirrorLagGroupActionProfileSm"),
            (std::vector<Attribute>{
                {"ingressMirrorLagGroupActionProfile", 130, kConstructorArg,
                 kNs + "IngressMirrorLagGroupActionProfile", ""},
                {"helper", 131, kConstructorArg, kNs + "IngressMirrorLagGroupTableHelper", ""},
                {"vaultKeyManager", 132, kConstructorArg, "MbbVaultKey::VaultKeyManager", ""},
                {"statusManager", 133, kConstructorArg, "BfnTableStatusManager::StatusManager", ""},
                {"sessionHandle", 134, kReadWrite, kU32, ""},
                {"actionProfile", 135, kCollection | kReadWrite,
                 kNs + "IngressMirrorLagGroupActionProfileEntry", "BfnTable::BfnMemberId"},
                {"group", 137, kCollection | kReadWrite, kNs + "IngressMirrorLagGroupGroup",
                 "BfnTable::BfnGroupId"}}));
  EXPECT_EQ(Vel::typeNode(kNs + "IngressMirrorLagGroupActionProfileSm")->base(), nullptr);
}

TEST(AttributeTableTest, ActionProfileEntry) {
  EXPECT_EQ(tableOf(kNs + "IngressMirrorLagGroupActionProfileEntry"),
            (std::vector<Attribute>{{"memberId", 258, kConstructorArg, "BfnTable::BfnMemberId", ""},
                                    {"action", 260, kReadWrite | kConstructorArg | kNotifying,
                                     kNs + "IngressMirrorLagGroupBaseActionProfileSpec", ""}}));
}

TEST(AttributeTableTest, MemberOrGroupOrNone) {
  EXPECT_EQ(tableOf(kNs + "IngressMirrorLagGroupMemberOrGroupOrNone"),
            (std::vector<Attribute>{{"id", 2, kConstructorArg, kU32, ""},
                                    {"member", 3, kConstructorArg, kBool, ""}}));
  EXPECT_EQ(Vel::typeNode(kNs + "IngressMirrorLagGroupMemberOrGroupOrNone")->base(), nullptr);
}

TEST(AttributeTableTest, Member) {
  EXPECT_EQ(tableOf(kNs + "IngressMirrorLagGroupMember"),
            (std::vector<Attribute>{{"memberId", 258, kConstructorArg, "BfnTable::BfnMemberId", ""},
                                    {"active", 259, kReadWrite | kNotifying, kBool, ""}}));
}

TEST(AttributeTableTest, TableHandles) {
  EXPECT_EQ(tableOf(kNs + "IngressMirrorLagGroupTableHandles"),
            (std::vector<Attribute>{
                {"entry", 258, kCollection | kReadWrite, kSdkHandle,
                 kNs + "IngressMirrorLagGroupMatchSpec"},
                {"group", 259, kCollection | kReadWrite, kSdkHandle, "BfnTable::BfnGroupId"},
                {"member", 260, kCollection | kReadWrite, kSdkHandle, "BfnTable::BfnMemberId"}}));
}

TEST(AttributeTableTest, TableHelper) {
  EXPECT_EQ(
      tableOf(kNs + "IngressMirrorLagGroupTableHelper"),
      (std::vector<Attribute>{
          {"deviceId", 130, kConstructorArg, kU8, ""},
          {"devPipeId", 131, kConstructorArg, kU16, ""},
          {"sdkHandles", 132, kPlain, kNs + "IngressMirrorLagGroupTableHandles", ""},
          {"pdLib", 133, kPlain, "BfPdIngressMirrorLagGroup::BfPdIngressMirrorLagGroupIntf", ""}}));
  EXPECT_EQ(Vel::typeNode(kNs + "IngressMirrorLagGroupTableHelper")->base(), nullptr);
}

TEST(AttributeTableTest, ActionProfile) {
  EXPECT_EQ(tableOf(kNs + "IngressMirrorLagGroupActionProfile"),
            (std::vector<Attribute>{
                {"group", 258, kCollection | kReadWrite | kNotifying,
                 kNs + "IngressMirrorLagGroupGroup", "BfnTable::BfnGroupId"},
                {"entry", 259, kCollection | kReadWrite | kNotifying,
                 kNs + "IngressMirrorLagGroupActionProfileEntry", "BfnTable::BfnMemberId"}}));
}

TEST(AttributeTableTest, Group) {
  EXPECT_EQ(
      tableOf(kNs + "IngressMirrorLagGroupGroup"),
      (std::vector<Attribute>{{"groupId", 258, kConstructorArg, "BfnTable::BfnGroupId", ""},
                              {"groupSize", 259, kConstructorArg, kU32, ""},
                              {"initialMemberId", 260, kConstructorArg, kU32, ""},
                              {"actionType", 261, kConstructorArg, kActionType, ""},
                              {"maxGroupSize", 262, kPlain, kU16, ""},
                              {"member", 263, kCollection | kReadWrite | kNotifying,
                               kNs + "IngressMirrorLagGroupMember", "BfnTable::BfnMemberId"}}));
}

TEST(AttributeTableTest, EntitiesHaveTheFrameworksEntityBase) {
  const Vel::TypeRecord& entity = Vel::entityType();
  for (const std::string& name : kEntities) {
    const Vel::TypeRecord& type = Vel::GenericIf::typeNamed(kNs + name);
    EXPECT_EQ(type.base(), &entity) << name;
    // The five attributes of every entity come from the base alone.
    for (unsigned number : {130u, 138u, 139u, 141u, 143u}) {
      const AttributeRecord* attribute = type.attribute(number);
      ASSERT_NE(attribute, nullptr) << name << " " << number;
      EXPECT_EQ(&attribute->owner(), &entity) << name << " " << number;
    }
    for (const char* inherited : {"name", "fullName", "parent", "parentAttrName", "entity"}) {
      const AttributeRecord* attribute = type.attribute(inherited);
      ASSERT_NE(attribute, nullptr) << name << " " << inherited;
      EXPECT_EQ(&attribute->owner(), &entity) << name << " " << inherited;
    }
  }
}

TEST(AttributeTableTest, GenericAccessFindsNameAndFullNameThroughTheBase) {
  const auto profile = Vel::allocate<IngressMirrorLagGroupActionProfile>("ingressMirrorLagGroup");
  const auto group =
      profile->groupIs(BfnTable::BfnGroupId(10), 4, 1, setLagMemberSelectorActionProfileSpec);
  const auto member = group->memberIs(BfnTable::BfnMemberId(1));
  Vel::GenericIf profileIf(profile);
  EXPECT_EQ(&profileIf.attributeRecord("name").owner(), &Vel::entityType());
  EXPECT_EQ(profileIf.attribute("name", Vel::GenericIf::opRead).get<Vel::Name>(),
            "ingressMirrorLagGroup");
  Vel::GenericIf memberIf(member);
  EXPECT_EQ(memberIf.attribute("name", Vel::GenericIf::opRead).get<Vel::Name>(), member->name());
  EXPECT_EQ(memberIf.attribute("fullName", Vel::GenericIf::opRead).get<Vel::Name>(),
            member->fullName());
  EXPECT_EQ(memberIf.attribute("parent", Vel::GenericIf::opRead).get<Vel::Ptr<const Vel::Entity>>(),
            group);
  EXPECT_EQ(
      Vel::GenericIf(group).attribute("parentAttrName", Vel::GenericIf::opRead).get<Vel::String>(),
      "group");
  EXPECT_EQ(memberIf.attribute("entity", Vel::GenericIf::opRead).get<Vel::Ptr<const Vel::Entity>>(),
            member);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
