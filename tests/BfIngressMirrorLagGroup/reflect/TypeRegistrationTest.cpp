#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "Vel/Allocate.h"
#include "Vel/GenericIf.h"
#include "Vel/TypeNode.h"
#include "Vel/TypeRecord.h"

namespace BfIngressMirrorLagGroup {
namespace {

using Kind = Vel::TypeRecord::Kind;

// The plug-in's types, in the order the library registers them when it loads,
// with the kind each is registered as.
const std::vector<std::pair<std::string, Kind>> kTypes = {
    {"BfIngressMirrorLagGroup::IngressMirrorLagGroupGroup", Kind::entity},
    {"BfIngressMirrorLagGroup::IngressMirrorLagGroupBaseActionProfileSpec", Kind::object},
    {"BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfile", Kind::entity},
    {"BfIngressMirrorLagGroup::IngressMirrorLagGroupTableHelper", Kind::object},
    {"BfIngressMirrorLagGroup::IngressMirrorLagGroupTableHandles", Kind::entity},
    {"BfIngressMirrorLagGroup::IngressMirrorLagGroupMember", Kind::entity},
    {"BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone", Kind::value},
    {"BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileEntry", Kind::entity},
    {"BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm", Kind::object},
    {"BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec", Kind::object},
    {"BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileType", Kind::enumeration},
    {"BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry", Kind::value},
    {"BfIngressMirrorLagGroup::SetLagMemberSelectorActionProfileSpec", Kind::object},
    {"BfIngressMirrorLagGroup::IngressMirrorLagGroupTable", Kind::entity},
};

// How often each of the plug-in's names stands in the registry, in kTypes order.
std::vector<int> occurrences() {
  const std::vector<const Vel::TypeRecord*> all = Vel::typeNodes();
  std::vector<int> counts;
  for (const auto& [name, kind] : kTypes) {
    counts.push_back(static_cast<int>(
        std::count_if(all.begin(), all.end(),
                      [&name = name](const Vel::TypeRecord* t) { return t->name() == name; })));
  }
  return counts;
}

// True when the plug-in's names stand in the registry in kTypes order (other
// names may stand between them).
bool inLoadOrder() {
  const std::vector<const Vel::TypeRecord*> all = Vel::typeNodes();
  auto from = all.begin();
  for (const auto& [name, kind] : kTypes) {
    from = std::find_if(from, all.end(),
                        [&name = name](const Vel::TypeRecord* t) { return t->name() == name; });
    if (from == all.end())
      return false;
    ++from;
  }
  return true;
}

const std::vector<int> kOnceEach(kTypes.size(), 1);

TEST(TypeRegistrationTest, LoadingThePluginRegistersItsFourteenTypesOnceInOrder) {
  EXPECT_EQ(occurrences(), kOnceEach);
  EXPECT_TRUE(inLoadOrder());
}

TEST(TypeRegistrationTest, ThePluginRegistersNoOtherNameOfItsNamespace) {
  std::vector<std::string> registered;
  for (const Vel::TypeRecord* type : Vel::typeNodes()) {
    if (type->name().rfind("BfIngressMirrorLagGroup::", 0) == 0)
      registered.push_back(type->name());
  }
  std::vector<std::string> expected;
  for (const auto& [name, kind] : kTypes)
    expected.push_back(name);
  EXPECT_EQ(registered, expected);
}

TEST(TypeRegistrationTest, EachNameFindsARecordOfThatNameAndKind) {
  for (const auto& [name, kind] : kTypes) {
    const Vel::TypeRecord* type = Vel::typeNode(name);
    ASSERT_NE(type, nullptr) << name;
    EXPECT_EQ(type->name(), name);
    EXPECT_EQ(type->kind(), kind) << name;
    EXPECT_EQ(&Vel::GenericIf::typeNamed(name), type);
  }
}

TEST(TypeRegistrationTest, ObjectsAreReachedThroughTheRecordRegisteredForTheirClass) {
  const auto spec = Vel::allocate<SetLagMemberSelectorActionProfileSpec>();
  const auto entry = Vel::allocate<IngressMirrorLagGroupActionProfileEntry>(
      BfnTable::BfnMemberId(1), Vel::Ptr<const IngressMirrorLagGroupBaseActionProfileSpec>(spec));
  const auto profile = Vel::allocate<IngressMirrorLagGroupActionProfile>("profile");
  const auto group =
      profile->groupIs(BfnTable::BfnGroupId(2), 4, 1, setLagMemberSelectorActionProfileSpec);
  const auto member = group->memberIs(BfnTable::BfnMemberId(1));
  const auto helper = ingressMirrorLagGroupTableHelperFactory(0, 0);
  helper->sdkHandlesIs();
  const auto sm = IngressMirrorLagGroupActionProfileSm::IngressMirrorLagGroupActionProfileSmIs(
      nullptr, helper, nullptr, nullptr);
  const std::vector<std::pair<std::string, const Vel::TypeRecord*>> reached = {
      {"SetLagMemberSelectorActionProfileSpec", &Vel::GenericIf(spec).type()},
      {"IngressMirrorLagGroupBaseActionProfileSpec",
       &Vel::GenericIf(Vel::allocate<IngressMirrorLagGroupBaseActionProfileSpec>()).type()},
      {"IngressMirrorLagGroupActionProfileEntry", &Vel::GenericIf(entry).type()},
      {"IngressMirrorLagGroupActionProfile", &Vel::GenericIf(profile).type()},
      {"IngressMirrorLagGroupGroup", &Vel::GenericIf(group).type()},
      {"IngressMirrorLagGroupMember", &Vel::GenericIf(member).type()},
      {"IngressMirrorLagGroupTableHelper", &Vel::GenericIf(helper).type()},
      {"IngressMirrorLagGroupTableHandles", &Vel::GenericIf(helper->sdkHandles()).type()},
      {"IngressMirrorLagGroupActionProfileSm", &Vel::GenericIf(sm).type()},
      {"IngressMirrorLagGroupMatchSpec",
       &Vel::GenericIf(Vel::allocate<IngressMirrorLagGroupMatchSpec>()).type()},
  };
  for (const auto& [name, type] : reached)
    EXPECT_EQ(type, Vel::typeNode("BfIngressMirrorLagGroup::" + name)) << name;
}

TEST(TypeRegistrationTest, LoadingTheLibraryAgainRegistersNothingTwice) {
  const std::size_t before = Vel::typeNodes().size();
  void* first = dlopen(PLUGIN_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(first, nullptr) << dlerror();
  void* second = dlopen(PLUGIN_LIBRARY, RTLD_NOW | RTLD_GLOBAL);
  ASSERT_NE(second, nullptr) << dlerror();
  EXPECT_EQ(occurrences(), kOnceEach);
  EXPECT_EQ(Vel::typeNodes().size(), before);
  EXPECT_EQ(dlclose(second), 0);
  EXPECT_EQ(dlclose(first), 0);
  EXPECT_EQ(occurrences(), kOnceEach);

  void* again = dlopen(PLUGIN_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(again, nullptr) << dlerror();
  EXPECT_EQ(occurrences(), kOnceEach);
  EXPECT_TRUE(inLoadOrder());
  EXPECT_EQ(Vel::typeNodes().size(), before);
  // The records still answer after the library was closed and opened again.
  EXPECT_EQ(Vel::GenericIf::typeNamed("BfIngressMirrorLagGroup::IngressMirrorLagGroupTable").name(),
            "BfIngressMirrorLagGroup::IngressMirrorLagGroupTable");
  EXPECT_EQ(dlclose(again), 0);
  EXPECT_EQ(occurrences(), kOnceEach);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
