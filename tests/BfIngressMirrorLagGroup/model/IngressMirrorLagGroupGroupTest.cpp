#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupGroup.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "EntityTestSupport.h"
#include "Vel/BulkChange.h"
#include "Vel/NotifieeList.h"

namespace BfIngressMirrorLagGroup::EntityTesting {
namespace {

constexpr IngressMirrorLagGroupActionProfileType setLag = setLagMemberSelectorActionProfileSpec;

class IngressMirrorLagGroupGroupTest : public EntityTest {
 protected:
  void TearDown() override {
    group = nullptr;
    EntityTest::TearDown();
  }

  Vel::Ptr<GroupRecorder> groupRecorder(const std::string& name) {
    return recorder<GroupRecorder>(name, group);
  }

  Vel::Ptr<Group> group = Vel::allocate<Group>(5, 8, 1, setLag);
};

TEST_F(IngressMirrorLagGroupGroupTest, NewGroupHoldsItsValuesIsNamedAfterItsIdAndIsEmpty) {
  EXPECT_EQ(group->groupId().value(), 5u);
  EXPECT_EQ(group->fwkKey().value(), 5u);
  EXPECT_EQ(group->groupSize(), 8u);
  EXPECT_EQ(group->initialMemberId(), 1u);
  EXPECT_EQ(group->actionType(), setLag);
  EXPECT_EQ(group->name(), "5");
  EXPECT_EQ(group->fullName(), "5");
  EXPECT_EQ(group->parent(), nullptr);
  EXPECT_EQ(group->members(), 0u);
  EXPECT_EQ(group->member(7), nullptr);
  EXPECT_TRUE(group->notifieeList()->empty());
  EXPECT_FALSE(group->memberIteratorConst().valid());
}

TEST_F(IngressMirrorLagGroupGroupTest, MaxGroupSizeIsAlways120) {
  EXPECT_EQ(group->maxGroupSize(), 120u);
  for (unsigned size : {0u, 1u, 120u, 121u, 4096u, 0xffffffffu})
    EXPECT_EQ(Vel::allocate<Group>(1, size, 1, setLag)->maxGroupSize(), 120u) << size;
}

TEST_F(IngressMirrorLagGroupGroupTest, MemberIsCreatesAnActiveMemberUnderTheGroupAndNotifies) {
  const Vel::Ptr<GroupRecorder> a = groupRecorder("a");
  const Vel::Ptr<Member> seven = group->memberIs(7);
  ASSERT_NE(seven, nullptr);
  EXPECT_EQ(seven->memberId().value(), 7u);
  EXPECT_TRUE(seven->active());
  EXPECT_EQ(seven->parent(), group);
  EXPECT_EQ(seven->parentAttrName(), "member");
  EXPECT_EQ(seven->parentAttrNumber(), 263u);
  EXPECT_EQ(seven->fullName(), "5/member/7");
  EXPECT_EQ(group->member(7), seven);
  EXPECT_EQ(group->members(), 1u);
  EXPECT_EQ(log, Log{"a.onMember(7)"});
}

TEST_F(IngressMirrorLagGroupGroupTest, MemberUnderAGroupOfTheProfileHasTheFullPathAsName) {
  const Vel::Ptr<Profile> profile = Vel::allocate<Profile>("ingressMirrorLagGroup");
  const Vel::Ptr<Group> held = profile->groupIs(5, 8, 1, setLag);
  EXPECT_EQ(held->memberIs(7)->fullName(), "ingressMirrorLagGroup/group/5/member/7");
}

TEST_F(IngressMirrorLagGroupGroupTest, MemberIsTwiceWithOneIdReturnsTheSameMemberAndNotifiesOnce) {
  const Vel::Ptr<GroupRecorder> a = groupRecorder("a");
  const Vel::Ptr<Member> first = group->memberIs(7);
  const Vel::Ptr<Member> second = group->memberIs(7);
  EXPECT_EQ(first, second);
  EXPECT_EQ(group->members(), 1u);
  EXPECT_EQ(log, Log{"a.onMember(7)"});
}

TEST_F(IngressMirrorLagGroupGroupTest, MemberIsOfAnExistingMemberLeavesItsActiveFlag) {
  group->memberIs(7)->activeIs(false);
  EXPECT_FALSE(group->memberIs(7)->active());
}

TEST_F(IngressMirrorLagGroupGroupTest, MemberDelReturnsTheMemberWithItsParentClearedAndNotifies) {
  const Vel::Ptr<Member> seven = group->memberIs(7);
  group->memberIs(8);
  const Vel::Ptr<GroupRecorder> a = groupRecorder("a");
  const Vel::Ptr<Member> removed = group->memberDel(7);
  EXPECT_EQ(removed, seven);
  EXPECT_EQ(removed->parent(), nullptr);
  EXPECT_EQ(removed->fullName(), "7");
  EXPECT_EQ(group->member(7), nullptr);
  EXPECT_EQ(group->members(), 1u);
  EXPECT_EQ(log, Log{"a.onMember(7)"});
}

TEST_F(IngressMirrorLagGroupGroupTest, MemberDelOfAnAbsentIdIsNullAndNotifiesNothing) {
  group->memberIs(7);
  const Vel::Ptr<GroupRecorder> a = groupRecorder("a");
  EXPECT_EQ(group->memberDel(8), nullptr);
  EXPECT_EQ(group->members(), 1u);
  EXPECT_TRUE(log.empty());
}

TEST_F(IngressMirrorLagGroupGroupTest, MemberDelAllRemovesAndAnnouncesEveryMember) {
  Log expected;
  for (std::uint32_t id = 0; id < 10; ++id) {
    group->memberIs(id);
    expected.push_back(keyed("a.onMember", id));
  }
  const Vel::Ptr<GroupRecorder> a = groupRecorder("a");
  group->memberDelAll();
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(sortedFrom(0), expected);
  EXPECT_EQ(group->members(), 0u);
  EXPECT_EQ(alive<Member>(), 0u);
}

TEST_F(IngressMirrorLagGroupGroupTest, MemberDelAllOfAnEmptyGroupNotifiesNothing) {
  const Vel::Ptr<GroupRecorder> a = groupRecorder("a");
  group->memberDelAll();
  EXPECT_TRUE(log.empty());
}

TEST_F(IngressMirrorLagGroupGroupTest, IteratorsVisitEveryMemberOnce) {
  std::set<std::uint32_t> expected;
  for (std::uint32_t id = 100; id < 120; ++id) {
    group->memberIs(id);
    expected.insert(id);
  }
  std::set<std::uint32_t> visited;
  for (auto it = group->memberIterator(); it.valid(); ++it)
    visited.insert(it.ptr()->memberId());
  std::set<std::uint32_t> visitedConst;
  const Group& constGroup = *group;
  for (auto it = constGroup.memberIteratorConst(); it.valid(); ++it)
    visitedConst.insert(it.key());
  EXPECT_EQ(visited, expected);
  EXPECT_EQ(visitedConst, expected);
  EXPECT_EQ(constGroup.member(100), group->member(100));
}

TEST_F(IngressMirrorLagGroupGroupTest, DestroyingAGroupWithNMembersNotifiesOnMemberNTimesFirst) {
  for (std::uint32_t id = 1; id <= 4; ++id)
    group->memberIs(id);
  const Vel::Ptr<GroupRecorder> a = listedRecorder<GroupRecorder>("a", *group);
  group = nullptr;
  EXPECT_EQ(alive<Group>(), 0u);
  EXPECT_EQ(alive<Member>(), 0u);
  ASSERT_EQ(log.size(), 5u);
  EXPECT_EQ(log[0], "a.onZeroReferences()");
  EXPECT_EQ(sortedFrom(1),
            (Log{"a.onMember(1)", "a.onMember(2)", "a.onMember(3)", "a.onMember(4)"}));
}

TEST_F(IngressMirrorLagGroupGroupTest, MemberHeldElsewhereOutlivesItsGroupWithoutParent) {
  const Vel::Ptr<Member> seven = group->memberIs(7);
  group = nullptr;
  EXPECT_EQ(seven->parent(), nullptr);
  EXPECT_EQ(seven->fullName(), "7");
}

TEST_F(IngressMirrorLagGroupGroupTest, NotifieeUnregisteringItselfLetsTheOthersBeCalled) {
  const Vel::Ptr<GroupRecorder> a = groupRecorder("a");
  const Vel::Ptr<GroupRecorder> b = groupRecorder("b");
  a->action = [&a](const std::string&) { a->isRegisteredNotifieeIs(false); };
  group->memberIs(7);
  group->memberDel(7);
  EXPECT_EQ(log, (Log{"a.onMember(7)", "b.onMember(7)", "b.onMember(7)"}));
}

TEST_F(IngressMirrorLagGroupGroupTest, NotifieeUnregisteredByAnotherIsNotCalled) {
  const Vel::Ptr<GroupRecorder> a = groupRecorder("a");
  const Vel::Ptr<GroupRecorder> b = groupRecorder("b");
  const Vel::Ptr<GroupRecorder> c = groupRecorder("c");
  a->action = [&b](const std::string&) { b->isRegisteredNotifieeIs(false); };
  group->memberIs(7);
  EXPECT_EQ(log, (Log{"a.onMember(7)", "c.onMember(7)"}));
}

TEST_F(IngressMirrorLagGroupGroupTest, ImmediateKeylessFormComesFromABulkChange) {
  const Vel::Ptr<GroupRecorder> a = groupRecorder("a");
  {
    Vel::BulkChange members(group, Group::memberAttribute);
    group->memberIs(7);
    group->memberIs(8);
    EXPECT_TRUE(log.empty());
  }
  EXPECT_EQ(log, Log{"a.onMembervelImmediate()"});
}

TEST_F(IngressMirrorLagGroupGroupTest, DeferredKeylessFormComesFromTheActivityManager) {
  const Vel::Ptr<GroupRecorder> a = groupRecorder("a");
  a->deferredNotificationIs(true);
  group->memberIs(7);
  group->memberIs(8);
  EXPECT_EQ(Vel::ActivityManager::instance().drain(), 1u);
  EXPECT_EQ(log, (Log{"a.onMember(7)", "a.onMember(8)", "a.onMember()"}));
}

TEST_F(IngressMirrorLagGroupGroupTest, NotifieeFollowsOnlyAGroupAndMovesItsRegistration) {
  const Vel::Ptr<GroupRecorder> a = groupRecorder("a");
  EXPECT_EQ(a->notifier(), group);
  const Vel::Ptr<Group> other = Vel::allocate<Group>(6, 8, 1, setLag);
  a->notifierIs(other);
  EXPECT_TRUE(group->notifieeList()->empty());
  EXPECT_TRUE(other->notifieeList()->isMember(a.get()));
  a->notifierIs(Vel::allocate<Member>(7));
  EXPECT_EQ(a->notifier(), nullptr);
  EXPECT_TRUE(other->notifieeList()->empty());
  other->memberIs(1);
  a->notifierIs(group);
  group->memberIs(2);
  EXPECT_EQ(log, Log{"a.onMember(2)"});
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup::EntityTesting
