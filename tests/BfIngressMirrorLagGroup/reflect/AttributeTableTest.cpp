#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "Vel/AttributeRecord.h"
#include "Vel/BuiltinType.h"
#include "Vel/EntityType.h"
#include "Vel/GenericIf.h"
#include "Vel/TypeNode.h"

namespace BfIngressMirrorLagGroup {
namespace {

using Vel::AttributeRecord;

// One attribute as its type's record lists it.
struct Attribute {
  std::string name;
  unsigned number;
  std::string type;
  bool collection;
  bool writable;

  bool operator==(const Attribute&) const = default;
};

void PrintTo(const Attribute& a, std::ostream* out) {
  *out << a.name << " " << a.number << " " << a.type << (a.collection ? " collection" : "")
       << (a.writable ? " rw" : "");
}

std::vector<Attribute> attributesOf(const std::string& typeName) {
  const Vel::TypeRecord* type = Vel::typeNode(typeName);
  EXPECT_NE(type, nullptr) << typeName;
  std::vector<Attribute> result;
  if (type == nullptr)
    return result;
  for (const AttributeRecord& a : type->attributes())
    result.push_back({a.name(), a.number(), a.type().name(), a.isCollection(), a.isReadWrite()});
  return result;
}

const std::string kNs = "BfIngressMirrorLagGroup::";
const std::string kU8 = Vel::BuiltinType<std::uint8_t>::instance().name();
const std::string kU16 = Vel::BuiltinType<std::uint16_t>::instance().name();
const std::string kU32 = Vel::BuiltinType<std::uint32_t>::instance().name();
const std::string kBool = Vel::BuiltinType<bool>::instance().name();

TEST(AttributeTableTest, TheMatchTable) {
  EXPECT_EQ(attributesOf(kNs + "IngressMirrorLagGroupTable"),
            (std::vector<Attribute>{
                {"helper", 258, kNs + "IngressMirrorLagGroupTableHelper", false, false},
                {"vaultKeyManager", 259, "MbbVaultKey::VaultKeyManager", false, false},
                {"statusManager", 260, "BfnTableStatusManager::StatusManager", false, false},
                {"defaultMatchSpec", 261, kNs + "IngressMirrorLagGroupMatchSpec", false, false},
                {"entry", 262, kNs + "IngressMirrorLagGroupTableEntry", true, true},
                {"entryByHandle", 263, kNs + "IngressMirrorLagGroupTableEntry", true, false}}));
}

TEST(AttributeTableTest, TheActionSpecs) {
  const std::vector<Attribute> expected{
      {"actionType", 130, kNs + "IngressMirrorLagGroupActionProfileType", false, true},
      {"lagMemberSelector", 131, kU16, false, true}};
  EXPECT_EQ(attributesOf(kNs + "IngressMirrorLagGroupBaseActionProfileSpec"), expected);
  EXPECT_EQ(attributesOf(kNs + "SetLagMemberSelectorActionProfileSpec"), expected);
  EXPECT_EQ(Vel::typeNode(kNs + "SetLagMemberSelectorActionProfileSpec")->base(),
            Vel::typeNode(kNs + "IngressMirrorLagGroupBaseActionProfileSpec"));
}

TEST(AttributeTableTest, TheValues) {
  EXPECT_EQ(
      attributesOf(kNs + "IngressMirrorLagGroupTableEntry"),
      (std::vector<Attribute>{
          {"match", 2, kNs + "IngressMirrorLagGroupMatchSpec", false, false},
          {"memberOrGroup", 3, kNs + "IngressMirrorLagGroupMemberOrGroupOrNone", false, true}}));
  EXPECT_EQ(
      attributesOf(kNs + "IngressMirrorLagGroupMemberOrGroupOrNone"),
      (std::vector<Attribute>{{"id", 2, kU32, false, false}, {"member", 3, kBool, false, false}}));
  EXPECT_EQ(attributesOf(kNs + "IngressMirrorLagGroupMatchSpec"),
            (std::vector<Attribute>{{"ingMirrorMdMirrorSession", 130, kU16, false, true}}));
}

TEST(AttributeTableTest, TheStateMachineSkipsNumber136) {
  EXPECT_EQ(attributesOf(kNs + "IngressMirrorLagGroupActionProfileSm"),
            (std::vector<Attribute>{
                {"ingressMirrorLagGroupActionProfile", 130,
                 kNs + "IngressMirrorLagGroupActionProfile", false, false},
                {"helper", 131, kNs + "IngressMirrorLagGroupTableHelper", false, false},
                {"vaultKeyManager", 132, "MbbVaultKey::VaultKeyManager", false, false},
                {"statusManager", 133, "BfnTableStatusManager::StatusManager", false, false},
                {"sessionHandle", 134, kU32, false, true},
                {"actionProfile", 135, kNs + "IngressMirrorLagGroupActionProfileEntry", true, true},
                {"group", 137, kNs + "IngressMirrorLagGroupGroup", true, true}}));
}

TEST(AttributeTableTest, TheEntitiesListTheirOwnAfterTheFrameworksFive) {
  EXPECT_EQ(attributesOf(kNs + "IngressMirrorLagGroupActionProfileEntry"),
            (std::vector<Attribute>{
                {"memberId", 258, "BfnTable::BfnMemberId", false, false},
                {"action", 260, kNs + "IngressMirrorLagGroupBaseActionProfileSpec", false, true}}));
  EXPECT_EQ(attributesOf(kNs + "IngressMirrorLagGroupMember"),
            (std::vector<Attribute>{{"memberId", 258, "BfnTable::BfnMemberId", false, false},
                                    {"active", 259, kBool, false, true}}));
  EXPECT_EQ(attributesOf(kNs + "IngressMirrorLagGroupGroup"),
            (std::vector<Attribute>{
                {"groupId", 258, "BfnTable::BfnGroupId", false, false},
                {"groupSize", 259, kU32, false, false},
                {"initialMemberId", 260, kU32, false, false},
                {"actionType", 261, kNs + "IngressMirrorLagGroupActionProfileType", false, false},
                {"maxGroupSize", 262, kU16, false, false},
                {"member", 263, kNs + "IngressMirrorLagGroupMember", true, true}}));
  EXPECT_EQ(attributesOf(kNs + "IngressMirrorLagGroupActionProfile"),
            (std::vector<Attribute>{
                {"group", 258, kNs + "IngressMirrorLagGroupGroup", true, true},
                {"entry", 259, kNs + "IngressMirrorLagGroupActionProfileEntry", true, true}}));
  EXPECT_EQ(attributesOf(kNs + "IngressMirrorLagGroupTableHandles"),
            (std::vector<Attribute>{{"entry", 258, kU32, true, true},
                                    {"group", 259, kU32, true, true},
                                    {"member", 260, kU32, true, true}}));
  for (const char* entity :
       {"IngressMirrorLagGroupActionProfileEntry", "IngressMirrorLagGroupMember",
        "IngressMirrorLagGroupGroup", "IngressMirrorLagGroupActionProfile",
        "IngressMirrorLagGroupTableHandles", "IngressMirrorLagGroupTable"}) {
    const Vel::TypeRecord* type = Vel::typeNode(kNs + entity);
    ASSERT_NE(type, nullptr);
    EXPECT_EQ(type->base(), &Vel::entityType()) << entity;
    // name, fullName, parent, parentAttrName and entity come from the base.
    for (unsigned number : {130u, 138u, 139u, 141u, 143u})
      EXPECT_NE(type->attribute(number), nullptr) << entity << " " << number;
  }
}

TEST(AttributeTableTest, TheHelper) {
  EXPECT_EQ(attributesOf(kNs + "IngressMirrorLagGroupTableHelper"),
            (std::vector<Attribute>{
                {"deviceId", 130, kU8, false, false},
                {"devPipeId", 131, kU16, false, false},
                {"sdkHandles", 132, kNs + "IngressMirrorLagGroupTableHandles", false, false},
                {"pdLib", 133, "BfPdIngressMirrorLagGroup::BfPdIngressMirrorLagGroupIntf", false,
                 false}}));
}

TEST(AttributeTableTest, TheActionTypeHasOneEnumerator) {
  const auto& type = ingressMirrorLagGroupActionProfileTypeRecord();
  EXPECT_EQ(type.kind(), Vel::TypeRecord::Kind::enumeration);
  ASSERT_EQ(type.enumerators().size(), 1u);
  EXPECT_EQ(type.enumerators()[0].name, "setLagMemberSelectorActionProfileSpec");
  EXPECT_EQ(type.enumerators()[0].value, 0u);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
