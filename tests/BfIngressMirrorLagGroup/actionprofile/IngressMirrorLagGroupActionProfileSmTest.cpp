#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "ActionProfileFixture.h"
#include "Pd/PipeStatus.h"
#include "Vel/ActivityManager.h"
#include "Vel/Allocate.h"
#include "Vel/BulkChange.h"
#include "Vel/RangeException.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

// A fixture's line of a call on the state machine's session, as made before
// that session was set: with session 0.
std::string beforeSessionIsSet(std::string line) {
  const std::string session = "(sess=9,";
  line.replace(line.find(session), session.size(), "(sess=0,");
  return line;
}

// The root of the state machine: what it is made with, how it follows its
// configuration entity, and what it does to the chip as a whole.
class IngressMirrorLagGroupActionProfileSmTest : public ActionProfileFixture {
 protected:
  void TearDown() override {
    Vel::ActivityManager::instance().deleteAll();
    ActionProfileFixture::TearDown();
  }

  // The member ids the state machine has reactors for, in its order.
  std::vector<std::uint32_t> memberReactorIds() const {
    std::vector<std::uint32_t> ids;
    for (auto reactor = sm->actionProfileIteratorConst(); reactor.valid(); ++reactor)
      ids.push_back(reactor.key().value());
    return ids;
  }
  std::vector<std::uint32_t> groupReactorIds() const {
    std::vector<std::uint32_t> ids;
    for (auto reactor = sm->groupIteratorConst(); reactor.valid(); ++reactor)
      ids.push_back(reactor.key().value());
    return ids;
  }
};

TEST_F(IngressMirrorLagGroupActionProfileSmTest, IsTurnsNotificationOnAndFollowsTheEntity) {
  makeSm();
  EXPECT_TRUE(sm->hasNotificationActive());
  EXPECT_FALSE(sm->velMarkedForDeletion());
  const auto& reactor = sm->ingressMirrorLagGroupActionProfileReactor();
  ASSERT_NE(reactor, nullptr);
  EXPECT_TRUE(reactor->hasNotificationActive());
  EXPECT_TRUE(reactor->isRegisteredNotifiee());
  EXPECT_TRUE(reactor->velReactor());
  EXPECT_EQ(reactor->actsm(), sm.get());
  EXPECT_EQ(reactor->ingressMirrorLagGroupActionProfileSm(), sm.get());
  EXPECT_EQ(reactor->notifier(), profile);
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfile(), profile);
  ASSERT_EQ(profile->notifieeList()->size(), 1u);
  EXPECT_TRUE(profile->notifieeList()->isMember(reactor.get()));
  EXPECT_EQ(sm->actionProfiles(), 0u);
  EXPECT_EQ(sm->groups(), 0u);
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, MadeDirectlyItsNotificationIsOff) {
  const auto direct = Vel::allocate<Sm>(profile, helper, keyManager, statusManager);
  EXPECT_FALSE(direct->hasNotificationActive());
  direct->ingressMirrorLagGroupActionProfileDel();
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, ItKeepsItsSessionHandleHelperAndManagers) {
  sm = Sm::IngressMirrorLagGroupActionProfileSmIs(profile, helper, keyManager, statusManager);
  EXPECT_EQ(sm->sessionHandle(), 0u);
  sm->sessionHandleIs(kSmSession);
  EXPECT_EQ(sm->sessionHandle(), kSmSession);
  sm->sessionHandleIs(0xfffffffeu);
  EXPECT_EQ(sm->sessionHandle(), 0xfffffffeu);
  sm->sessionHandleIs(kSmSession);
  EXPECT_EQ(sm->helper(), helper);
  EXPECT_EQ(sm->vaultKeyManager(), keyManager);
  EXPECT_EQ(sm->statusManager(), statusManager);
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, ItTakesNullManagers) {
  sm = Sm::IngressMirrorLagGroupActionProfileSmIs(profile, helper, nullptr, nullptr);
  sm->sessionHandleIs(kSmSession);
  EXPECT_EQ(sm->vaultKeyManager(), nullptr);
  EXPECT_EQ(sm->statusManager(), nullptr);
  startLog();
  memberIs(5, 500);
  EXPECT_THAT(logLines(), ElementsAre(addMemberLine(500, memberHandle(5))));
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, MadeOnNoEntityItFollowsNothing) {
  makeSmOn(nullptr);
  EXPECT_TRUE(sm->hasNotificationActive());
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfileReactor(), nullptr);
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfile(), nullptr);
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfileDel(), nullptr);
  startLog();
  memberIs(5, 500);
  groupIs(10, 4, 5);
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_TRUE(profile->notifieeList()->empty());
  EXPECT_EQ(sm->actionProfiles(), 0u);
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, MadeOnAFilledEntityItProgramsMembersBeforeGroups) {
  memberIs(1, 100);
  memberIs(2, 200);
  memberIs(3, 300);
  groupIs(10, 4, 1);
  groupIs(11, 200, 2);
  startLog();
  makeSm();
  const std::uint32_t m1 = memberHandle(1);
  const std::uint32_t m2 = memberHandle(2);
  const std::uint32_t m3 = memberHandle(3);
  const std::uint32_t g10 = groupHandle(10);
  const std::uint32_t g11 = groupHandle(11);
  const std::vector<std::string> lines = logLines();
  ASSERT_EQ(lines.size(), 7u);
  EXPECT_THAT(
      std::vector<std::string>(lines.begin(), lines.begin() + 3),
      UnorderedElementsAre(addMemberLine(100, m1), addMemberLine(200, m2), addMemberLine(300, m3)));
  // Each group is created (its size capped at the group's most) and given its
  // initial member before the next. The groups are programmed while the state
  // machine is made, before its session handle is set.
  const std::vector<std::string> group10 = {beforeSessionIsSet(createGroupLine(4, g10)),
                                            beforeSessionIsSet(addMemberToGroupLine(g10, m1))};
  const std::vector<std::string> group11 = {beforeSessionIsSet(createGroupLine(120, g11)),
                                            beforeSessionIsSet(addMemberToGroupLine(g11, m2))};
  const std::vector<std::string> groupLines(lines.begin() + 3, lines.end());
  std::vector<std::string> tenFirst = group10;
  tenFirst.insert(tenFirst.end(), group11.begin(), group11.end());
  std::vector<std::string> elevenFirst = group11;
  elevenFirst.insert(elevenFirst.end(), group10.begin(), group10.end());
  EXPECT_TRUE(groupLines == tenFirst || groupLines == elevenFirst) << testing::PrintToString(lines);
  EXPECT_THAT(memberReactorIds(), UnorderedElementsAre(1u, 2u, 3u));
  EXPECT_THAT(groupReactorIds(), UnorderedElementsAre(10u, 11u));
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, ANewEntryObjectForAKnownIdIsAModify) {
  makeSm();
  memberIs(5, 500);
  const auto reactor = sm->actionProfile(BfnTable::BfnMemberId(5));
  const std::uint32_t handle = memberHandle(5);
  const auto next = entryOf(5, 600);
  startLog();
  EXPECT_EQ(sm->actionProfileIs(next), reactor);
  EXPECT_THAT(logLines(), ElementsAre(modifyMemberLine(handle, 600)));
  EXPECT_EQ(reactor->actionProfile(), next);
  EXPECT_EQ(sm->actionProfiles(), 1u);
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, TheSameEntryObjectAgainDoesNothing) {
  makeSm();
  const auto entry = memberIs(5, 500);
  const auto reactor = sm->actionProfile(BfnTable::BfnMemberId(5));
  startLog();
  EXPECT_EQ(sm->actionProfileIs(entry), reactor);
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, DeletingAnUnknownMemberIdDoesNothing) {
  makeSm();
  memberIs(5, 500);
  startLog();
  EXPECT_EQ(sm->actionProfileDel(BfnTable::BfnMemberId(6)), nullptr);
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_THAT(events, IsEmpty());
  EXPECT_EQ(sm->actionProfiles(), 1u);
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, DeletingAMemberGivesBackItsEntry) {
  makeSm();
  const auto entry = memberIs(5, 500);
  const auto reactor = sm->actionProfile(BfnTable::BfnMemberId(5));
  const std::uint32_t handle = memberHandle(5);
  startLog();
  EXPECT_EQ(sm->actionProfileDel(BfnTable::BfnMemberId(5)), entry);
  EXPECT_THAT(logLines(), ElementsAre(delMemberLine(handle)));
  EXPECT_EQ(reactor->ingressMirrorLagGroupActionProfileSm(), nullptr);
  EXPECT_FALSE(reactor->hasNotificationActive());
  EXPECT_TRUE(reactor->velMarkedForDeletion());
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, DeleteAllDeletesEveryMember) {
  makeSm();
  memberIs(1, 100);
  memberIs(2, 200);
  memberIs(3, 300);
  const std::uint32_t m1 = memberHandle(1);
  const std::uint32_t m2 = memberHandle(2);
  const std::uint32_t m3 = memberHandle(3);
  startLog();
  sm->actionProfileDelAll();
  EXPECT_THAT(logLines(),
              UnorderedElementsAre(delMemberLine(m1), delMemberLine(m2), delMemberLine(m3)));
  EXPECT_EQ(sm->actionProfiles(), 0u);
  EXPECT_THAT(registryMembers(), IsEmpty());
  EXPECT_EQ(chip.members(), 0u);
  // The entity still holds its entries: only the state machine let go.
  EXPECT_EQ(profile->entries(), 3u);
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, ANullEntryIsARangeException) {
  makeSm();
  startLog();
  try {
    sm->actionProfileIs(nullptr);
    ADD_FAILURE() << "no exception";
  } catch (const Vel::RangeException& e) {
    EXPECT_EQ(std::string(e.message()),
              "null _actionProfile parameter to mutator for "
              "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::actionProfile not "
              "allowed\"");
  }
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_EQ(sm->actionProfiles(), 0u);
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, ANullGroupIsARangeException) {
  makeSm();
  try {
    sm->groupIs(nullptr);
    ADD_FAILURE() << "no exception";
  } catch (const Vel::RangeException& e) {
    EXPECT_EQ(std::string(e.message()),
              "null _group parameter to mutator for "
              "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::group not "
              "allowed\"");
  }
  EXPECT_EQ(sm->groups(), 0u);
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, EntityEditsOfEntriesAndGroupsAreProgrammedAtOnce) {
  makeSm();
  startLog();
  memberIs(1, 100);
  const std::uint32_t m1 = memberHandle(1);
  EXPECT_THAT(logLines(), ElementsAre(addMemberLine(100, m1)));
  startLog();
  groupIs(10, 8, 1);
  const std::uint32_t g10 = groupHandle(10);
  EXPECT_THAT(logLines(), ElementsAre(createGroupLine(8, g10), addMemberToGroupLine(g10, m1)));
  EXPECT_THAT(groupReactorIds(), ElementsAre(10u));
  startLog();
  profile->groupDel(BfnTable::BfnGroupId(10));
  EXPECT_THAT(logLines(), ElementsAre(delMemberFromGroupLine(g10, m1), delGroupLine(g10)));
  EXPECT_EQ(sm->groups(), 0u);
  startLog();
  profile->entryDel(BfnTable::BfnMemberId(1));
  EXPECT_THAT(logLines(), ElementsAre(delMemberLine(m1)));
  EXPECT_EQ(sm->actionProfiles(), 0u);
  EXPECT_EQ(chip.members(), 0u);
  EXPECT_EQ(chip.groups(), 0u);
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, ABulkChangeOfEntriesIsProgrammedWhenItCloses) {
  makeSm();
  memberIs(1, 100);
  const std::uint32_t m1 = memberHandle(1);
  startLog();
  {
    Vel::BulkChange bulk(profile, IngressMirrorLagGroupActionProfile::entryAttribute);
    profile->entryIs(entryOf(2, 200));
    profile->entryIs(entryOf(3, 300));
    profile->entryDel(BfnTable::BfnMemberId(1));
    EXPECT_THAT(logLines(), IsEmpty());
    EXPECT_TRUE(bulk.changed());
  }
  // Entries first, in the collection's order, then the ids gone.
  const std::vector<std::string> lines = logLines();
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_THAT(std::vector<std::string>(lines.begin(), lines.begin() + 2),
              UnorderedElementsAre(addMemberLine(200, memberHandle(2)),
                                   addMemberLine(300, memberHandle(3))));
  EXPECT_EQ(lines[2], delMemberLine(m1));
  EXPECT_THAT(memberReactorIds(), UnorderedElementsAre(2u, 3u));
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, TheImmediateEntryNotificationReconciles) {
  makeSm();
  memberIs(1, 100);
  memberIs(2, 200);
  const std::uint32_t m1 = memberHandle(1);
  // The state machine lets member 2 go behind the entity's back.
  sm->actionProfileDel(BfnTable::BfnMemberId(2));
  startLog();
  sm->ingressMirrorLagGroupActionProfileReactor()->onEntryvelImmediate();
  EXPECT_THAT(logLines(), ElementsAre(addMemberLine(200, memberHandle(2))));
  EXPECT_THAT(memberReactorIds(), UnorderedElementsAre(1u, 2u));
  EXPECT_EQ(memberHandle(1), m1);
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, ABulkChangeOfGroupsIsProgrammedWhenItCloses) {
  makeSm();
  memberIs(1, 100);
  const std::uint32_t m1 = memberHandle(1);
  startLog();
  {
    Vel::BulkChange bulk(profile, IngressMirrorLagGroupActionProfile::groupAttribute);
    groupIs(10, 4, 1);
    EXPECT_THAT(logLines(), IsEmpty());
  }
  const std::uint32_t g10 = groupHandle(10);
  EXPECT_THAT(logLines(), ElementsAre(createGroupLine(4, g10), addMemberToGroupLine(g10, m1)));
  EXPECT_THAT(groupReactorIds(), ElementsAre(10u));
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, DeferredDeliveryReconcilesTheMembers) {
  makeSm();
  Vel::ActivityManager& activity = Vel::ActivityManager::instance();
  activity.deleteAll();
  sm->ingressMirrorLagGroupActionProfileReactor()->deferredNotificationIs(true);
  memberIs(1, 100);
  ASSERT_EQ(activity.pending(), 1u);
  activity.deleteAll();
  // Out of line with the entity: member 1 dropped by the state machine alone.
  sm->actionProfileDel(BfnTable::BfnMemberId(1));
  startLog();
  memberIs(2, 200);
  // The keyed notification programs member 2 at once; the deferred one waits.
  EXPECT_THAT(logLines(), ElementsAre(addMemberLine(200, memberHandle(2))));
  EXPECT_EQ(activity.pending(), 1u);
  startLog();
  EXPECT_EQ(activity.drain(), 1u);
  EXPECT_THAT(logLines(), ElementsAre(addMemberLine(100, memberHandle(1))));
  EXPECT_THAT(memberReactorIds(), UnorderedElementsAre(1u, 2u));
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, DeferredDeliveryReconcilesTheGroups) {
  makeSm();
  memberIs(1, 100);
  const std::uint32_t m1 = memberHandle(1);
  Vel::ActivityManager& activity = Vel::ActivityManager::instance();
  activity.deleteAll();
  sm->ingressMirrorLagGroupActionProfileReactor()->deferredNotificationIs(true);
  groupIs(10, 4, 1);
  activity.deleteAll();
  // The group's reactor goes behind the entity's back.
  sm->groupDel(BfnTable::BfnGroupId(10));
  EXPECT_EQ(sm->groups(), 0u);
  profile->group(BfnTable::BfnGroupId(10))->memberDel(BfnTable::BfnMemberId(1));
  // A group added meanwhile is programmed at once and queues the deferred
  // notification.
  groupIs(11, 4, 1);
  ASSERT_EQ(activity.pending(), 1u);
  startLog();
  EXPECT_EQ(activity.drain(), 1u);
  const std::uint32_t g10again = groupHandle(10);
  EXPECT_NE(g10again, 0u);
  EXPECT_THAT(logLines(),
              ElementsAre(createGroupLine(4, g10again), addMemberToGroupLine(g10again, m1)));
  EXPECT_THAT(groupReactorIds(), UnorderedElementsAre(10u, 11u));
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, WithoutDeferredDeliveryNothingIsQueued) {
  makeSm();
  Vel::ActivityManager& activity = Vel::ActivityManager::instance();
  activity.deleteAll();
  memberIs(1, 100);
  groupIs(10, 4, 1);
  EXPECT_EQ(activity.pending(), 0u);
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, NotificationOnAndOffReachesEveryReactor) {
  makeSm();
  memberIs(1, 100);
  memberIs(2, 200);
  groupIs(10, 4, 1);
  const auto& root = sm->ingressMirrorLagGroupActionProfileReactor();
  const auto member = sm->actionProfile(BfnTable::BfnMemberId(1));
  const auto other = sm->actionProfile(BfnTable::BfnMemberId(2));
  const auto groupReactor = sm->group(BfnTable::BfnGroupId(10));
  sm->hasNotificationActiveIs(false);
  EXPECT_FALSE(sm->hasNotificationActive());
  EXPECT_FALSE(root->hasNotificationActive());
  EXPECT_FALSE(member->hasNotificationActive());
  EXPECT_FALSE(other->hasNotificationActive());
  EXPECT_FALSE(groupReactor->hasNotificationActive());
  sm->hasNotificationActiveIs(true);
  EXPECT_TRUE(sm->hasNotificationActive());
  EXPECT_TRUE(root->hasNotificationActive());
  EXPECT_TRUE(member->hasNotificationActive());
  EXPECT_TRUE(other->hasNotificationActive());
  EXPECT_TRUE(groupReactor->hasNotificationActive());
  // Back on, edits are programmed again.
  startLog();
  profile->entry(BfnTable::BfnMemberId(2))->actionIs(selectorAction(201));
  EXPECT_THAT(logLines(), ElementsAre(modifyMemberLine(memberHandle(2), 201)));
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, WithNotificationOffEntityEditsProgramNothing) {
  makeSm();
  const auto entry = memberIs(1, 100);
  sm->hasNotificationActiveIs(false);
  startLog();
  entry->actionIs(selectorAction(101));
  memberIs(2, 200);
  groupIs(10, 4, 1);
  profile->entryDel(BfnTable::BfnMemberId(1));
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_THAT(events, IsEmpty());
  EXPECT_THAT(memberReactorIds(), ElementsAre(1u));
  EXPECT_EQ(sm->groups(), 0u);
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, AsAZombieItDeletesEveryMemberThenEveryGroup) {
  makeSm();
  memberIs(1, 100);
  memberIs(2, 200);
  memberIs(3, 300);
  groupIs(10, 4, 3);
  const std::uint32_t m1 = memberHandle(1);
  const std::uint32_t m2 = memberHandle(2);
  const std::uint32_t m3 = memberHandle(3);
  const std::uint32_t g10 = groupHandle(10);
  // The chip refuses to delete a member that a group holds, and a group always
  // holds one: the reactor of the group's member is taken off the state
  // machine, so that it deletes nothing and the walk goes on to the group.
  const auto grouped = sm->actionProfile(BfnTable::BfnMemberId(3));
  grouped->ingressMirrorLagGroupActionProfileSmIs(nullptr);
  startLog();
  sm->velDoZombieReactors(true);
  const std::vector<std::string> lines = logLines();
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_THAT(std::vector<std::string>(lines.begin(), lines.begin() + 2),
              UnorderedElementsAre(delMemberLine(m1), delMemberLine(m2)));
  EXPECT_THAT(std::vector<std::string>(lines.begin() + 2, lines.end()),
              ElementsAre(delMemberFromGroupLine(g10, m3), delGroupLine(g10)));
  EXPECT_TRUE(sm->velMarkedForDeletion());
  EXPECT_TRUE(sm->ingressMirrorLagGroupActionProfileReactor()->velMarkedForDeletion());
  EXPECT_TRUE(sm->actionProfile(BfnTable::BfnMemberId(1))->velMarkedForDeletion());
  EXPECT_TRUE(sm->actionProfile(BfnTable::BfnMemberId(2))->velMarkedForDeletion());
  EXPECT_TRUE(grouped->velMarkedForDeletion());
  EXPECT_TRUE(sm->group(BfnTable::BfnGroupId(10))->velMarkedForDeletion());
  EXPECT_THAT(registryMembers(), ElementsAre(std::pair{3u, m3}));
  EXPECT_THAT(registryGroups(), IsEmpty());
  EXPECT_EQ(chip.groups(), 0u);
  EXPECT_EQ(chip.members(), 1u);
  // The reactors stay, as zombies; a second time changes nothing.
  EXPECT_EQ(sm->actionProfiles(), 3u);
  EXPECT_EQ(sm->groups(), 1u);
  startLog();
  sm->velDoZombieReactors(true);
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_EQ(chip.delMember(kPdSession, kDevice, m3), PIPE_STATUS_SUCCESS);
}

// With the group's member reactor on the state machine, the chip refuses the
// first delete of a grouped member: the exception passes on and the state
// machine is not a zombie; with the group gone first, it can turn into one.
TEST_F(IngressMirrorLagGroupActionProfileSmTest, ARefusedMemberDeleteLeavesItAlive) {
  makeSm();
  memberIs(1, 100);
  groupIs(10, 4, 1);
  const std::uint32_t m1 = memberHandle(1);
  startLog();
  try {
    sm->velDoZombieReactors(true);
    ADD_FAILURE() << "no exception";
  } catch (const BfTable::BfTableException& e) {
    EXPECT_EQ(e.status(), 16);
  }
  EXPECT_THAT(logLines(), ElementsAre(chipsim_test::kDelMember +
                                      "(sess=9, dev=3, mbr=" + std::to_string(m1) + ") = 16"));
  EXPECT_FALSE(sm->velMarkedForDeletion());
  EXPECT_FALSE(sm->actionProfile(BfnTable::BfnMemberId(1))->velMarkedForDeletion());
  EXPECT_TRUE(sm->actionProfile(BfnTable::BfnMemberId(1))->hasNotificationActive());
  EXPECT_EQ(memberHandle(1), m1);
  sm->groupDelAll();
  startLog();
  sm->velDoZombieReactors(true);
  EXPECT_THAT(logLines(), ElementsAre(delMemberLine(m1)));
  EXPECT_TRUE(sm->velMarkedForDeletion());
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest,
       StoppingToFollowGivesBackTheEntityAndKeepsTheChip) {
  makeSm();
  memberIs(1, 100);
  const std::uint32_t m1 = memberHandle(1);
  auto reactor = sm->ingressMirrorLagGroupActionProfileReactor();
  startLog();
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfileDel(), profile);
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfileReactor(), nullptr);
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfile(), nullptr);
  EXPECT_EQ(reactor->ingressMirrorLagGroupActionProfileSm(), nullptr);
  EXPECT_FALSE(reactor->hasNotificationActive());
  EXPECT_TRUE(reactor->velMarkedForDeletion());
  // Nothing but this test holds the reactor now.
  reactor = nullptr;
  EXPECT_TRUE(profile->notifieeList()->empty());
  EXPECT_THAT(memberReactorIds(), ElementsAre(1u));
  EXPECT_THAT(registryMembers(), ElementsAre(std::pair{1u, m1}));
  // Edits are not followed any more.
  memberIs(2, 200);
  profile->entry(BfnTable::BfnMemberId(1))->actionIs(selectorAction(101));
  profile->entryDel(BfnTable::BfnMemberId(1));
  EXPECT_THAT(memberReactorIds(), ElementsAre(1u));
  EXPECT_EQ(chip.members(), 1u);
  // Only the member reactor's own entry was followed: the action change above
  // was to it.
  EXPECT_EQ(logLines(), std::vector<std::string>{modifyMemberLine(m1, 101)});
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, FollowingAnotherEntityReconcilesToIt) {
  makeSm();
  memberIs(1, 100);
  const auto shared = memberIs(2, 200);
  const std::uint32_t m1 = memberHandle(1);
  const std::uint32_t m2 = memberHandle(2);
  const auto other = Vel::allocate<IngressMirrorLagGroupActionProfile>("other");
  other->entryIs(shared);
  other->entryIs(entryOf(3, 300));
  startLog();
  sm->ingressMirrorLagGroupActionProfileIs(other);
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfile(), other);
  EXPECT_THAT(logLines(), ElementsAre(addMemberLine(300, memberHandle(3)), delMemberLine(m1)));
  EXPECT_THAT(memberReactorIds(), UnorderedElementsAre(2u, 3u));
  EXPECT_EQ(memberHandle(2), m2);
  // The new entity is followed, the old one is not.
  startLog();
  profile->entryIs(entryOf(4, 400));
  EXPECT_THAT(logLines(), IsEmpty());
  other->entryIs(entryOf(4, 400));
  EXPECT_THAT(logLines(), ElementsAre(addMemberLine(400, memberHandle(4))));
  sm->ingressMirrorLagGroupActionProfileDel();
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, FollowingAnEntityAgainAfterLettingGoReconciles) {
  makeSm();
  memberIs(1, 100);
  const std::uint32_t m1 = memberHandle(1);
  sm->ingressMirrorLagGroupActionProfileDel();
  profile->entryDel(BfnTable::BfnMemberId(1));
  memberIs(2, 200);
  startLog();
  sm->ingressMirrorLagGroupActionProfileIs(profile);
  ASSERT_NE(sm->ingressMirrorLagGroupActionProfileReactor(), nullptr);
  EXPECT_TRUE(sm->ingressMirrorLagGroupActionProfileReactor()->hasNotificationActive());
  EXPECT_THAT(logLines(), ElementsAre(addMemberLine(200, memberHandle(2)), delMemberLine(m1)));
  EXPECT_THAT(memberReactorIds(), ElementsAre(2u));
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, FollowingNoEntityIsLettingGo) {
  makeSm();
  memberIs(1, 100);
  startLog();
  sm->ingressMirrorLagGroupActionProfileIs(nullptr);
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfile(), nullptr);
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_EQ(sm->actionProfiles(), 1u);
}

TEST_F(IngressMirrorLagGroupActionProfileSmTest, DroppedItDeletesWhatItProgrammed) {
  makeSm();
  memberIs(1, 100);
  memberIs(2, 200);
  const std::uint32_t m1 = memberHandle(1);
  const std::uint32_t m2 = memberHandle(2);
  startLog();
  sm = nullptr;
  EXPECT_THAT(logLines(), UnorderedElementsAre(delMemberLine(m1), delMemberLine(m2)));
  EXPECT_EQ(chip.members(), 0u);
  EXPECT_TRUE(profile->notifieeList()->empty());
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
