#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ActionProfileFixture.h"
#include "Vel/ActivityManager.h"
#include "Vel/Allocate.h"
#include "Vel/BulkChange.h"
#include "Vel/RangeException.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The names of the PD functions in `lines`, in order.
std::vector<std::string> functionsOf(const std::vector<std::string>& lines) {
  std::vector<std::string> names;
  for (const std::string& line : lines)
    names.push_back(line.substr(0, line.find('(')));
  return names;
}

// The member ids of the state machine's member reactors, in its order.
std::vector<std::uint32_t> reactorIds(const IngressMirrorLagGroupActionProfileSm& sm) {
  std::vector<std::uint32_t> ids;
  for (auto reactor = sm.actionProfileIteratorConst(); reactor.valid(); ++reactor)
    ids.push_back(reactor.key().value());
  std::sort(ids.begin(), ids.end());
  return ids;
}

// The root of the state machine: its attributes, its collections of reactors
// and how it follows the configuration entity.
class StateMachineTest : public ActionProfileFixture {};

TEST_F(StateMachineTest, IsMadeWithItsNotificationOnAndTheGivenParts) {
  makeSm();
  EXPECT_TRUE(sm->hasNotificationActive());
  EXPECT_FALSE(sm->velMarkedForDeletion());
  EXPECT_EQ(sm->helper(), helper);
  EXPECT_EQ(sm->vaultKeyManager(), keyManager);
  EXPECT_EQ(sm->statusManager(), statusManager);
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfile(), profile);
  ASSERT_NE(sm->ingressMirrorLagGroupActionProfileReactor(), nullptr);
  EXPECT_TRUE(sm->ingressMirrorLagGroupActionProfileReactor()->hasNotificationActive());
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfileReactor()->actsm(), sm.get());
  EXPECT_EQ(sm->actionProfiles(), 0u);
  EXPECT_EQ(sm->groups(), 0u);
}

TEST_F(StateMachineTest, TheSessionHandleIsZeroUntilSet) {
  sm = Sm::IngressMirrorLagGroupActionProfileSmIs(profile, helper, nullptr, nullptr);
  EXPECT_EQ(sm->sessionHandle(), 0u);
  sm->sessionHandleIs(0xfffffffe);
  EXPECT_EQ(sm->sessionHandle(), 0xfffffffeu);
}

TEST_F(StateMachineTest, MadeOnANullEntityItFollowsNothing) {
  sm = Sm::IngressMirrorLagGroupActionProfileSmIs(nullptr, helper, nullptr, nullptr);
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfileReactor(), nullptr);
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfile(), nullptr);
  startLog();
  memberIs(1, 100);
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_EQ(sm->actionProfiles(), 0u);
}

TEST_F(StateMachineTest, MadeOnAConfiguredEntityItProgramsEveryMemberBeforeAnyGroup) {
  for (std::uint32_t id = 1; id <= 6; ++id)
    memberIs(id, static_cast<std::uint16_t>(100 + id));
  groupIs(10, 4, 1);
  groupIs(11, 4, 2);
  startLog();
  makeSm();
  const std::vector<std::string> functions = functionsOf(logLines());
  ASSERT_EQ(functions.size(), 10u);
  for (std::size_t i = 0; i < 6; ++i)
    EXPECT_EQ(functions[i], chipsim_test::kAddMember) << i;
  for (std::size_t i = 6; i < 10; i += 2) {
    EXPECT_EQ(functions[i], chipsim_test::kCreateGroup) << i;
    EXPECT_EQ(functions[i + 1], chipsim_test::kAddMemberToGroup) << i;
  }
  EXPECT_EQ(sm->actionProfiles(), 6u);
  EXPECT_EQ(sm->groups(), 2u);
  EXPECT_EQ(chip.members(), 6u);
  EXPECT_EQ(chip.groups(), 2u);
}

TEST_F(StateMachineTest, ANullEntryIsRefusedWithTheMutatorsMessage) {
  makeSm();
  try {
    sm->actionProfileIs(nullptr);
    ADD_FAILURE() << "no exception";
  } catch (const Vel::RangeException& e) {
    EXPECT_EQ(std::string(e.what()),
              "null _actionProfile parameter to mutator for "
              "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::actionProfile not "
              "allowed\"");
  }
  EXPECT_EQ(sm->actionProfiles(), 0u);
}

TEST_F(StateMachineTest, ANullGroupIsRefusedWithTheMutatorsMessage) {
  makeSm();
  try {
    sm->groupIs(nullptr);
    ADD_FAILURE() << "no exception";
  } catch (const Vel::RangeException& e) {
    EXPECT_EQ(std::string(e.what()),
              "null _group parameter to mutator for "
              "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::group not "
              "allowed\"");
  }
  EXPECT_EQ(sm->groups(), 0u);
}

TEST_F(StateMachineTest, DeletingAnUnknownIdDoesNothing) {
  makeSm();
  memberIs(1, 100);
  startLog();
  EXPECT_EQ(sm->actionProfileDel(BfnTable::BfnMemberId(2)), nullptr);
  EXPECT_EQ(sm->groupDel(BfnTable::BfnGroupId(2)), nullptr);
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_THAT(events, IsEmpty());
  EXPECT_EQ(sm->actionProfiles(), 1u);
}

TEST_F(StateMachineTest, DelAllDropsEveryReactorAndDeletesFromTheChip) {
  makeSm();
  memberIs(1, 100);
  memberIs(2, 200);
  memberIs(3, 300);
  groupIs(10, 4, 1);
  groupIs(11, 4, 2);
  sm->groupDelAll();
  EXPECT_EQ(sm->groups(), 0u);
  EXPECT_EQ(chip.groups(), 0u);
  EXPECT_THAT(registryGroups(), IsEmpty());
  sm->actionProfileDelAll();
  EXPECT_EQ(sm->actionProfiles(), 0u);
  EXPECT_EQ(chip.members(), 0u);
  EXPECT_THAT(registryMembers(), IsEmpty());
  // The configuration is untouched.
  EXPECT_EQ(profile->entries(), 3u);
  EXPECT_EQ(profile->groups(), 2u);
}

TEST_F(StateMachineTest, EditsOfTheEntityMakeAndDropReactors) {
  makeSm();
  memberIs(1, 100);
  memberIs(2, 200);
  EXPECT_THAT(reactorIds(*sm), ElementsAre(1u, 2u));
  groupIs(10, 4, 1);
  EXPECT_NE(sm->group(BfnTable::BfnGroupId(10)), nullptr);
  profile->groupDel(BfnTable::BfnGroupId(10));
  EXPECT_EQ(sm->group(BfnTable::BfnGroupId(10)), nullptr);
  profile->entryDel(BfnTable::BfnMemberId(1));
  EXPECT_THAT(reactorIds(*sm), ElementsAre(2u));
}

TEST_F(StateMachineTest, ABulkChangeOfEntriesIsProgrammedWhenItEnds) {
  makeSm();
  memberIs(1, 100);
  startLog();
  {
    Vel::BulkChange bulk(profile, IngressMirrorLagGroupActionProfile::entryAttribute);
    memberIs(2, 200);
    memberIs(3, 300);
    profile->entryDel(BfnTable::BfnMemberId(1));
    EXPECT_THAT(logLines(), IsEmpty());
    EXPECT_THAT(reactorIds(*sm), ElementsAre(1u));
  }
  EXPECT_THAT(reactorIds(*sm), ElementsAre(2u, 3u));
  EXPECT_EQ(chip.members(), 2u);
  EXPECT_THAT(registryMembers(), testing::UnorderedElementsAre(std::pair{2u, memberHandle(2)},
                                                               std::pair{3u, memberHandle(3)}));
}

TEST_F(StateMachineTest, ABulkChangeOfGroupsIsProgrammedWhenItEnds) {
  makeSm();
  memberIs(1, 100);
  groupIs(10, 4, 1);
  {
    Vel::BulkChange bulk(profile, IngressMirrorLagGroupActionProfile::groupAttribute);
    groupIs(11, 4, 1);
    profile->groupDel(BfnTable::BfnGroupId(10));
    EXPECT_NE(sm->group(BfnTable::BfnGroupId(10)), nullptr);
    EXPECT_EQ(sm->group(BfnTable::BfnGroupId(11)), nullptr);
  }
  EXPECT_EQ(sm->group(BfnTable::BfnGroupId(10)), nullptr);
  EXPECT_NE(sm->group(BfnTable::BfnGroupId(11)), nullptr);
  EXPECT_EQ(chip.groups(), 1u);
}

TEST_F(StateMachineTest, TheDeferredFormBringsTheCollectionsInLineWithTheEntity) {
  makeSm();
  memberIs(1, 100);
  groupIs(10, 4, 1);
  // The state machine lost sight of member 1 and group 10.
  sm->groupDel(BfnTable::BfnGroupId(10));
  sm->actionProfileDel(BfnTable::BfnMemberId(1));
  const auto reactor = sm->ingressMirrorLagGroupActionProfileReactor();
  reactor->deferredNotificationIs(true);
  memberIs(2, 200);  // the keyed form makes member 2 at once
  EXPECT_THAT(reactorIds(*sm), ElementsAre(2u));
  Vel::ActivityManager::instance().drain();
  EXPECT_THAT(reactorIds(*sm), ElementsAre(1u, 2u));
  profile->group(BfnTable::BfnGroupId(10))->memberDel(BfnTable::BfnMemberId(1));
  groupIs(11, 4, 1);
  Vel::ActivityManager::instance().drain();
  EXPECT_NE(sm->group(BfnTable::BfnGroupId(10)), nullptr);
  EXPECT_NE(sm->group(BfnTable::BfnGroupId(11)), nullptr);
  reactor->deferredNotificationIs(false);
}

TEST_F(StateMachineTest, NotificationIsSwitchedForEveryReactor) {
  makeSm();
  memberIs(1, 100);
  groupIs(10, 4, 1);
  sm->hasNotificationActiveIs(false);
  EXPECT_FALSE(sm->hasNotificationActive());
  EXPECT_FALSE(sm->ingressMirrorLagGroupActionProfileReactor()->hasNotificationActive());
  EXPECT_FALSE(sm->actionProfile(BfnTable::BfnMemberId(1))->hasNotificationActive());
  const auto group = sm->group(BfnTable::BfnGroupId(10));
  EXPECT_FALSE(group->hasNotificationActive());
  EXPECT_FALSE(group->groupMember(BfnTable::BfnMemberId(1))->hasNotificationActive());
  startLog();
  memberIs(2, 200);
  profile->entry(BfnTable::BfnMemberId(1))->actionIs(selectorAction(1));
  EXPECT_THAT(logLines(), IsEmpty());
  sm->hasNotificationActiveIs(true);
  EXPECT_TRUE(group->groupMember(BfnTable::BfnMemberId(1))->hasNotificationActive());
  memberIs(3, 300);
  EXPECT_EQ(functionsOf(logLines()), std::vector<std::string>{chipsim_test::kAddMember});
  profile->entryDel(BfnTable::BfnMemberId(2));
}

TEST_F(StateMachineTest, AsAZombieItDeletesEveryMember) {
  makeSm();
  memberIs(1, 100);
  memberIs(2, 200);
  const std::uint32_t first = memberHandle(1);
  const std::uint32_t second = memberHandle(2);
  startLog();
  sm->velDoZombieReactors(true);
  EXPECT_TRUE(sm->velMarkedForDeletion());
  EXPECT_TRUE(sm->ingressMirrorLagGroupActionProfileReactor()->velMarkedForDeletion());
  EXPECT_THAT(logLines(),
              testing::UnorderedElementsAre(delMemberLine(first), delMemberLine(second)));
  EXPECT_THAT(registryMembers(), IsEmpty());
  startLog();
  sm->velDoZombieReactors(true);
  EXPECT_THAT(logLines(), IsEmpty());
  // Nothing left to delete at the end.
  for (auto reactor = sm->actionProfileIterator(); reactor.valid(); ++reactor)
    reactor.ptr()->ingressMirrorLagGroupActionProfileSmIs(nullptr);
}

TEST_F(StateMachineTest, AsAZombieItDeletesMembersBeforeGroups) {
  makeSm();
  memberIs(1, 100);
  groupIs(10, 4, 1);
  startLog();
  // The chip refuses to delete a member that a group holds.
  EXPECT_THROW(sm->velDoZombieReactors(true), BfTable::BfTableException);
  EXPECT_EQ(functionsOf(logLines()), std::vector<std::string>{chipsim_test::kDelMember});
  EXPECT_FALSE(sm->velMarkedForDeletion());
  EXPECT_FALSE(sm->actionProfile(BfnTable::BfnMemberId(1))->velMarkedForDeletion());
  EXPECT_FALSE(sm->group(BfnTable::BfnGroupId(10))->velMarkedForDeletion());
}

TEST_F(StateMachineTest, DroppedItDeletesWhatItProgrammed) {
  makeSm();
  memberIs(1, 100);
  memberIs(2, 200);
  startLog();
  sm = nullptr;
  EXPECT_EQ(functionsOf(logLines()),
            (std::vector<std::string>{chipsim_test::kDelMember, chipsim_test::kDelMember}));
  EXPECT_EQ(chip.members(), 0u);
}

TEST_F(StateMachineTest, StoppingToFollowTheEntityRemovesNothing) {
  makeSm();
  memberIs(1, 100);
  groupIs(10, 4, 1);
  const auto reactor = sm->ingressMirrorLagGroupActionProfileReactor();
  startLog();
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfileDel(), profile);
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfileReactor(), nullptr);
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfile(), nullptr);
  EXPECT_TRUE(reactor->velMarkedForDeletion());
  EXPECT_FALSE(reactor->hasNotificationActive());
  EXPECT_EQ(reactor->ingressMirrorLagGroupActionProfileSm(), nullptr);
  EXPECT_EQ(sm->actionProfiles(), 1u);
  EXPECT_EQ(sm->groups(), 1u);
  // Edits are no longer followed.
  memberIs(2, 200);
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfileDel(), nullptr);
}

TEST_F(StateMachineTest, FollowingAnotherEntityBringsTheReactorsInLineWithIt) {
  makeSm();
  memberIs(1, 100);
  memberIs(2, 200);
  const auto other = Vel::allocate<IngressMirrorLagGroupActionProfile>("other");
  other->entryIs(profile->entry(BfnTable::BfnMemberId(2)));
  other->entryIs(entryOf(3, 300));
  const std::uint32_t first = memberHandle(1);
  startLog();
  sm->ingressMirrorLagGroupActionProfileIs(other);
  EXPECT_EQ(sm->ingressMirrorLagGroupActionProfile(), other);
  EXPECT_THAT(reactorIds(*sm), ElementsAre(2u, 3u));
  EXPECT_THAT(logLines(), ElementsAre(addMemberLine(300, memberHandle(3)), delMemberLine(first)));
  // The old entity is no longer followed, the new one is.
  startLog();
  profile->entryDel(BfnTable::BfnMemberId(2));
  EXPECT_THAT(logLines(), IsEmpty());
  other->entryDel(BfnTable::BfnMemberId(3));
  EXPECT_EQ(functionsOf(logLines()), std::vector<std::string>{chipsim_test::kDelMember});
  sm->ingressMirrorLagGroupActionProfileDel();
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
