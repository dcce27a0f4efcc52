#include <gtest/gtest.h>

#include <string>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "Vel/Allocate.h"
#include "Vel/RangeException.h"

namespace BfIngressMirrorLagGroup {
namespace {

// The message of the RangeException that `run` raises; empty when it raises none.
template <class Run>
std::string rangeMessage(Run run) {
  try {
    run();
  } catch (const Vel::RangeException& e) {
    return e.what();
  }
  return "";
}

// Reading and setting attributes by a path of names, from a configured action
// profile and a state machine made on no chip.
class AttributePathByNameTest : public testing::Test {
 protected:
  void SetUp() override {
    auto action = Vel::allocate<SetLagMemberSelectorActionProfileSpec>();
    action->lagMemberSelectorIs(500);
    profile->entryIs(
        Vel::allocate<IngressMirrorLagGroupActionProfileEntry>(BfnTable::BfnMemberId(5), action));
    profile->groupIs(BfnTable::BfnGroupId(10), 8, 5, setLagMemberSelectorActionProfileSpec)
        ->memberIs(BfnTable::BfnMemberId(5));
  }

  Vel::Ptr<IngressMirrorLagGroupActionProfile> profile =
      Vel::allocate<IngressMirrorLagGroupActionProfile>("ingressMirrorLagGroup");
  Vel::Ptr<IngressMirrorLagGroupTableHelper> helper = ingressMirrorLagGroupTableHelperFactory(3, 2);
  Vel::Ptr<IngressMirrorLagGroupActionProfileSm> sm =
      IngressMirrorLagGroupActionProfileSm::IngressMirrorLagGroupActionProfileSmIs(
          nullptr, helper, nullptr, nullptr);
};

TEST_F(AttributePathByNameTest, ReadsPlainAttributesAndThroughObjects) {
  EXPECT_EQ(AttributePath::get(sm, "sessionHandle"), "0");
  EXPECT_EQ(AttributePath::get(sm, "helper/deviceId"), "3");
  EXPECT_EQ(AttributePath::get(sm, "helper/devPipeId"), "2");
  EXPECT_EQ(AttributePath::get(profile, "name"), "'ingressMirrorLagGroup'");
}

TEST_F(AttributePathByNameTest, ReadsThroughCollectionElements) {
  EXPECT_EQ(AttributePath::get(profile, "entry[5]/action/lagMemberSelector"), "500");
  EXPECT_EQ(AttributePath::get(profile, "group[10]/groupSize"), "8");
  EXPECT_EQ(AttributePath::get(profile, "group[10]/maxGroupSize"), "120");
  EXPECT_EQ(AttributePath::get(profile, "group[10]/member[5]/active"), "True");
}

TEST_F(AttributePathByNameTest, SetsThroughTheMutators) {
  AttributePath::set(sm, "sessionHandle", "42");
  EXPECT_EQ(sm->sessionHandle(), 42u);
  AttributePath::set(profile, "group[10]/member[5]/active", "False");
  EXPECT_FALSE(
      profile->group(BfnTable::BfnGroupId(10))->member(BfnTable::BfnMemberId(5))->active());
  AttributePath::set(profile, "entry[5]/action/lagMemberSelector", "7");
  EXPECT_EQ(profile->entry(BfnTable::BfnMemberId(5))->action()->lagMemberSelector(), 7u);
}

TEST_F(AttributePathByNameTest, RefusesWhatItCannotFindOrRead) {
  EXPECT_EQ(rangeMessage([&] { AttributePath::get(sm, "sessionHandel"); }),
            "Attribute path 'sessionHandel': type "
            "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm has no attribute "
            "'sessionHandel'");
  EXPECT_EQ(rangeMessage([&] { AttributePath::get(profile, "entry[6]/memberId"); }),
            "Attribute path 'entry[6]/memberId': 'entry[6]' is absent");
  EXPECT_EQ(rangeMessage([&] { AttributePath::get(profile, "entry/memberId"); }),
            "Attribute path 'entry/memberId': 'entry' is a collection: give a key");
  EXPECT_EQ(rangeMessage([&] { AttributePath::set(profile, "group[10]/groupSize", "9"); }),
            "Attribute path 'group[10]/groupSize': 'groupSize' cannot be set");
  const std::string parse = rangeMessage([&] { AttributePath::set(sm, "sessionHandle", "x"); });
  EXPECT_EQ(parse.rfind("Attribute path 'sessionHandle': 'x' is not a value of ", 0), 0u) << parse;
  EXPECT_EQ(sm->sessionHandle(), 0u);
  EXPECT_EQ(rangeMessage([&] { AttributePath::get(profile, "entry[x]/memberId"); })
                .rfind("Attribute path 'entry[x]/memberId': 'x' is not a value of "
                       "BfnTable::BfnMemberId",
                       0),
            0u);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
