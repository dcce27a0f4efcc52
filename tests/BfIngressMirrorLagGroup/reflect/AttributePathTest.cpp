#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "BfIngressMirrorLagGroup/model/SetLagMemberSelectorActionProfileSpec.h"
#include "ReflectFixture.h"
#include "Vel/Allocate.h"
#include "Vel/ParseException.h"
#include "Vel/RangeException.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

// The message of the refusal that `run` raises: a RangeException, or a
// ParseException marked as such; "no exception" when it raises none.
template <class Run>
std::string refusal(Run run) {
  try {
    run();
  } catch (const Vel::RangeException& e) {
    return e.message();
  } catch (const Vel::ParseException& e) {
    return "ParseException: " + e.message();
  }
  return "no exception";
}

// Attributes read and set by a path of names from the state machine and from
// the profile it follows on the fixture's chip: member 5 (selector 500) and
// member 6 (selector 600), group 10 of size 8 holding member 5.
class AttributePathTest : public ReflectFixture {
 protected:
  void SetUp() override {
    ReflectFixture::SetUp();
    makeSm();
    memberIs(5, 500);
    memberIs(6, 600);
    groupIs(10, 8, 5);
  }

  std::string get(const Vel::Ptr<const Vel::PtrInterface>& root, std::string_view path) {
    return AttributePath::get(root, path);
  }
};

TEST_F(AttributePathTest, ReadsAnAttributeOfTheRoot) {
  EXPECT_EQ(get(sm, "sessionHandle"), "9");
  EXPECT_EQ(get(profile, "name"), "'ingressMirrorLagGroup'");
}

TEST_F(AttributePathTest, ReadsThroughObjects) {
  EXPECT_EQ(get(sm, "helper/deviceId"), "3");
  EXPECT_EQ(get(sm, "helper/devPipeId"), "2");
  EXPECT_EQ(get(sm, "ingressMirrorLagGroupActionProfile/name"), "'ingressMirrorLagGroup'");
}

TEST_F(AttributePathTest, ReadsThroughCollectionElementsByKey) {
  EXPECT_EQ(get(profile, "entry[5]/memberId"), "5");
  EXPECT_EQ(get(profile, "entry[5]/action/lagMemberSelector"), "500");
  EXPECT_EQ(get(profile, "entry[6]/action/lagMemberSelector"), "600");
  EXPECT_EQ(get(profile, "entry[5]/action/actionType"), "'setLagMemberSelectorActionProfileSpec'");
  EXPECT_EQ(get(profile, "group[10]/groupSize"), "8");
  EXPECT_EQ(get(profile, "group[10]/maxGroupSize"), "120");
  EXPECT_EQ(get(profile, "group[10]/member[5]/active"), "True");
  EXPECT_EQ(get(sm, "ingressMirrorLagGroupActionProfile/group[10]/initialMemberId"), "5");
  EXPECT_EQ(get(sm, "helper/sdkHandles/member[5]"), std::to_string(memberHandle(5)));
  EXPECT_EQ(get(sm, "actionProfile[6]/action/lagMemberSelector"), "600");
}

TEST_F(AttributePathTest, SessionHandleSetByNameIsTheSessionOfTheNextModify) {
  AttributePath::set(sm, "sessionHandle", "42");
  EXPECT_EQ(sm->sessionHandle(), 42u);
  EXPECT_EQ(get(sm, "sessionHandle"), "42");
  startLog();
  profile->entry(BfnTable::BfnMemberId(6))->actionIs(selectorAction(601));
  EXPECT_THAT(logLines(), ElementsAre(modifyMemberLine(memberHandle(6), 601, 42)));
}

TEST_F(AttributePathTest, SettingActiveGoesThroughActiveIsAndIsProgrammed) {
  const auto member = profile->group(BfnTable::BfnGroupId(10))->member(BfnTable::BfnMemberId(5));
  const auto recorder = Vel::allocate<RawRecorder>();
  const auto adapter = Vel::GenericIf(member).notifieeIs(recorder);
  startLog();
  AttributePath::set(profile, "group[10]/member[5]/active", "False");
  EXPECT_FALSE(member->active());
  EXPECT_EQ(get(profile, "group[10]/member[5]/active"), "False");
  EXPECT_THAT(recorder->seen, ElementsAre("259"));
  EXPECT_THAT(logLines(), ElementsAre(memberStateLine(groupHandle(10), memberHandle(5), 1)));
}

TEST_F(AttributePathTest, AttributesOfASharedObjectCannotBeSetInPlace) {
  startLog();
  EXPECT_EQ(refusal([&] { AttributePath::set(profile, "entry[5]/action/lagMemberSelector", "7"); }),
            "Attribute path 'entry[5]/action/lagMemberSelector': 'lagMemberSelector' cannot be "
            "set in place: 'action' is shared by its holder, which would not hear of it");
  EXPECT_EQ(profile->entry(BfnTable::BfnMemberId(5))->action()->lagMemberSelector(), 500u);
  EXPECT_EQ(get(profile, "entry[5]/action/lagMemberSelector"), "500");
  EXPECT_THAT(logLines(), IsEmpty());
}

TEST_F(AttributePathTest, UnknownNamesAreRefusedByName) {
  EXPECT_EQ(refusal([&] { get(sm, "sessionHandel"); }),
            "Attribute path 'sessionHandel': type "
            "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm has no attribute "
            "'sessionHandel'");
  EXPECT_EQ(
      refusal([&] { get(sm, "helper/deviceID"); }),
      "Attribute path 'helper/deviceID': type "
      "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableHelper has no attribute 'deviceID'");
  EXPECT_EQ(
      refusal([&] { get(profile, "entries[5]/memberId"); }),
      "Attribute path 'entries[5]/memberId': type "
      "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfile has no attribute 'entries'");
  EXPECT_EQ(refusal([&] { AttributePath::set(sm, "sessionHandel", "1"); }),
            "Attribute path 'sessionHandel': type "
            "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm has no attribute "
            "'sessionHandel'");
}

TEST_F(AttributePathTest, AbsentElementsAndNullReferencesAreRefused) {
  EXPECT_EQ(refusal([&] { get(profile, "entry[7]/memberId"); }),
            "Attribute path 'entry[7]/memberId': 'entry[7]' is absent");
  EXPECT_EQ(refusal([&] { get(profile, "group[10]/member[6]/active"); }),
            "Attribute path 'group[10]/member[6]/active': 'member[6]' is absent");
  EXPECT_EQ(refusal([&] { get(sm, "vaultKeyManager/name"); }),
            "Attribute path 'vaultKeyManager/name': 'vaultKeyManager' is absent");
  EXPECT_EQ(refusal([&] { get(nullptr, "name"); }),
            "Attribute path 'name': no object to start from");
}

TEST_F(AttributePathTest, KeysMustBeGivenForCollectionsAndOnlyForThem) {
  EXPECT_EQ(refusal([&] { get(profile, "entry/memberId"); }),
            "Attribute path 'entry/memberId': 'entry' is a collection: give a key");
  EXPECT_EQ(refusal([&] { get(profile, "entry"); }),
            "Attribute path 'entry': 'entry' is a collection: give a key");
  EXPECT_EQ(refusal([&] { get(sm, "helper[1]/deviceId"); }),
            "Attribute path 'helper[1]/deviceId': 'helper' is not a collection");
  EXPECT_THAT(refusal([&] { get(profile, "entry[5/memberId"); }),
              StartsWith("Attribute path 'entry[5/memberId': "));
  EXPECT_THAT(refusal([&] { get(profile, "entry[x]/memberId"); }),
              StartsWith("Attribute path 'entry[x]/memberId': 'x' is not a value of "
                         "BfnTable::BfnMemberId"));
}

TEST_F(AttributePathTest, EmptyStepsAreRefused) {
  EXPECT_EQ(refusal([&] { get(sm, ""); }), "Attribute path '': an empty attribute name");
  EXPECT_EQ(refusal([&] { get(sm, "helper//deviceId"); }),
            "Attribute path 'helper//deviceId': an empty attribute name");
  EXPECT_EQ(refusal([&] { get(sm, "helper/"); }),
            "Attribute path 'helper/': an empty attribute name");
}

TEST_F(AttributePathTest, ReadOnlyAttributesAndCollectionsCannotBeSet) {
  EXPECT_EQ(refusal([&] { AttributePath::set(profile, "group[10]/groupSize", "9"); }),
            "Attribute path 'group[10]/groupSize': 'groupSize' cannot be set");
  EXPECT_EQ(refusal([&] { AttributePath::set(sm, "helper/deviceId", "4"); }),
            "Attribute path 'helper/deviceId': 'deviceId' cannot be set");
  EXPECT_EQ(refusal([&] { AttributePath::set(profile, "entry[5]/memberId", "4"); }),
            "Attribute path 'entry[5]/memberId': 'memberId' cannot be set");
  EXPECT_EQ(profile->group(BfnTable::BfnGroupId(10))->groupSize(), 8u);
  EXPECT_EQ(helper->deviceId(), kDevice);
}

TEST_F(AttributePathTest, ValuesThatDoNotParseAreRefusedAndChangeNothing) {
  EXPECT_THAT(refusal([&] { AttributePath::set(sm, "sessionHandle", "x"); }),
              StartsWith("Attribute path 'sessionHandle': 'x' is not a value of uint32_t"));
  EXPECT_THAT(refusal([&] { AttributePath::set(sm, "sessionHandle", "42 "); }),
              StartsWith("Attribute path 'sessionHandle': '42 ' is not a value of uint32_t"));
  EXPECT_THAT(refusal([&] { AttributePath::set(sm, "sessionHandle", ""); }),
              StartsWith("Attribute path 'sessionHandle': '' is not a value of uint32_t"));
  EXPECT_EQ(sm->sessionHandle(), kSmSession);
  EXPECT_THAT(refusal([&] { AttributePath::set(profile, "group[10]/member[5]/active", "maybe"); }),
              StartsWith("Attribute path 'group[10]/member[5]/active': 'maybe' is not a value of "
                         "bool"));
  EXPECT_TRUE(profile->group(BfnTable::BfnGroupId(10))->member(BfnTable::BfnMemberId(5))->active());
}

TEST_F(AttributePathTest, SetsAnAttributeOfAnObjectThatIsTheRoot) {
  const auto spec = Vel::allocate<SetLagMemberSelectorActionProfileSpec>();
  AttributePath::set(spec, "lagMemberSelector", "7");
  EXPECT_EQ(spec->lagMemberSelector(), 7u);
  EXPECT_EQ(get(spec, "lagMemberSelector"), "7");
}

TEST_F(AttributePathTest, NumbersOutOfTheAttributesRangeAreRefused) {
  const auto spec = Vel::allocate<SetLagMemberSelectorActionProfileSpec>();
  spec->lagMemberSelectorIs(500);
  EXPECT_THAT(refusal([&] { AttributePath::set(spec, "lagMemberSelector", "65536"); }),
              StartsWith("Attribute path 'lagMemberSelector': '65536' is not a value of uint16_t"));
  EXPECT_EQ(spec->lagMemberSelector(), 500u);
  EXPECT_THAT(
      refusal([&] { AttributePath::set(sm, "sessionHandle", "4294967296"); }),
      StartsWith("Attribute path 'sessionHandle': '4294967296' is not a value of uint32_t"));
  EXPECT_THAT(refusal([&] { AttributePath::set(sm, "sessionHandle", "-1"); }),
              HasSubstr("is not a value of uint32_t"));
  EXPECT_EQ(profile->entry(BfnTable::BfnMemberId(5))->action()->lagMemberSelector(), 500u);
  EXPECT_EQ(sm->sessionHandle(), kSmSession);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
