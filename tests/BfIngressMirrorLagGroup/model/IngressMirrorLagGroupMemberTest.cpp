#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupMember.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "EntityTestSupport.h"
#include "Vel/BulkChange.h"
#include "Vel/NotifieeList.h"

namespace BfIngressMirrorLagGroup::EntityTesting {
namespace {

constexpr IngressMirrorLagGroupActionProfileType setLag = setLagMemberSelectorActionProfileSpec;

class IngressMirrorLagGroupMemberTest : public EntityTest {
 protected:
  void TearDown() override {
    member = nullptr;
    group = nullptr;
    EntityTest::TearDown();
  }

  Vel::Ptr<MemberRecorder> memberRecorder(const std::string& name) {
    return recorder<MemberRecorder>(name, member);
  }

  Vel::Ptr<Group> group = Vel::allocate<Group>(5, 8, 1, setLag);
  Vel::Ptr<Member> member = group->memberIs(7);
};

TEST_F(IngressMirrorLagGroupMemberTest, NewMemberIsActiveAndNamedAfterItsId) {
  const Vel::Ptr<Member> alone = Vel::allocate<Member>(9);
  EXPECT_EQ(alone->memberId().value(), 9u);
  EXPECT_EQ(alone->fwkKey().value(), 9u);
  EXPECT_TRUE(alone->active());
  EXPECT_EQ(alone->name(), "9");
  EXPECT_EQ(alone->parent(), nullptr);
  EXPECT_TRUE(alone->notifieeList()->empty());
}

TEST_F(IngressMirrorLagGroupMemberTest, ActiveIsTrueOnANewMemberNotifiesNothing) {
  const Vel::Ptr<MemberRecorder> a = memberRecorder("a");
  member->activeIs(true);
  EXPECT_TRUE(member->active());
  EXPECT_TRUE(log.empty());
}

TEST_F(IngressMirrorLagGroupMemberTest, ActiveIsNotifiesOnActiveOnlyWhenTheValueChanges) {
  const Vel::Ptr<MemberRecorder> a = memberRecorder("a");
  member->activeIs(false);
  EXPECT_FALSE(member->active());
  EXPECT_EQ(log, Log{"a.onActive()"});
  member->activeIs(false);
  EXPECT_EQ(log, Log{"a.onActive()"});
  member->activeIs(true);
  EXPECT_TRUE(member->active());
  EXPECT_EQ(log, (Log{"a.onActive()", "a.onActive()"}));
}

TEST_F(IngressMirrorLagGroupMemberTest, ActiveIsReachesEveryNotifieeAndNotTheGroups) {
  const Vel::Ptr<MemberRecorder> a = memberRecorder("a");
  const Vel::Ptr<MemberRecorder> b = memberRecorder("b");
  const Vel::Ptr<GroupRecorder> g = recorder<GroupRecorder>("g", group);
  member->activeIs(false);
  EXPECT_EQ(log, (Log{"a.onActive()", "b.onActive()"}));
}

TEST_F(IngressMirrorLagGroupMemberTest, NotifieeUnregisteringItselfLetsTheOthersBeCalled) {
  const Vel::Ptr<MemberRecorder> a = memberRecorder("a");
  const Vel::Ptr<MemberRecorder> b = memberRecorder("b");
  a->action = [&a](const std::string&) { a->isRegisteredNotifieeIs(false); };
  member->activeIs(false);
  member->activeIs(true);
  EXPECT_EQ(log, (Log{"a.onActive()", "b.onActive()", "b.onActive()"}));
}

TEST_F(IngressMirrorLagGroupMemberTest, NotifieeUnregisteringALaterOneLetsTheRestBeCalled) {
  const Vel::Ptr<MemberRecorder> a = memberRecorder("a");
  const Vel::Ptr<MemberRecorder> b = memberRecorder("b");
  const Vel::Ptr<MemberRecorder> c = memberRecorder("c");
  a->action = [&b](const std::string&) { b->isRegisteredNotifieeIs(false); };
  member->activeIs(false);
  EXPECT_EQ(log, (Log{"a.onActive()", "c.onActive()"}));
  EXPECT_FALSE(member->notifieeList()->isMember(b.get()));
}

TEST_F(IngressMirrorLagGroupMemberTest, NotifieeDestroyedByAnotherIsNotCalled) {
  const Vel::Ptr<MemberRecorder> a = memberRecorder("a");
  Vel::Ptr<MemberRecorder> b = memberRecorder("b");
  const Vel::Ptr<MemberRecorder> c = memberRecorder("c");
  a->action = [&b](const std::string&) { b = nullptr; };
  member->activeIs(false);
  EXPECT_EQ(log, (Log{"a.onActive()", "c.onActive()"}));
  EXPECT_EQ(member->notifieeList()->size(), 2u);
}

TEST_F(IngressMirrorLagGroupMemberTest, ActiveIsWithoutNotifieesStoresTheValue) {
  member->activeIs(false);
  EXPECT_FALSE(member->active());
  member->activeIs(true);
  EXPECT_TRUE(member->active());
}

// The new value is stored before the notifiees hear of it, and stays stored
// when one of them throws.
TEST_F(IngressMirrorLagGroupMemberTest, ExceptionFromANotifieeReachesTheCallerWithTheValueStored) {
  const Vel::Ptr<MemberRecorder> a = memberRecorder("a");
  bool seen = true;
  a->action = [&](const std::string&) {
    seen = member->active();
    throw std::runtime_error("refused");
  };
  EXPECT_THROW(member->activeIs(false), std::runtime_error);
  EXPECT_FALSE(seen);
  EXPECT_FALSE(member->active());
  EXPECT_EQ(log, Log{"a.onActive()"});
}

TEST_F(IngressMirrorLagGroupMemberTest, BulkChangeOfActiveEndsInOneOnActive) {
  const Vel::Ptr<MemberRecorder> a = memberRecorder("a");
  {
    Vel::BulkChange active(member, Member::activeAttribute);
    member->activeIs(false);
    member->activeIs(true);
    EXPECT_TRUE(log.empty());
  }
  EXPECT_EQ(log, Log{"a.onActive()"});
}

TEST_F(IngressMirrorLagGroupMemberTest, DeferredDeliveryDoesNotRepeatOnActive) {
  const Vel::Ptr<MemberRecorder> a = memberRecorder("a");
  a->deferredNotificationIs(true);
  member->activeIs(false);
  Vel::ActivityManager::instance().drain();
  EXPECT_EQ(log, Log{"a.onActive()"});
}

TEST_F(IngressMirrorLagGroupMemberTest, NotifieeFollowsOnlyAMember) {
  const Vel::Ptr<MemberRecorder> a = memberRecorder("a");
  EXPECT_EQ(a->notifier(), member);
  a->notifierIs(group);
  EXPECT_EQ(a->notifier(), nullptr);
  EXPECT_TRUE(member->notifieeList()->empty());
  const Vel::Ptr<Member> eight = group->memberIs(8);
  a->notifierIs(eight);
  EXPECT_TRUE(eight->notifieeList()->isMember(a.get()));
  member->activeIs(false);
  eight->activeIs(false);
  EXPECT_EQ(log, Log{"a.onActive()"});
  EXPECT_EQ(a->notifier(), eight);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup::EntityTesting
