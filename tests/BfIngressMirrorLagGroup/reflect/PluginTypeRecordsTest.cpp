#include <gtest/gtest.h>

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

TEST(PluginTypeRecordsTest, EveryTypeIsRegisteredOnceInItsOrder) {
  std::vector<std::string> registered;
  for (const Vel::TypeRecord* type : Vel::typeNodes()) {
    if (type->name().rfind("BfIngressMirrorLagGroup::", 0) == 0)
      registered.push_back(type->name());
  }
  EXPECT_EQ(registered, kTypes);
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
