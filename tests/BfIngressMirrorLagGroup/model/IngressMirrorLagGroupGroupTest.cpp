#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupGroup.h"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>

#include "EntityTestSupport.h"
#include "Vel/BitReverse.h"
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

  // "<prefix>(<memberId>)" for every member, in the order in which the member
  // collection is walked.
  Log membersInOrder(const std::string& prefix) const {
    Log lines;
    for (auto it = group->memberIteratorConst(); it.valid(); ++it)
      lines.push_back(keyed(prefix.c_str(), it.key()));
    return lines;
  }

  Vel::Ptr<Group> group = Vel::allocate<Group>(5, 8, 1, setLag);
};

static_assert(std::is_same_v<Group::MemberMap, Vel::HashMap<Member, BfnTable::BfnMemberId>>);

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

// The member collection starts with four buckets; a member's bucket is the
// top bits of its bit-reversed id.
TEST_F(IngressMirrorLagGroupGroupTest, MembersSitInTheBucketsOfTheirBitReversedIds) {
  const Group::MemberMap& members = group->memberCollection();
  EXPECT_EQ(members.buckets(), 4u);
  for (std::uint32_t id : {3u, 1u, 2u, 0u}) {
    group->memberIs(id);
    EXPECT_EQ(members.bucketOf(id), Vel::bitReverse(id) >> 30) << id;
  }
  EXPECT_EQ(members.buckets(), 4u);
  EXPECT_EQ(membersInOrder("m"), (Log{"m(0)", "m(2)", "m(1)", "m(3)"}));
  group->memberIs(4);
  EXPECT_EQ(members.buckets(), 8u);
  for (std::uint32_t id = 0; id < 5; ++id)
    EXPECT_EQ(members.bucketOf(id), Vel::bitReverse(id) >> 29) << id;
  EXPECT_EQ(membersInOrder("m"), (Log{"m(0)", "m(4)", "m(2)", "m(1)", "m(3)"}));
}

// The new member is in the group, under it, when the notifiees hear of it.
TEST_F(IngressMirrorLagGroupGroupTest, MemberIsNotifiesWithTheMemberInPlace) {
  const Vel::Ptr<GroupRecorder> a = groupRecorder("a");
  Log seen;
  a->action = [&](const std::string&) {
    const Vel::Ptr<Member> seven = group->member(7);
    seen.push_back(seven ? std::string(seven->fullName()) : "absent");
  };
  group->memberIs(7);
  EXPECT_EQ(seen, Log{"5/member/7"});
}

TEST_F(IngressMirrorLagGroupGroupTest, MemberDelNotifiesWithTheMemberOutAndOrphaned) {
  const Vel::Ptr<Member> seven = group->memberIs(7);
  const Vel::Ptr<GroupRecorder> a = groupRecorder("a");
  Log seen;
  a->action = [&](const std::string&) {
    seen.push_back(std::string(group->member(7) ? "held " : "out ") +
                   std::string(seven->fullName()));
  };
  group->memberDel(7);
  EXPECT_EQ(seen, Log{"out 7"});
}

TEST_F(IngressMirrorLagGroupGroupTest, ExceptionFromANotifieeReachesTheCallerOfMemberIs) {
  const Vel::Ptr<GroupRecorder> a = groupRecorder("a");
  const Vel::Ptr<GroupRecorder> b = groupRecorder("b");
  a->action = [](const std::string&) { throw std::runtime_error("refused"); };
  EXPECT_THROW(group->memberIs(7), std::runtime_error);
  ASSERT_NE(group->member(7), nullptr);
  EXPECT_TRUE(group->member(7)->active());
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
  for (std::uint32_t id = 0; id < 10; ++id)
    group->memberIs(id);
  const Log expected = membersInOrder("a.onMember");
  ASSERT_EQ(expected.size(), 10u);
  const Vel::Ptr<GroupRecorder> a = groupRecorder("a");
  group->memberDelAll();
  EXPECT_EQ(log, expected);
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
  // Members are walked in the order of their bit-reversed ids.
  EXPECT_EQ(log, (Log{"a.onZeroReferences()", "a.onMember(4)", "a.onMember(2)", "a.onMember(1)",
                      "a.onMember(3)"}));
}

// Each removal is announced with the member already out of the group, the
// members after it still in, and the notifiees still listed; the notifiees are
// dropped before the group goes.
TEST_F(IngressMirrorLagGroupGroupTest, DestroyingAGroupRemovesMembersThenDropsNotifiees) {
  group->memberIs(1);
  group->memberIs(2);
  const Vel::Ptr<GroupRecorder> a = listedRecorder<GroupRecorder>("a", *group);
  const Group* dying = group.get();
  Log seen;
  a->action = [dying, &seen](const std::string& callback) {
    seen.push_back(callback + " members=" + std::to_string(dying->members()) +
                   " notifiees=" + std::to_string(dying->notifieeList()->size()));
  };
  group = nullptr;
  EXPECT_EQ(seen, (Log{"onZeroReferences() members=2 notifiees=1",
                       "onMember(2) members=1 notifiees=1", "onMember(1) members=0 notifiees=1"}));
}

TEST_F(IngressMirrorLagGroupGroupTest,
       NotifieeDroppedByAnotherDuringDestructionHearsNoMoreRemovals) {
  for (std::uint32_t id = 1; id <= 3; ++id)
    group->memberIs(id);
  const Vel::Ptr<GroupRecorder> a = listedRecorder<GroupRecorder>("a", *group);
  const Vel::Ptr<GroupRecorder> b = listedRecorder<GroupRecorder>("b", *group);
  const Group* dying = group.get();
  b->action = [dying, &a](const std::string& callback) {
    if (callback == "onMember(2)")
      dying->notifieeList()->deleteMember(a.get());
  };
  group = nullptr;
  EXPECT_EQ(log, (Log{"a.onZeroReferences()", "b.onZeroReferences()", "a.onMember(2)",
                      "b.onMember(2)", "b.onMember(1)", "b.onMember(3)"}));
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

TEST_F(IngressMirrorLagGroupGroupTest, NotifieeDestroyingItselfLetsTheOthersBeCalled) {
  Vel::Ptr<GroupRecorder> a = groupRecorder("a");
  const Vel::Ptr<GroupRecorder> b = groupRecorder("b");
  a->action = [&a](const std::string&) { a = nullptr; };
  group->memberIs(7);
  group->memberIs(8);
  EXPECT_EQ(log, (Log{"a.onMember(7)", "b.onMember(7)", "b.onMember(8)"}));
  EXPECT_EQ(group->notifieeList()->size(), 1u);
}

TEST_F(IngressMirrorLagGroupGroupTest, NotifieeUnregisteringAnEarlierOneLetsTheRestBeCalled) {
  const Vel::Ptr<GroupRecorder> a = groupRecorder("a");
  const Vel::Ptr<GroupRecorder> b = groupRecorder("b");
  const Vel::Ptr<GroupRecorder> c = groupRecorder("c");
  b->action = [&a](const std::string&) { a->isRegisteredNotifieeIs(false); };
  group->memberIs(7);
  group->memberDel(7);
  EXPECT_EQ(log, (Log{"a.onMember(7)", "b.onMember(7)", "c.onMember(7)", "b.onMember(7)",
                      "c.onMember(7)"}));
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
