#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "ActionProfileFixture.h"
#include "Vel/Allocate.h"
#include "Vel/BulkChange.h"
#include "Vel/RangeException.h"
#include "support/ScratchShadowBase.h"
#include "support/ShadowWalk.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

BfnTable::BfnGroupId gid(std::uint32_t id) {
  return BfnTable::BfnGroupId(id);
}
BfnTable::BfnMemberId mid(std::uint32_t id) {
  return BfnTable::BfnMemberId(id);
}

// The ids held by a configured group's member set.
std::vector<std::uint32_t> memberIdsOf(const IngressMirrorLagGroupGroup& group) {
  std::vector<std::uint32_t> ids;
  for (auto member = group.memberIteratorConst(); member.valid(); ++member)
    ids.push_back(member.key().value());
  return ids;
}

// The ids of a group reactor's member reactors.
std::vector<std::uint32_t> reactorIdsOf(const IngressMirrorLagGroupActionProfileSm::VelGroup& g) {
  std::vector<std::uint32_t> ids;
  for (auto reactor = g.groupMemberIteratorConst(); reactor.valid(); ++reactor)
    ids.push_back(reactor.key().value());
  return ids;
}

// A shadow-table key manager that also keeps every anonymous key it gave.
class KeptAnonKeys : public MbbVaultKey::VaultKeyManager {
 public:
  KeptAnonKeys(const std::string& base, Capacity capacity) : VaultKeyManager(base, capacity) {}
  EntryKey allocAnon(std::uint32_t n) override {
    given.push_back(VaultKeyManager::allocAnon(n));
    return given.back();
  }
  std::vector<EntryKey> given;
};

// The group reactor, driven through the configuration entity: it creates the
// selector group in the chip, gives it its initial member, keeps a member
// reactor per member of the configured group and deletes the group again.
class VelGroupTest : public ActionProfileFixture {
 protected:
  void SetUp() override {
    ActionProfileFixture::SetUp();
    makeSm();
    for (std::uint32_t id = 1; id <= 4; ++id)
      memberIs(id, static_cast<std::uint16_t>(100 * id));
  }

  Vel::Ptr<Sm::VelGroup> reactor(std::uint32_t groupId) const { return sm->group(gid(groupId)); }
};

TEST_F(VelGroupTest, CreationReservesTheKeyTellsTheStatusManagerCreatesAndAddsTheInitialMember) {
  startLog();
  const auto group = groupIs(10, 8, 3);
  const std::uint32_t handle = groupHandle(10);
  ASSERT_NE(handle, 0u);
  EXPECT_THAT(logLines(), ElementsAre(createGroupLine(8, handle),
                                      addMemberToGroupLine(handle, memberHandle(3))));
  // The key and the status come before the group's creation; the member's
  // status before its addition.
  EXPECT_THAT(events, ElementsAre("allocAnon 10 @0", "initSelGroupStatus 10 @0",
                                  "initSelGroupStatus 10 @1"));
  EXPECT_THAT(registryGroups(), ElementsAre(Pair(10u, handle)));
  EXPECT_THAT(memberIdsOf(*group), ElementsAre(3u));
  const auto groupReactor = reactor(10);
  ASSERT_NE(groupReactor, nullptr);
  EXPECT_EQ(groupReactor->group(), group);
  EXPECT_EQ(groupReactor->groupId(), gid(10));
  EXPECT_EQ(groupReactor->ingressMirrorLagGroupActionProfileSm(), sm.get());
  EXPECT_TRUE(groupReactor->hasNotificationActive());
  EXPECT_FALSE(groupReactor->velMarkedForDeletion());
  EXPECT_THAT(reactorIdsOf(*groupReactor), ElementsAre(3u));
  const auto memberReactor = groupReactor->groupMember(mid(3));
  ASSERT_NE(memberReactor, nullptr);
  EXPECT_EQ(memberReactor->groupMember(), group->member(mid(3)));
  EXPECT_EQ(memberReactor->velGroup(), groupReactor.get());
  EXPECT_EQ(chip.groups(), 1u);
}

TEST_F(VelGroupTest, AGroupLargerThan120IsCreatedWith120AndASmallerOneWithItsSize) {
  startLog();
  groupIs(10, 500, 1);
  groupIs(11, 121, 1);
  groupIs(12, 120, 1);
  groupIs(13, 119, 1);
  groupIs(14, 1, 1);
  EXPECT_THAT(logLines(), ElementsAre(createGroupLine(120, groupHandle(10)),
                                      addMemberToGroupLine(groupHandle(10), memberHandle(1)),
                                      createGroupLine(120, groupHandle(11)),
                                      addMemberToGroupLine(groupHandle(11), memberHandle(1)),
                                      createGroupLine(120, groupHandle(12)),
                                      addMemberToGroupLine(groupHandle(12), memberHandle(1)),
                                      createGroupLine(119, groupHandle(13)),
                                      addMemberToGroupLine(groupHandle(13), memberHandle(1)),
                                      createGroupLine(1, groupHandle(14)),
                                      addMemberToGroupLine(groupHandle(14), memberHandle(1))));
  // The configuration keeps the size it was given.
  EXPECT_EQ(profile->group(gid(10))->groupSize(), 500u);
  EXPECT_EQ(registryGroups().size(), 5u);
}

TEST_F(VelGroupTest, AHandleAlreadyRegisteredForTheIdIsOverwrittenInPlace) {
  // Handles left from an earlier life of the program, e.g. refilled after a restart.
  registry().groupIs(gid(9), 9009);
  registry().groupIs(gid(10), 4242);
  registry().groupIs(gid(11), 1111);
  std::vector<std::uint32_t> idsBefore;
  for (const auto& [id, handle] : registryGroups())
    idsBefore.push_back(id);
  startLog();
  groupIs(10, 4, 1);
  const std::uint32_t handle = groupHandle(10);
  EXPECT_NE(handle, 4242u);
  EXPECT_THAT(logLines(), ElementsAre(createGroupLine(4, handle),
                                      addMemberToGroupLine(handle, memberHandle(1))));
  std::vector<std::uint32_t> idsAfter;
  for (const auto& [id, h] : registryGroups())
    idsAfter.push_back(id);
  EXPECT_EQ(idsAfter, idsBefore);
  EXPECT_THAT(registryGroups(),
              UnorderedElementsAre(Pair(9u, 9009u), Pair(10u, handle), Pair(11u, 1111u)));
  registry().groupDel(gid(9));
  registry().groupDel(gid(11));
}

TEST_F(VelGroupTest, WithoutStatusOrKeyManagerAGroupIsStillProgrammed) {
  sm = nullptr;
  sm = Sm::IngressMirrorLagGroupActionProfileSmIs(profile, helper, nullptr, nullptr);
  sm->sessionHandleIs(kSmSession);
  EXPECT_EQ(sm->vaultKeyManager(), nullptr);
  EXPECT_EQ(sm->statusManager(), nullptr);
  ASSERT_EQ(sm->actionProfiles(), 4u);
  startLog();
  const auto group = groupIs(10, 4, 2);
  group->memberIs(mid(3));
  group->member(mid(3))->activeIs(false);
  const std::uint32_t handle = groupHandle(10);
  ASSERT_NE(handle, 0u);
  EXPECT_THAT(logLines(),
              ElementsAre(createGroupLine(4, handle), addMemberToGroupLine(handle, memberHandle(2)),
                          addMemberToGroupLine(handle, memberHandle(3)),
                          memberStateLine(handle, memberHandle(3), 1)));
  EXPECT_THAT(events, IsEmpty());
  startLog();
  profile->groupDel(gid(10));
  const auto lines = logLines();
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[2], delGroupLine(handle));
  EXPECT_THAT(registryGroups(), IsEmpty());
}

TEST_F(VelGroupTest, DeletingAGroupOfThreeTakesEachMemberOutThenDeletesTheGroup) {
  const auto group = groupIs(10, 4, 1);
  group->memberIs(mid(2));
  group->memberIs(mid(3));
  groupIs(11, 4, 4);  // another group, untouched
  const std::uint32_t handle = groupHandle(10);
  const std::uint32_t other = groupHandle(11);
  startLog();
  EXPECT_EQ(profile->groupDel(gid(10)), group);
  const std::vector<std::string> lines = logLines();
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_THAT(std::vector<std::string>(lines.begin(), lines.begin() + 3),
              UnorderedElementsAre(delMemberFromGroupLine(handle, memberHandle(1)),
                                   delMemberFromGroupLine(handle, memberHandle(2)),
                                   delMemberFromGroupLine(handle, memberHandle(3))));
  EXPECT_EQ(lines[3], delGroupLine(handle));
  EXPECT_THAT(registryGroups(), ElementsAre(Pair(11u, other)));
  EXPECT_EQ(reactor(10), nullptr);
  EXPECT_EQ(sm->groups(), 1u);
  EXPECT_EQ(chip.groups(), 1u);
  // Each call was preceded by the group's status.
  EXPECT_THAT(events, ElementsAre("initSelGroupStatus 10 @0", "initSelGroupStatus 10 @0",
                                  "initSelGroupStatus 10 @1", "initSelGroupStatus 10 @2"));
  // The removed group keeps its members; they reach the chip no more.
  startLog();
  group->member(mid(2))->activeIs(false);
  group->memberDel(mid(3));
  EXPECT_THAT(logLines(), IsEmpty());
}

TEST_F(VelGroupTest, OnMemberAddsOrRemovesTheReactorOfThatId) {
  const auto group = groupIs(10, 4, 1);
  const auto groupReactor = reactor(10);
  const std::uint32_t handle = groupHandle(10);
  // Not told by the configuration: the calls below are the only way in.
  groupReactor->hasNotificationActiveIs(false);
  group->memberIs(mid(2));
  EXPECT_EQ(groupReactor->groupMember(mid(2)), nullptr);
  startLog();
  groupReactor->onMember(mid(2));
  EXPECT_THAT(logLines(), ElementsAre(addMemberToGroupLine(handle, memberHandle(2))));
  ASSERT_NE(groupReactor->groupMember(mid(2)), nullptr);
  EXPECT_EQ(groupReactor->groupMember(mid(2))->groupMember(), group->member(mid(2)));
  // Told again: nothing new.
  startLog();
  groupReactor->onMember(mid(2));
  EXPECT_THAT(logLines(), IsEmpty());
  group->memberDel(mid(2));
  groupReactor->onMember(mid(2));
  EXPECT_THAT(logLines(), ElementsAre(delMemberFromGroupLine(handle, memberHandle(2))));
  EXPECT_EQ(groupReactor->groupMember(mid(2)), nullptr);
  // An id the group never held: nothing.
  groupReactor->onMember(mid(7));
  EXPECT_THAT(logLines(), ElementsAre(delMemberFromGroupLine(handle, memberHandle(2))));
  groupReactor->hasNotificationActiveIs(true);
}

TEST_F(VelGroupTest, ABulkChangeOfTheMemberSetIsProgrammedWhenItEnds) {
  const auto group = groupIs(10, 4, 1);
  const auto groupReactor = reactor(10);
  const std::uint32_t handle = groupHandle(10);
  startLog();
  {
    Vel::BulkChange bulk(group, IngressMirrorLagGroupGroup::memberAttribute);
    group->memberIs(mid(2));
    group->memberIs(mid(3));
    group->memberIs(mid(4));
    EXPECT_THAT(logLines(), IsEmpty());
    EXPECT_EQ(groupReactor->groupMembers(), 1u);
  }
  EXPECT_THAT(logLines(), UnorderedElementsAre(addMemberToGroupLine(handle, memberHandle(2)),
                                               addMemberToGroupLine(handle, memberHandle(3)),
                                               addMemberToGroupLine(handle, memberHandle(4))));
  EXPECT_THAT(reactorIdsOf(*groupReactor), UnorderedElementsAre(1u, 2u, 3u, 4u));
  startLog();
  {
    // One removed, one added: both at the end.
    Vel::BulkChange bulk(group, IngressMirrorLagGroupGroup::memberAttribute);
    group->memberDel(mid(3));
    group->memberDel(mid(4));
    group->memberIs(mid(4));
    EXPECT_THAT(logLines(), IsEmpty());
  }
  // Member 4 is another entity now: its reactor follows it and applies its state.
  EXPECT_THAT(logLines(), UnorderedElementsAre(delMemberFromGroupLine(handle, memberHandle(3)),
                                               memberStateLine(handle, memberHandle(4), 0)));
  EXPECT_THAT(reactorIdsOf(*groupReactor), UnorderedElementsAre(1u, 2u, 4u));
  EXPECT_EQ(groupReactor->groupMember(mid(4))->groupMember(), group->member(mid(4)));
  // Called again with nothing changed: nothing.
  startLog();
  groupReactor->onMembervelImmediate();
  groupReactor->onMember();
  EXPECT_THAT(logLines(), IsEmpty());
}

TEST_F(VelGroupTest, GroupMemberIsKeepsTheReactorOfTheSameEntityAndRePointsForAnother) {
  const auto group = groupIs(10, 4, 1);
  group->memberIs(mid(2));
  const auto groupReactor = reactor(10);
  const auto existing = groupReactor->groupMember(mid(2));
  const std::uint32_t handle = groupHandle(10);
  startLog();
  EXPECT_EQ(groupReactor->groupMemberIs(group->member(mid(2))), existing);
  EXPECT_THAT(logLines(), IsEmpty());
  // Another entity of the same id, inactive: followed, and its state applied.
  const auto other = Vel::allocate<IngressMirrorLagGroupMember>(mid(2));
  other->activeIs(false);
  EXPECT_EQ(groupReactor->groupMemberIs(other), existing);
  EXPECT_EQ(existing->groupMember(), other);
  EXPECT_EQ(groupReactor->groupMembers(), 2u);
  EXPECT_THAT(logLines(), ElementsAre(memberStateLine(handle, memberHandle(2), 1)));
  // The reactor now hears the other entity, not the configured one.
  startLog();
  other->activeIs(true);
  EXPECT_THAT(logLines(), ElementsAre(memberStateLine(handle, memberHandle(2), 0)));
  startLog();
  group->member(mid(2))->activeIs(false);
  EXPECT_THAT(logLines(), IsEmpty());
  // Back to the configured entity, now inactive.
  EXPECT_EQ(groupReactor->groupMemberIs(group->member(mid(2))), existing);
  EXPECT_THAT(logLines(), ElementsAre(memberStateLine(handle, memberHandle(2), 1)));
}

TEST_F(VelGroupTest, NewGroupMemberMakesSwitchesOnAndHoldsAReactor) {
  const auto group = groupIs(10, 4, 1);
  const auto groupReactor = reactor(10);
  // A member entity of the id, outside the configured group.
  const auto member = Vel::allocate<IngressMirrorLagGroupMember>(mid(3));
  startLog();
  const auto made = groupReactor->newGroupMember(member);
  ASSERT_NE(made, nullptr);
  EXPECT_THAT(logLines(), ElementsAre(addMemberToGroupLine(groupHandle(10), memberHandle(3))));
  EXPECT_EQ(groupReactor->groupMember(mid(3)), made);
  EXPECT_EQ(made->groupMember(), member);
  EXPECT_EQ(made->fwkKey(), mid(3));
  EXPECT_TRUE(made->hasNotificationActive());
  EXPECT_FALSE(made->velMarkedForDeletion());
  startLog();
  member->activeIs(false);
  EXPECT_THAT(logLines(), ElementsAre(memberStateLine(groupHandle(10), memberHandle(3), 1)));
  startLog();
  EXPECT_EQ(groupReactor->groupMemberDel(mid(3)), made);
  EXPECT_THAT(logLines(), ElementsAre(delMemberFromGroupLine(groupHandle(10), memberHandle(3))));
}

TEST_F(VelGroupTest, GroupMemberDelDropsOneReactorAndTakesItsMemberOut) {
  const auto group = groupIs(10, 4, 1);
  group->memberIs(mid(2));
  const auto groupReactor = reactor(10);
  startLog();
  EXPECT_EQ(groupReactor->groupMemberDel(mid(7)), nullptr);
  EXPECT_THAT(logLines(), IsEmpty());
  const auto dropped = groupReactor->groupMemberDel(mid(2));
  ASSERT_NE(dropped, nullptr);
  EXPECT_THAT(logLines(), ElementsAre(delMemberFromGroupLine(groupHandle(10), memberHandle(2))));
  EXPECT_THAT(events, ElementsAre("initSelGroupStatus 10 @0"));
  EXPECT_EQ(groupReactor->groupMember(mid(2)), nullptr);
  EXPECT_TRUE(dropped->velMarkedForDeletion());
  EXPECT_FALSE(dropped->hasNotificationActive());
  EXPECT_EQ(dropped->velGroup(), nullptr);
  // The configuration still holds the member; the dropped reactor ignores it.
  startLog();
  group->member(mid(2))->activeIs(false);
  EXPECT_THAT(logLines(), IsEmpty());
  // The member comes back from the configuration, joining inactive.
  groupReactor->onMembervelImmediate();
  EXPECT_THAT(logLines(), ElementsAre(addMemberToGroupLine(groupHandle(10), memberHandle(2)),
                                      memberStateLine(groupHandle(10), memberHandle(2), 1)));
}

TEST_F(VelGroupTest, GroupMemberDelAllTakesEveryMemberOut) {
  const auto group = groupIs(10, 4, 1);
  group->memberIs(mid(2));
  group->memberIs(mid(3));
  const auto groupReactor = reactor(10);
  const std::uint32_t handle = groupHandle(10);
  startLog();
  groupReactor->groupMemberDelAll();
  EXPECT_EQ(groupReactor->groupMembers(), 0u);
  EXPECT_THAT(logLines(), UnorderedElementsAre(delMemberFromGroupLine(handle, memberHandle(1)),
                                               delMemberFromGroupLine(handle, memberHandle(2)),
                                               delMemberFromGroupLine(handle, memberHandle(3))));
  // Brought back in line with the configuration, every member joins again.
  startLog();
  groupReactor->onMembervelImmediate();
  EXPECT_THAT(logLines(), UnorderedElementsAre(addMemberToGroupLine(handle, memberHandle(1)),
                                               addMemberToGroupLine(handle, memberHandle(2)),
                                               addMemberToGroupLine(handle, memberHandle(3))));
  EXPECT_EQ(groupReactor->groupMembers(), 3u);
}

TEST_F(VelGroupTest, NotificationIsPassedToEachMemberReactor) {
  const auto group = groupIs(10, 4, 1);
  group->memberIs(mid(2));
  group->memberIs(mid(3));
  const auto groupReactor = reactor(10);
  groupReactor->hasNotificationActiveIs(false);
  EXPECT_FALSE(groupReactor->hasNotificationActive());
  for (std::uint32_t id : {1u, 2u, 3u})
    EXPECT_FALSE(groupReactor->groupMember(mid(id))->hasNotificationActive()) << id;
  startLog();
  group->member(mid(2))->activeIs(false);
  group->memberIs(mid(4));
  EXPECT_THAT(logLines(), IsEmpty());
  groupReactor->hasNotificationActiveIs(true);
  EXPECT_TRUE(groupReactor->hasNotificationActive());
  for (std::uint32_t id : {1u, 2u, 3u})
    EXPECT_TRUE(groupReactor->groupMember(mid(id))->hasNotificationActive()) << id;
  group->member(mid(2))->activeIs(true);
  EXPECT_THAT(logLines(), ElementsAre(memberStateLine(groupHandle(10), memberHandle(2), 0)));
  // The state machine's switch reaches the group and member reactors as well.
  sm->hasNotificationActiveIs(false);
  EXPECT_FALSE(groupReactor->hasNotificationActive());
  EXPECT_FALSE(groupReactor->groupMember(mid(3))->hasNotificationActive());
  sm->hasNotificationActiveIs(true);
  EXPECT_TRUE(groupReactor->groupMember(mid(3))->hasNotificationActive());
  groupReactor->onMembervelImmediate();  // member 4 joins now
  EXPECT_EQ(groupReactor->groupMembers(), 4u);
}

TEST_F(VelGroupTest, ANullMemberIsARangeExceptionWithTheMutatorsText) {
  groupIs(10, 4, 1);
  const auto groupReactor = reactor(10);
  startLog();
  try {
    groupReactor->groupMemberIs(nullptr);
    ADD_FAILURE() << "no exception";
  } catch (const Vel::RangeException& e) {
    EXPECT_EQ(std::string(e.what()),
              "null _groupMember parameter to mutator for "
              "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::VelGroup::"
              "groupMember not allowed\"");
  }
  EXPECT_EQ(groupReactor->groupMembers(), 1u);
  EXPECT_THAT(logLines(), IsEmpty());
}

TEST_F(VelGroupTest, ANullGroupIsARangeExceptionWithTheMutatorsText) {
  startLog();
  try {
    sm->groupIs(nullptr);
    ADD_FAILURE() << "no exception";
  } catch (const Vel::RangeException& e) {
    EXPECT_EQ(std::string(e.what()),
              "null _group parameter to mutator for "
              "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::group not allowed\"");
  }
  EXPECT_EQ(sm->groups(), 0u);
  EXPECT_THAT(logLines(), IsEmpty());
}

// A key manager with shadow tables, bound to the PD object: the group is
// recorded under the key reserved for it just before its creation, and its
// record goes with the group.
TEST_F(VelGroupTest, AGroupIsRecordedInTheShadowTableUnderItsReservedKeyUntilDeleted) {
  const shadow_test::ScratchShadowBase base("velgroup");
  const auto keys = Vel::allocate<KeptAnonKeys>(base.str(), MbbVaultKey::ShadowCapacity{16, 16, 8});
  helper->pdLib()->vaultKeyManagerIs(keys);
  sm = nullptr;
  sm = Sm::IngressMirrorLagGroupActionProfileSmIs(profile, helper, keys, statusManager);
  sm->sessionHandleIs(kSmSession);
  keys->given.clear();
  groupIs(10, 300, 1);
  ASSERT_EQ(keys->given.size(), 1u);
  auto records = shadow_test::walkShadow(keys->selGrpVaultTableConfig()).records;
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].key(), keys->given[0]);
  EXPECT_TRUE(MbbVaultKey::VaultKeyManager::isAnon(records[0].key()));
  EXPECT_EQ(keys->anonId(records[0].key()), 10u);
  EXPECT_EQ(records[0].groupHandle(), groupHandle(10));
  EXPECT_EQ(records[0].maxGroupSize(), 120u);
  groupIs(11, 4, 2);
  EXPECT_EQ(shadow_test::walkShadow(keys->selGrpVaultTableConfig()).records.size(), 2u);
  profile->groupDel(gid(10));
  records = shadow_test::walkShadow(keys->selGrpVaultTableConfig()).records;
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(keys->anonId(records[0].key()), 11u);
  EXPECT_EQ(records[0].groupHandle(), groupHandle(11));
  profile->groupDel(gid(11));
  EXPECT_THAT(shadow_test::walkShadow(keys->selGrpVaultTableConfig()).records, IsEmpty());
  sm = nullptr;
  profile->entryDelAll();
  helper->pdLib()->vaultKeyManagerIs(nullptr);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
