#include <gtest/gtest.h>

#include <dlfcn.h>

#include <string>
#include <vector>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "Vel/TypeNode.h"
#include "Vel/TypeRecord.h"

namespace BfIngressMirrorLagGroup {
namespace {

// The plug-in's types in the order the library registers them when it loads.
const std::vector<std::string> kTypes = {
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupGroup",
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupBaseActionProfileSpec",
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfile",
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableHelper",
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableHandles",
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupMember",
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone",
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileEntry",
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm",
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec",
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileType",
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry",
    "BfIngressMirrorLagGroup::SetLagMemberSelectorActionProfileSpec",
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTable",
};

// The plug-in's registered names, in registration order.
std::vector<std::string> registeredPluginTypes() {
  std::vector<std::string> registered;
  for (const Vel::TypeRecord* type : Vel::typeNodes()) {
    if (type->name().rfind("BfIngressMirrorLagGroup::", 0) == 0)
      registered.push_back(type->name());
  }
  return registered;
}

TEST(PluginTypeRecordsTest, EveryTypeIsRegisteredOnceInItsOrder) {
  EXPECT_EQ(registeredPluginTypes(), kTypes);
}

TEST(PluginTypeRecordsTest, LoadingTheLibraryAgainRegistersNothingTwice) {
  void* first = dlopen(PLUGIN_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(first, nullptr) << dlerror();
  void* second = dlopen(PLUGIN_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(second, nullptr) << dlerror();
  EXPECT_EQ(dlclose(second), 0);
  EXPECT_EQ(dlclose(first), 0);
  void* again = dlopen(PLUGIN_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(again, nullptr) << dlerror();
  EXPECT_EQ(registeredPluginTypes(), kTypes);
  EXPECT_NE(dlsym(again, "ingressMirrorLagGroupActionProfileFactory"), nullptr);
  dlclose(again);
}

TEST(PluginTypeRecordsTest, EachObjectAnswersItsRegisteredRecord) {
  EXPECT_EQ(Vel::typeNode("BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec"),
            &IngressMirrorLagGroupMatchSpec::typeRecord());
  EXPECT_EQ(Vel::typeNode("BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileType"),
            &ingressMirrorLagGroupActionProfileTypeRecord());
  EXPECT_EQ(Vel::typeNode("BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry"),
            &IngressMirrorLagGroupTableEntry::typeRecord());
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
