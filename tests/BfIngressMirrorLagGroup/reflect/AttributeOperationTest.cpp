#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "ReflectFixture.h"
#include "Vel/ActivityManager.h"
#include "Vel/Allocate.h"
#include "Vel/EntityNotifieeConst.h"
#include "Vel/OperationNotSupportedException.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using Vel::GenericIf;
using Vel::GenericValue;
using Codes = std::vector<std::string>;

constexpr unsigned kLastCodeTried = 15;
// The chip's state of a member that may not be selected.
constexpr int kInactive = 1;

// Writes down what one code did: nothing when it raised
// OperationNotSupportedException, its number when it answered, and the number
// with the message of any other exception.
template <class Run>
void tryCode(unsigned op, Codes* answered, Run run) {
  try {
    run();
    answered->push_back(std::to_string(op));
  } catch (const Vel::OperationNotSupportedException&) {
  } catch (const std::exception& e) {
    answered->push_back(std::to_string(op) + " raised " + e.what());
  }
}

// The codes from 0 to kLastCodeTried, but those in `skipped`, that the
// attribute answers when asked with `args`.
Codes codesAnswered(GenericIf& object, std::string_view name, const Vel::GenericArgs& args,
                    const std::vector<unsigned>& skipped = {}) {
  Codes answered;
  for (unsigned op = 0; op <= kLastCodeTried; ++op) {
    if (std::find(skipped.begin(), skipped.end(), op) == skipped.end())
      tryCode(op, &answered, [&] { object.attribute(name, op, args); });
  }
  return answered;
}

// The codes that the value itself answers when asked with `args`.
Codes valueCodesAnswered(GenericIf& value, const Vel::GenericArgs& args) {
  Codes answered;
  for (unsigned op = 0; op <= kLastCodeTried; ++op)
    tryCode(op, &answered, [&] { value.valueOperation(op, args); });
  return answered;
}

bool isDefault(const GenericValue& value) {
  return GenericIf(value).valueOperation(GenericIf::opIsDefault).get<bool>();
}

bool equal(const GenericValue& a, const GenericValue& b) {
  return GenericIf(a).valueOperation(GenericIf::opEqual, {b}).get<bool>();
}

const char* const kMemberOrGroup =
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupMemberOrGroupOrNone";
const char* const kTableEntry = "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry";

GenericValue memberOrGroup(std::uint32_t id, bool member) {
  return GenericIf::valueFromArgs(kMemberOrGroup, {u32(id), boolean(member)});
}

// A plain observer of an entity: takes every notification in its key-less,
// deferred form and notes the attribute number.
class PlainEntityNotifiee : public Vel::Entity::NotifieeConst {
 public:
  void handleNotification(unsigned attributeNumber, Vel::NotificationKind) override {
    seen.push_back(attributeNumber);
  }
  std::vector<unsigned> seen;
};

Vel::Ptr<PlainEntityNotifiee> plainNotifieeOn(const Vel::Ptr<const Vel::Entity>& entity) {
  auto notifiee = Vel::allocate<PlainEntityNotifiee>();
  notifiee->deferredNotificationIs(true);
  notifiee->notifierIs(entity);
  notifiee->isRegisteredNotifieeIs(true);
  return notifiee;
}

// Which reflective operation codes each attribute of the plug-in answers, and
// what they do: reads, writes through the mutators (notified, and programmed
// into the chip by a following state machine), and the operations of the two
// value types themselves.
class AttributeOperationTest : public ReflectFixture {};

TEST_F(AttributeOperationTest, MatchSessionIsReadAndWritten) {
  const auto match = Vel::allocate<IngressMirrorLagGroupMatchSpec>();
  GenericIf matchIf(match);
  EXPECT_THAT(codesAnswered(matchIf, "ingMirrorMdMirrorSession", {u16(0)}), ElementsAre("0", "1"));
  matchIf.attribute("ingMirrorMdMirrorSession", GenericIf::opWrite, {u16(515)});
  EXPECT_EQ(match->ingMirrorMdMirrorSession(), 515u);
  const GenericValue read = matchIf.attribute("ingMirrorMdMirrorSession", GenericIf::opRead);
  EXPECT_EQ(read.get<std::uint16_t>(), 515u);
  EXPECT_EQ(read.type()->name(), "uint16_t");
}

TEST_F(AttributeOperationTest, ActionSpecAttributesAreReadAndWritten) {
  const auto derived = Vel::allocate<SetLagMemberSelectorActionProfileSpec>();
  const auto base = Vel::allocate<IngressMirrorLagGroupBaseActionProfileSpec>();
  for (GenericIf specIf : {GenericIf(derived), GenericIf(base)}) {
    EXPECT_THAT(codesAnswered(specIf, "actionType", {selectorActionType()}), ElementsAre("0", "1"))
        << specIf.type().name();
    EXPECT_THAT(codesAnswered(specIf, "lagMemberSelector", {u16(0)}), ElementsAre("0", "1"))
        << specIf.type().name();
    specIf.attribute("lagMemberSelector", GenericIf::opWrite, {u16(4242)});
    EXPECT_EQ(specIf.attribute("lagMemberSelector", GenericIf::opRead).get<std::uint16_t>(), 4242u);
    specIf.attribute("actionType", GenericIf::opWrite, {selectorActionType()});
    EXPECT_EQ(GenericIf(specIf.attribute("actionType", GenericIf::opRead)).text(),
              "'setLagMemberSelectorActionProfileSpec'");
  }
  EXPECT_EQ(derived->lagMemberSelector(), 4242u);
  EXPECT_EQ(base->lagMemberSelector(), 4242u);
}

TEST_F(AttributeOperationTest, MemberOrGroupIsReadOnlyAndAnswersDefaultAndEquality) {
  GenericIf valueIf(memberOrGroup(5, true));
  EXPECT_THAT(codesAnswered(valueIf, "id", {u32(5)}), ElementsAre("0"));
  EXPECT_THAT(codesAnswered(valueIf, "member", {boolean(true)}), ElementsAre("0"));
  EXPECT_EQ(valueIf.attribute("id", GenericIf::opRead).get<std::uint32_t>(), 5u);
  EXPECT_TRUE(valueIf.attribute("member", GenericIf::opRead).get<bool>());
  EXPECT_THAT(valueCodesAnswered(valueIf, {memberOrGroup(5, true)}), ElementsAre("9", "10"));

  // The default is none: id 0 and not a member.
  EXPECT_TRUE(isDefault(memberOrGroup(0, false)));
  EXPECT_FALSE(isDefault(memberOrGroup(0, true)));
  EXPECT_FALSE(isDefault(memberOrGroup(5, false)));
  EXPECT_TRUE(equal(memberOrGroup(5, true), memberOrGroup(5, true)));
  EXPECT_FALSE(equal(memberOrGroup(5, true), memberOrGroup(5, false)));
  EXPECT_FALSE(equal(memberOrGroup(5, true), memberOrGroup(6, true)));
}

TEST_F(AttributeOperationTest, TableEntryMatchIsReadOnlyItsTargetReadAndWritten) {
  const auto match = Vel::allocate<IngressMirrorLagGroupMatchSpec>();
  const GenericValue matchRef(IngressMirrorLagGroupMatchSpec::typeRecord(),
                              Vel::Ptr<const IngressMirrorLagGroupMatchSpec>(match));
  const GenericValue entry =
      GenericIf::valueFromArgs(kTableEntry, {matchRef, memberOrGroup(5, true)});
  GenericIf entryIf(entry);
  EXPECT_THAT(codesAnswered(entryIf, "match", {matchRef}), ElementsAre("0"));
  EXPECT_THAT(codesAnswered(entryIf, "memberOrGroup", {memberOrGroup(5, true)}),
              ElementsAre("0", "1"));
  EXPECT_THAT(valueCodesAnswered(entryIf, {entry}), ElementsAre("9", "10"));
  EXPECT_EQ(entryIf.attribute("match", GenericIf::opRead).object(), match);

  // A write changes the copy held by the access, not the value it was made from.
  entryIf.attribute("memberOrGroup", GenericIf::opWrite, {memberOrGroup(10, false)});
  EXPECT_TRUE(
      equal(entryIf.attribute("memberOrGroup", GenericIf::opRead), memberOrGroup(10, false)));
  EXPECT_EQ(entryIf.self().get<IngressMirrorLagGroupTableEntry>().memberOrGroup(),
            IngressMirrorLagGroupMemberOrGroupOrNone(10, false));
  EXPECT_EQ(entry.get<IngressMirrorLagGroupTableEntry>().memberOrGroup(),
            IngressMirrorLagGroupMemberOrGroupOrNone(5, true));
}

TEST_F(AttributeOperationTest, TableEntryIsDefaultWhenEmptyAndEqualsByItsMatchObject) {
  const auto match = Vel::allocate<IngressMirrorLagGroupMatchSpec>();
  const auto sameSession = Vel::allocate<IngressMirrorLagGroupMatchSpec>();
  auto valueOf = [](const Vel::Ptr<IngressMirrorLagGroupMatchSpec>& m, std::uint32_t id,
                    bool member) {
    const IngressMirrorLagGroupTableEntry entry(
        m, IngressMirrorLagGroupMemberOrGroupOrNone(id, member));
    return GenericIf::valueFromRawPtr(kTableEntry, &entry);
  };
  EXPECT_TRUE(isDefault(valueOf(nullptr, 0, false)));
  EXPECT_FALSE(isDefault(valueOf(match, 0, false)));
  EXPECT_FALSE(isDefault(valueOf(nullptr, 1, true)));
  EXPECT_TRUE(equal(valueOf(match, 1, true), valueOf(match, 1, true)));
  EXPECT_FALSE(equal(valueOf(match, 1, true), valueOf(match, 1, false)));
  // Entries tell their keys apart by the match object, not by its session.
  EXPECT_FALSE(equal(valueOf(match, 1, true), valueOf(sameSession, 1, true)));
}

TEST_F(AttributeOperationTest, MemberIdIsReadOnlyActiveWrittenThroughActiveIsAndNotified) {
  makeSm();
  memberIs(1, 100);
  const auto group = groupIs(10, 4, 1);
  const auto member = group->member(BfnTable::BfnMemberId(1));
  ASSERT_NE(member, nullptr);
  GenericIf memberIf(member);
  EXPECT_THAT(codesAnswered(memberIf, "memberId", {keyOf(GenericIf(group), "member", "1")}),
              ElementsAre("0"));
  EXPECT_THAT(codesAnswered(memberIf, "active", {boolean(true)}), ElementsAre("0", "1"));
  EXPECT_EQ(GenericIf(memberIf.attribute("memberId", GenericIf::opRead)).text(), "1");

  const auto plain = plainNotifieeOn(member);
  const auto recorder = Vel::allocate<RawRecorder>();
  const auto adapter = memberIf.notifieeIs(recorder);
  startLog();
  memberIf.attribute("active", GenericIf::opWrite, {boolean(false)});
  EXPECT_FALSE(member->active());
  EXPECT_FALSE(memberIf.attribute("active", GenericIf::opRead).get<bool>());
  EXPECT_THAT(recorder->seen, ElementsAre("259"));
  EXPECT_THAT(logLines(),
              ElementsAre(memberStateLine(groupHandle(10), memberHandle(1), kInactive)));
  Vel::ActivityManager::instance().drain();
  EXPECT_THAT(plain->seen, ElementsAre(259u));
  // The same value again changes nothing and tells nobody.
  memberIf.attribute("active", GenericIf::opWrite, {boolean(false)});
  Vel::ActivityManager::instance().drain();
  EXPECT_THAT(recorder->seen, ElementsAre("259"));
  EXPECT_THAT(plain->seen, ElementsAre(259u));
  plain->isRegisteredNotifieeIs(false);
}

TEST_F(AttributeOperationTest, EntryActionIsWrittenThroughActionIsAndReprogrammed) {
  makeSm();
  const auto entry = memberIs(1, 100);
  GenericIf entryIf(entry);
  EXPECT_THAT(codesAnswered(entryIf, "memberId", {keyOf(GenericIf(profile), "entry", "1")}),
              ElementsAre("0"));
  EXPECT_THAT(codesAnswered(entryIf, "action", {entryIf.attribute("action", GenericIf::opRead)}),
              ElementsAre("0", "1"));
  EXPECT_EQ(GenericIf(entryIf.attribute("memberId", GenericIf::opRead)).text(), "1");

  const auto recorder = Vel::allocate<RawRecorder>();
  const auto adapter = entryIf.notifieeIs(recorder);
  const auto plain = plainNotifieeOn(entry);
  startLog();
  const auto action = selectorAction(77);
  entryIf.attribute(
      "action", GenericIf::opWrite,
      {GenericValue(IngressMirrorLagGroupBaseActionProfileSpec::typeRecord(), action)});
  EXPECT_EQ(entry->action(), action);
  EXPECT_EQ(entryIf.attribute("action", GenericIf::opRead).object(), action);
  EXPECT_THAT(recorder->seen, ElementsAre("260"));
  EXPECT_THAT(logLines(), ElementsAre(modifyMemberLine(memberHandle(1), 77)));
  Vel::ActivityManager::instance().drain();
  EXPECT_THAT(plain->seen, ElementsAre(260u));
  plain->isRegisteredNotifieeIs(false);
}

TEST_F(AttributeOperationTest, GroupScalarsAreReadOnly) {
  const auto group = groupIs(10, 500, 3);
  GenericIf groupIf(group);
  for (const char* name :
       {"groupId", "groupSize", "initialMemberId", "actionType", "maxGroupSize"}) {
    const GenericValue current = groupIf.attribute(name, GenericIf::opRead);
    EXPECT_THAT(codesAnswered(groupIf, name, {current}), ElementsAre("0")) << name;
  }
  EXPECT_EQ(GenericIf(groupIf.attribute("groupId", GenericIf::opRead)).text(), "10");
  EXPECT_EQ(groupIf.attribute("groupSize", GenericIf::opRead).get<std::uint32_t>(), 500u);
  EXPECT_EQ(groupIf.attribute("initialMemberId", GenericIf::opRead).get<std::uint32_t>(), 3u);
  EXPECT_EQ(groupIf.attribute("actionType", GenericIf::opRead)
                .get<IngressMirrorLagGroupActionProfileType>(),
            setLagMemberSelectorActionProfileSpec);
  // The chip's cap, whatever size is configured.
  EXPECT_EQ(groupIf.attribute("maxGroupSize", GenericIf::opRead).get<std::uint16_t>(), 120u);
  EXPECT_EQ(GenericIf(groupIs(11, 2, 3))
                .attribute("maxGroupSize", GenericIf::opRead)
                .get<std::uint16_t>(),
            120u);
}

TEST_F(AttributeOperationTest, CollectionsAnswerCodesZeroToFive) {
  makeSm();
  memberIs(1, 100);
  const auto group = groupIs(10, 4, 1);
  GenericIf profileIf(profile);
  GenericIf groupIf(group);
  // Code 1 creates and is tried in the collection suite; here every key is absent.
  EXPECT_THAT(codesAnswered(profileIf, "group", {keyOf(profileIf, "group", "99")}, {1}),
              ElementsAre("0", "2", "3", "4", "5"));
  EXPECT_THAT(codesAnswered(profileIf, "entry", {keyOf(profileIf, "entry", "99")}, {1}),
              ElementsAre("0", "2", "3", "4", "5"));
  EXPECT_THAT(codesAnswered(groupIf, "member", {keyOf(groupIf, "member", "99")}, {1}),
              ElementsAre("0", "2", "3", "4", "5"));
  GenericIf smIf(sm);
  EXPECT_THAT(codesAnswered(smIf, "actionProfile", {keyOf(smIf, "actionProfile", "99")}, {1}),
              ElementsAre("0", "2", "3", "4", "5"));
  EXPECT_THAT(codesAnswered(smIf, "group", {keyOf(smIf, "group", "99")}, {1}),
              ElementsAre("0", "2", "3", "4", "5"));
  EXPECT_EQ(profile->entries(), 1u);
  EXPECT_EQ(profile->groups(), 1u);
  EXPECT_EQ(group->members(), 1u);
}

TEST_F(AttributeOperationTest, SessionHandleWrittenIsTheSessionOfTheNextModify) {
  makeSm();
  const auto entry = memberIs(1, 100);
  GenericIf smIf(sm);
  EXPECT_THAT(codesAnswered(smIf, "sessionHandle", {u32(kSmSession)}), ElementsAre("0", "1"));
  EXPECT_EQ(smIf.attribute("sessionHandle", GenericIf::opRead).get<std::uint32_t>(), kSmSession);
  smIf.attribute("sessionHandle", GenericIf::opWrite, {u32(42)});
  EXPECT_EQ(sm->sessionHandle(), 42u);
  EXPECT_EQ(smIf.attribute("sessionHandle", GenericIf::opRead).get<std::uint32_t>(), 42u);
  startLog();
  entry->actionIs(selectorAction(101));
  EXPECT_THAT(logLines(), ElementsAre(modifyMemberLine(memberHandle(1), 101, 42)));
  smIf.attribute("sessionHandle", GenericIf::opWrite, {u32(kSmSession)});
}

TEST_F(AttributeOperationTest, StateMachinePartsAreReadOnly) {
  makeSm();
  GenericIf smIf(sm);
  for (const char* name :
       {"ingressMirrorLagGroupActionProfile", "helper", "vaultKeyManager", "statusManager"}) {
    const GenericValue current = smIf.attribute(name, GenericIf::opRead);
    EXPECT_THAT(codesAnswered(smIf, name, {current}), ElementsAre("0")) << name;
  }
  EXPECT_EQ(smIf.attribute("ingressMirrorLagGroupActionProfile", GenericIf::opRead).object(),
            profile);
  EXPECT_EQ(smIf.attribute("helper", GenericIf::opRead).object(), helper);
  EXPECT_TRUE(smIf.attribute("vaultKeyManager", GenericIf::opRead).isNull());
  EXPECT_TRUE(smIf.attribute("statusManager", GenericIf::opRead).isNull());
}

TEST_F(AttributeOperationTest, HelperPartsAreReadOnly) {
  GenericIf helperIf(helper);
  for (const char* name : {"deviceId", "devPipeId", "sdkHandles", "pdLib"}) {
    const GenericValue current = helperIf.attribute(name, GenericIf::opRead);
    EXPECT_THAT(codesAnswered(helperIf, name, {current}), ElementsAre("0")) << name;
  }
  EXPECT_EQ(helperIf.attribute("deviceId", GenericIf::opRead).get<std::uint8_t>(), kDevice);
  EXPECT_EQ(helperIf.attribute("devPipeId", GenericIf::opRead).get<std::uint16_t>(), kPipe);
  EXPECT_EQ(helperIf.attribute("sdkHandles", GenericIf::opRead).object(), helper->sdkHandles());
  EXPECT_EQ(helperIf.attribute("pdLib", GenericIf::opRead).object(), helper->pdLib());
  EXPECT_FALSE(helperIf.attribute("pdLib", GenericIf::opRead).isNull());
}

TEST_F(AttributeOperationTest, HandleRegistryMapsAreReadAndEditedByKey) {
  makeSm();
  memberIs(1, 100);
  groupIs(10, 4, 1);
  GenericIf handlesIf(helper->sdkHandles());
  EXPECT_EQ(handlesIf.attribute("member", GenericIf::opRead, {keyOf(handlesIf, "member", "1")})
                .get<std::uint32_t>(),
            memberHandle(1));
  EXPECT_EQ(handlesIf.attribute("group", GenericIf::opRead, {keyOf(handlesIf, "group", "10")})
                .get<std::uint32_t>(),
            groupHandle(10));
  EXPECT_EQ(handlesIf.attribute("member", GenericIf::opSize).get<std::uint32_t>(), 1u);
  EXPECT_TRUE(handlesIf.attribute("group", GenericIf::opContains, {keyOf(handlesIf, "group", "10")})
                  .get<bool>());
  EXPECT_FALSE(
      handlesIf.attribute("group", GenericIf::opContains, {keyOf(handlesIf, "group", "11")})
          .get<bool>());
  EXPECT_THAT(codesAnswered(handlesIf, "member", {keyOf(handlesIf, "member", "99")}, {1}),
              ElementsAre("0", "2", "3", "4", "5"));
  EXPECT_EQ(handlesIf.attribute("entry", GenericIf::opSize).get<std::uint32_t>(), 0u);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
