#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ActionProfileFixture.h"
#include "Vel/Allocate.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// An action type that the chip has no action for.
constexpr auto kOtherActionType = static_cast<IngressMirrorLagGroupActionProfileType>(1);

// Members configured through the entity, followed by the state machine: each
// edit is programmed before it returns.
class MemberProgrammingTest : public ActionProfileFixture {
 protected:
  void SetUp() override {
    ActionProfileFixture::SetUp();
    makeSm();
  }
};

TEST_F(MemberProgrammingTest, ANewMemberIsAddedWithThePdObjectsSessionAndItsHandleKept) {
  startLog();
  memberIs(5, 500);
  const std::uint32_t handle = memberHandle(5);
  ASSERT_NE(handle, 0u);
  EXPECT_THAT(logLines(), ElementsAre(addMemberLine(500, handle)));
  EXPECT_THAT(registryMembers(), ElementsAre(std::pair{5u, handle}));
  EXPECT_EQ(chip.members(), 1u);
  ASSERT_NE(sm->actionProfile(BfnTable::BfnMemberId(5)), nullptr);
  EXPECT_EQ(sm->actionProfile(BfnTable::BfnMemberId(5))->actionProfile(),
            profile->entry(BfnTable::BfnMemberId(5)));
}

TEST_F(MemberProgrammingTest, TheStatusManagerAndTheKeyManagerAreToldBeforeTheAdd) {
  startLog();
  memberIs(5, 500);
  EXPECT_THAT(events, ElementsAre("initAdtStatus 5 @0", "allocAnon 5 @0"));
}

TEST_F(MemberProgrammingTest, AMemberWhoseHandleIsKnownIsModifiedWithTheStateMachinesSession) {
  // A handle refilled after a restart: the member is in the chip already.
  const p4_pd_kestro_switch_setLagMemberSelector_action_spec_t spec{400};
  std::uint32_t adopted = 0;
  ASSERT_EQ(chip.addMember(kPdSession, {kDevice, kPipe}, &spec, &adopted), 0);
  registry().memberIs(BfnTable::BfnMemberId(5), adopted);
  startLog();
  memberIs(5, 500);
  EXPECT_THAT(logLines(), ElementsAre(modifyMemberLine(adopted, 500)));
  EXPECT_THAT(registryMembers(), ElementsAre(std::pair{5u, adopted}));
  EXPECT_THAT(events, ElementsAre("initAdtStatus 5 @0"));
  EXPECT_EQ(chip.members(), 1u);
}

TEST_F(MemberProgrammingTest, EveryChangeOfTheActionProgramsTheMemberAgain) {
  const auto entry = memberIs(5, 500);
  const std::uint32_t handle = memberHandle(5);
  startLog();
  entry->actionIs(selectorAction(501));
  entry->actionIs(selectorAction(501));
  EXPECT_THAT(logLines(),
              ElementsAre(modifyMemberLine(handle, 501), modifyMemberLine(handle, 501)));
  EXPECT_EQ(memberHandle(5), handle);
}

TEST_F(MemberProgrammingTest, ANewEntryObjectForAConfiguredIdModifiesTheMember) {
  const auto first = memberIs(5, 500);
  const auto reactor = sm->actionProfile(BfnTable::BfnMemberId(5));
  const std::uint32_t handle = memberHandle(5);
  startLog();
  const auto second = memberIs(5, 600);
  EXPECT_THAT(logLines(), ElementsAre(modifyMemberLine(handle, 600)));
  // The same reactor follows the new entry.
  EXPECT_EQ(sm->actionProfile(BfnTable::BfnMemberId(5)), reactor);
  EXPECT_EQ(reactor->actionProfile(), second);
  // The old entry is no longer followed.
  startLog();
  first->actionIs(selectorAction(700));
  EXPECT_THAT(logLines(), IsEmpty());
}

TEST_F(MemberProgrammingTest, TheSameEntryObjectAgainDoesNothing) {
  const auto entry = memberIs(5, 500);
  startLog();
  sm->actionProfileIs(entry);
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(MemberProgrammingTest, AnActionOfAnotherTypeIsNotProgrammed) {
  auto action = Vel::allocate<IngressMirrorLagGroupBaseActionProfileSpec>();
  action->actionTypeIs(kOtherActionType);
  action->lagMemberSelectorIs(9);
  startLog();
  profile->entryIs(
      Vel::allocate<IngressMirrorLagGroupActionProfileEntry>(BfnTable::BfnMemberId(5), action));
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_THAT(registryMembers(), IsEmpty());
  // The status manager was still told; no key was reserved.
  EXPECT_THAT(events, ElementsAre("initAdtStatus 5 @0"));
  ASSERT_NE(sm->actionProfile(BfnTable::BfnMemberId(5)), nullptr);
  // A member never programmed has nothing to delete (deleting it would stop
  // the process): the reactor goes without its state machine.
  sm->actionProfile(BfnTable::BfnMemberId(5))->ingressMirrorLagGroupActionProfileSmIs(nullptr);
}

TEST_F(MemberProgrammingTest, AnEntryWithoutActionIsNotProgrammed) {
  startLog();
  profile->entryIs(
      Vel::allocate<IngressMirrorLagGroupActionProfileEntry>(BfnTable::BfnMemberId(5), nullptr));
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_THAT(registryMembers(), IsEmpty());
  sm->actionProfile(BfnTable::BfnMemberId(5))->ingressMirrorLagGroupActionProfileSmIs(nullptr);
}

TEST_F(MemberProgrammingTest, ARemovedMemberIsDeletedWithTheStateMachinesSession) {
  memberIs(5, 500);
  const std::uint32_t handle = memberHandle(5);
  startLog();
  profile->entryDel(BfnTable::BfnMemberId(5));
  EXPECT_THAT(logLines(), ElementsAre(delMemberLine(handle)));
  EXPECT_THAT(events, ElementsAre("initAdtStatus 5 @0"));
  EXPECT_THAT(registryMembers(), IsEmpty());
  EXPECT_EQ(sm->actionProfile(BfnTable::BfnMemberId(5)), nullptr);
  EXPECT_EQ(chip.members(), 0u);
}

TEST_F(MemberProgrammingTest, TheSessionHandleIsZeroUntilTheHostSetsIt) {
  sm->sessionHandleIs(0);
  memberIs(5, 500);
  const std::uint32_t handle = memberHandle(5);
  startLog();
  profile->entryDel(BfnTable::BfnMemberId(5));
  EXPECT_THAT(logLines(), ElementsAre(chipsim_test::kDelMember +
                                      "(sess=0, dev=3, mbr=" + std::to_string(handle) + ") = 0"));
}

TEST_F(MemberProgrammingTest, AReactorMarkedForDeletionProgramsNothing) {
  const auto entry = memberIs(5, 500);
  const auto reactor = sm->actionProfile(BfnTable::BfnMemberId(5));
  // Marked behind the state machine's back: the member stays in the chip.
  reactor->velMarkedForDeletionIs(true);
  startLog();
  reactor->onAction();
  const auto other = entryOf(5, 900);
  reactor->notifierIs(other);
  EXPECT_THAT(logLines(), IsEmpty());
  // The new entry is followed all the same.
  EXPECT_EQ(reactor->actionProfile(), other);
  reactor->velMarkedForDeletionIs(false);
}

TEST_F(MemberProgrammingTest, ANullNotifierProgramsAndDeletesNothing) {
  memberIs(5, 500);
  const auto reactor = sm->actionProfile(BfnTable::BfnMemberId(5));
  startLog();
  reactor->notifierIs(nullptr);
  EXPECT_EQ(reactor->actionProfile(), nullptr);
  reactor->notifierIs(nullptr);
  // An object that is not an entry counts as null.
  reactor->notifierIs(Vel::allocate<IngressMirrorLagGroupMember>(BfnTable::BfnMemberId(5)));
  EXPECT_EQ(reactor->actionProfile(), nullptr);
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_NE(memberHandle(5), 0u);
  // Pointed at an entry again, it programs it.
  const auto entry = profile->entry(BfnTable::BfnMemberId(5));
  reactor->notifierIs(entry);
  EXPECT_THAT(logLines(), ElementsAre(modifyMemberLine(memberHandle(5), 500)));
}

TEST_F(MemberProgrammingTest, ReactorKeyAndFlags) {
  memberIs(5, 500);
  const auto reactor = sm->actionProfile(BfnTable::BfnMemberId(5));
  EXPECT_EQ(reactor->fwkKey(), BfnTable::BfnMemberId(5));
  EXPECT_TRUE(reactor->velReactor());
  EXPECT_EQ(reactor->actsm(), sm.get());
  EXPECT_EQ(reactor->ingressMirrorLagGroupActionProfileSm(), sm.get());
  EXPECT_TRUE(reactor->hasNotificationActive());
  EXPECT_TRUE(reactor->isRegisteredNotifiee());
  EXPECT_FALSE(reactor->initialized());
  reactor->initializedIs(true);
  EXPECT_TRUE(reactor->initialized());
}

TEST_F(MemberProgrammingTest, ADroppedReactorIsAZombieWithoutStateMachine) {
  const auto entry = memberIs(5, 500);
  const auto reactor = sm->actionProfile(BfnTable::BfnMemberId(5));
  const std::uint32_t handle = memberHandle(5);
  startLog();
  EXPECT_EQ(sm->actionProfileDel(BfnTable::BfnMemberId(5)), entry);
  EXPECT_THAT(logLines(), ElementsAre(delMemberLine(handle)));
  EXPECT_TRUE(reactor->velMarkedForDeletion());
  EXPECT_FALSE(reactor->hasNotificationActive());
  EXPECT_EQ(reactor->ingressMirrorLagGroupActionProfileSm(), nullptr);
  EXPECT_EQ(sm->actionProfile(BfnTable::BfnMemberId(5)), nullptr);
  startLog();
  entry->actionIs(selectorAction(1));
  EXPECT_THAT(logLines(), IsEmpty());
}

TEST_F(MemberProgrammingTest, TheDeleteRunsWhenTheZombieBitIsSetAndOnlyThen) {
  memberIs(5, 500);
  const auto reactor = sm->actionProfile(BfnTable::BfnMemberId(5));
  const std::uint32_t handle = memberHandle(5);
  startLog();
  reactor->velDoZombieReactors(false);  // no change: nothing
  reactor->velDoZombieReactors(true);
  reactor->velDoZombieReactors(true);  // no change: nothing
  EXPECT_THAT(logLines(), ElementsAre(delMemberLine(handle)));
  EXPECT_TRUE(reactor->velMarkedForDeletion());
  EXPECT_FALSE(reactor->hasNotificationActive());
  EXPECT_THAT(registryMembers(), IsEmpty());
  // Dropped without its state machine, it deletes nothing more.
  reactor->ingressMirrorLagGroupActionProfileSmIs(nullptr);
  sm->actionProfileDel(BfnTable::BfnMemberId(5));
}

TEST_F(MemberProgrammingTest, LeavingTheZombieStateDeletesTooBeforeTheBitClears) {
  memberIs(5, 500);
  const auto reactor = sm->actionProfile(BfnTable::BfnMemberId(5));
  const std::uint32_t handle = memberHandle(5);
  reactor->velMarkedForDeletionIs(true);
  startLog();
  reactor->velDoZombieReactors(false);
  EXPECT_THAT(logLines(), ElementsAre(delMemberLine(handle)));
  EXPECT_FALSE(reactor->velMarkedForDeletion());
  EXPECT_THAT(registryMembers(), IsEmpty());
  reactor->ingressMirrorLagGroupActionProfileSmIs(nullptr);
  sm->actionProfileDel(BfnTable::BfnMemberId(5));
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
