#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "Vel/Allocate.h"
#include "Vel/BuiltinType.h"
#include "Vel/GenericIf.h"
#include "Vel/GenericIterator.h"
#include "Vel/GenericNotifiee.h"
#include "Vel/OperationNotSupportedException.h"
#include "Vel/UnhashableTypeException.h"
#include "support/ChipsimLibrary.h"
#include "support/PdFunctionNames.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using Vel::GenericIf;
using Vel::GenericValue;

GenericValue u32(std::uint32_t v) {
  return Vel::BuiltinType<std::uint32_t>::value(v);
}
GenericValue memberId(std::uint32_t v) {
  return GenericValue(IngressMirrorLagGroupMember::typeRecord().attribute("memberId")->type(),
                      BfnTable::BfnMemberId(v));
}
GenericValue groupId(std::uint32_t v) {
  return GenericValue(IngressMirrorLagGroupGroup::typeRecord().attribute("groupId")->type(),
                      BfnTable::BfnGroupId(v));
}

// Notes every raw notification it gets: "259" or "258 key=10".
class RecordingNotifiee : public Vel::GenericNotifiee {
 public:
  void onRawAttribute(unsigned number, const GenericValue* key) override {
    seen.push_back(std::to_string(number) +
                   (key != nullptr ? " key=" + GenericIf(*key).text() : std::string()));
  }
  std::vector<std::string> seen;
};

// The state machine on a private chip (device 0, all pipes, session 1) and
// the profile it follows, edited and read through the framework's reflection.
class ReflectiveOperationTest : public testing::Test {
 protected:
  void SetUp() override {
    chipsim_config config{};
    chip.configDefault(&config);
    ASSERT_EQ(chip.configure(&config), 0);
    ASSERT_EQ(chip.attach(nullptr), 0);
    chipHandle = dlopen(CHIPSIM_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(chipHandle, nullptr);
    helper = ingressMirrorLagGroupTableHelperFactory(0, 0xFFFF);
    helper->pdLibIs(CHIPSIM_LIBRARY, chipHandle, 1);
    helper->sdkHandlesIs();
    sm = IngressMirrorLagGroupActionProfileSm::IngressMirrorLagGroupActionProfileSmIs(
        profile, helper, nullptr, nullptr);
  }
  void TearDown() override {
    profile->groupDelAll();
    profile->entryDelAll();
    sm = nullptr;
    dlclose(chipHandle);
  }

  Vel::Ptr<IngressMirrorLagGroupActionProfileEntry> entryOf(std::uint32_t id,
                                                            std::uint16_t selector) {
    auto action = Vel::allocate<SetLagMemberSelectorActionProfileSpec>();
    action->lagMemberSelectorIs(selector);
    return Vel::allocate<IngressMirrorLagGroupActionProfileEntry>(BfnTable::BfnMemberId(id),
                                                                  action);
  }

  std::vector<std::string> log() const {
    std::vector<std::string> lines;
    for (std::uint32_t i = 0; i < chip.logCount(); ++i)
      lines.emplace_back(chip.logLine(i));
    return lines;
  }

  const chipsim_test::ChipsimLibrary& chip = chipsim_test::chipsim();
  void* chipHandle = nullptr;
  Vel::Ptr<IngressMirrorLagGroupTableHelper> helper;
  Vel::Ptr<IngressMirrorLagGroupActionProfile> profile =
      Vel::allocate<IngressMirrorLagGroupActionProfile>("ingressMirrorLagGroup");
  Vel::Ptr<IngressMirrorLagGroupActionProfileSm> sm;
};

TEST_F(ReflectiveOperationTest, CollectionsEditedReflectivelyProgramTheChip) {
  GenericIf profileIf(profile);
  const GenericValue entry =
      GenericValue(IngressMirrorLagGroupActionProfileEntry::typeRecord(), entryOf(1, 10));
  profileIf.attribute("entry", GenericIf::opWrite, {entry});
  EXPECT_EQ(chip.members(), 1u);
  EXPECT_TRUE(profileIf.attribute("entry", GenericIf::opContains, {memberId(1)}).get<bool>());
  EXPECT_EQ(profileIf.attribute("entry", GenericIf::opSize).get<std::uint32_t>(), 1u);
  profileIf.attribute("group", GenericIf::opWrite,
                      {groupId(10), u32(4), u32(1),
                       GenericValue(ingressMirrorLagGroupActionProfileTypeRecord(),
                                    setLagMemberSelectorActionProfileSpec)});
  EXPECT_EQ(chip.groups(), 1u);
  const auto group = profileIf.attribute("group", GenericIf::opRead, {groupId(10)});
  GenericIf groupIf(group);
  EXPECT_EQ(groupIf.attribute("maxGroupSize", GenericIf::opRead).get<std::uint16_t>(), 120u);
  EXPECT_EQ(groupIf.attribute("member", GenericIf::opSize).get<std::uint32_t>(), 1u);
  profileIf.attribute("group", GenericIf::opDelete, {groupId(10)});
  profileIf.attribute("entry", GenericIf::opDelete, {memberId(1)});
  EXPECT_EQ(chip.groups(), 0u);
  EXPECT_EQ(chip.members(), 0u);
}

TEST_F(ReflectiveOperationTest, WritesThroughMutatorsNotifyAndReprogram) {
  profile->entryIs(entryOf(1, 10));
  chip.logClear();
  GenericIf entryIf(profile->entry(BfnTable::BfnMemberId(1)));
  auto action = Vel::allocate<SetLagMemberSelectorActionProfileSpec>();
  action->lagMemberSelectorIs(77);
  entryIf.attribute(
      "action", GenericIf::opWrite,
      {GenericValue(IngressMirrorLagGroupBaseActionProfileSpec::typeRecord(),
                    Vel::Ptr<const IngressMirrorLagGroupBaseActionProfileSpec>(action))});
  const std::vector<std::string> lines = log();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].rfind(chipsim_test::kModifyMember + "(sess=0, ", 0), 0u) << lines[0];
  EXPECT_NE(lines[0].find("selector=77"), std::string::npos);
}

TEST_F(ReflectiveOperationTest, TheSessionHandleWrittenByNameIsTheNextModifysSession) {
  profile->entryIs(entryOf(1, 10));
  GenericIf(sm).attribute("sessionHandle", GenericIf::opWrite, {u32(42)});
  EXPECT_EQ(sm->sessionHandle(), 42u);
  chip.logClear();
  profile->entry(BfnTable::BfnMemberId(1))->actionIs(entryOf(1, 11)->action());
  ASSERT_EQ(log().size(), 1u);
  EXPECT_EQ(log()[0].rfind(chipsim_test::kModifyMember + "(sess=42, ", 0), 0u) << log()[0];
}

TEST_F(ReflectiveOperationTest, UnsupportedCodesRaiseOperationNotSupported) {
  profile->entryIs(entryOf(1, 10));
  profile->groupIs(BfnTable::BfnGroupId(10), 4, 1, setLagMemberSelectorActionProfileSpec);
  const auto member = profile->group(BfnTable::BfnGroupId(10))->member(BfnTable::BfnMemberId(1));
  GenericIf memberIf(member);
  EXPECT_THROW(memberIf.attribute("memberId", GenericIf::opWrite, {memberId(2)}),
               Vel::OperationNotSupportedException);
  EXPECT_THROW(memberIf.attribute("active", GenericIf::opDelete),
               Vel::OperationNotSupportedException);
  GenericIf groupIf(profile->group(BfnTable::BfnGroupId(10)));
  for (const char* name : {"groupId", "groupSize", "initialMemberId", "actionType", "maxGroupSize"})
    EXPECT_THROW(groupIf.attribute(name, GenericIf::opWrite, {u32(1)}),
                 Vel::OperationNotSupportedException)
        << name;
  EXPECT_THROW(groupIf.attribute("member", GenericIf::opEqual, {memberId(1)}),
               Vel::OperationNotSupportedException);
  const GenericValue value(IngressMirrorLagGroupMemberOrGroupOrNone::typeRecord(),
                           IngressMirrorLagGroupMemberOrGroupOrNone(5, true));
  EXPECT_THROW(GenericIf(value).attribute("id", GenericIf::opWrite, {u32(6)}),
               Vel::OperationNotSupportedException);
  EXPECT_THROW(GenericIf(sm).attribute("helper", GenericIf::opWrite, {}),
               Vel::OperationNotSupportedException);
}

TEST_F(ReflectiveOperationTest, CollectionsAreWalkedAndDeletedThroughTheMutator) {
  for (std::uint32_t id = 1; id <= 3; ++id)
    profile->entryIs(entryOf(id, static_cast<std::uint16_t>(10 + id)));
  GenericIf profileIf(profile);
  std::vector<std::string> keys;
  for (auto it = profileIf.iterator("entry"); it->valid(); it->advance())
    keys.push_back(GenericIf(it->key()).text());
  std::sort(keys.begin(), keys.end());
  EXPECT_THAT(keys, ElementsAre("1", "2", "3"));
  auto at = profileIf.iteratorAtKey("entry", memberId(2));
  ASSERT_TRUE(at->valid());
  EXPECT_EQ(GenericIf(at->key()).text(), "2");
  at->deleteCurrent();
  EXPECT_EQ(profile->entry(BfnTable::BfnMemberId(2)), nullptr);
  EXPECT_EQ(chip.members(), 2u);
}

TEST_F(ReflectiveOperationTest, GenericNotifieesHearTheAttributeNumbers) {
  const auto recorder = Vel::allocate<RecordingNotifiee>();
  const auto onProfile = GenericIf(profile).notifieeIs(recorder);
  profile->entryIs(entryOf(1, 10));
  profile->groupIs(BfnTable::BfnGroupId(10), 4, 1, setLagMemberSelectorActionProfileSpec);
  const auto group = profile->group(BfnTable::BfnGroupId(10));
  const auto onGroup = GenericIf(group).notifieeIs(recorder);
  const auto onEntry = GenericIf(profile->entry(BfnTable::BfnMemberId(1))).notifieeIs(recorder);
  const auto member = group->member(BfnTable::BfnMemberId(1));
  const auto onMember = GenericIf(member).notifieeIs(recorder);
  member->activeIs(false);
  profile->entry(BfnTable::BfnMemberId(1))->actionIs(entryOf(1, 12)->action());
  profile->entryIs(entryOf(2, 20));
  group->memberIs(BfnTable::BfnMemberId(2));
  EXPECT_THAT(recorder->seen,
              ElementsAre("259 key=1", "258 key=10", "259", "260", "259 key=2", "263 key=2"));
}

TEST_F(ReflectiveOperationTest, TheValueTypesAreBuiltFromTextArgsAndRawPointers) {
  const std::string text =
      "Value('BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone', ** {'id': 5, "
      "'member': True})";
  const auto name = "BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone";
  const GenericValue fromText = GenericIf::valueFromText(name, text);
  EXPECT_EQ(GenericIf(fromText).text(), text);
  EXPECT_EQ(fromText.get<IngressMirrorLagGroupMemberOrGroupOrNone>(),
            IngressMirrorLagGroupMemberOrGroupOrNone(5, true));
  EXPECT_ANY_THROW(GenericIf::valueFromText(name, text + " "));
  const GenericValue fromArgs =
      GenericIf::valueFromArgs(name, {u32(5), Vel::BuiltinType<bool>::value(true)});
  EXPECT_TRUE(GenericIf(fromArgs).valueOperation(GenericIf::opEqual, {fromText}).get<bool>());
  const IngressMirrorLagGroupMemberOrGroupOrNone none;
  EXPECT_TRUE(GenericIf(GenericIf::valueFromRawPtr(name, &none))
                  .valueOperation(GenericIf::opIsDefault)
                  .get<bool>());
  EXPECT_THROW(GenericIf(fromText).hash(), Vel::UnhashableTypeException);
  const IngressMirrorLagGroupTableEntry empty;
  const GenericValue entry = GenericIf::valueFromRawPtr(
      "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry", &empty);
  EXPECT_TRUE(GenericIf(entry).valueOperation(GenericIf::opIsDefault).get<bool>());
  EXPECT_THROW(GenericIf(entry).hash(), Vel::UnhashableTypeException);
  GenericIf entryIf(entry);
  entryIf.attribute("memberOrGroup", GenericIf::opWrite, {fromText});
  EXPECT_FALSE(entryIf.valueOperation(GenericIf::opIsDefault).get<bool>());
  EXPECT_THROW(entryIf.attribute("match", GenericIf::opWrite, {}),
               Vel::OperationNotSupportedException);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
