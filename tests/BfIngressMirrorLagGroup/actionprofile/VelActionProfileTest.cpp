#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "ActionProfileFixture.h"
#include "Pd/PipeStatus.h"
#include "Vel/Allocate.h"
#include "support/ScratchShadowBase.h"
#include "support/ShadowWalk.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using EntryKey = MbbVaultKey::VaultKeyManager::EntryKey;

// The enumeration holds setLagMemberSelectorActionProfileSpec alone: any other
// value is an action the chip has no PD function for.
constexpr auto kUnknownActionType = static_cast<IngressMirrorLagGroupActionProfileType>(7);

// The member reactors of a state machine that follows the fixture's profile:
// each configured member is added, modified and deleted in the chip as its
// entry comes, changes and goes.
class VelActionProfileTest : public ActionProfileFixture {
 protected:
  void SetUp() override {
    ActionProfileFixture::SetUp();
    makeSm();
  }

  Vel::Ptr<Sm::VelActionProfile> reactor(std::uint32_t memberId) const {
    return sm->actionProfile(BfnTable::BfnMemberId(memberId));
  }

  // A member made in the chip behind the plug-in's back, as an earlier
  // instance of the host left it; gives its handle.
  std::uint32_t chipMember(std::uint16_t selector) const {
    const p4_pd_kestro_switch_setLagMemberSelector_action_spec_t spec{selector};
    std::uint32_t handle = 0;
    EXPECT_EQ(chip.addMember(kPdSession, {kDevice, kPipe}, &spec, &handle), PIPE_STATUS_SUCCESS);
    return handle;
  }

  // A member reactor that was never programmed has no handle to delete: it is
  // taken off its state machine so that the end of the test drops it quietly.
  void forgetUnprogrammed(std::uint32_t memberId) const {
    reactor(memberId)->ingressMirrorLagGroupActionProfileSmIs(nullptr);
  }
};

TEST_F(VelActionProfileTest, ANewMemberIsAddedOnThePdSessionAndTargetAndRegistered) {
  startLog();
  const auto entry = memberIs(5, 500);
  const std::uint32_t handle = memberHandle(5);
  ASSERT_NE(handle, 0u);
  EXPECT_THAT(logLines(), ElementsAre(chipsim_test::kAddMember +
                                      "(sess=7, dev=3, pipe=0x2, selector=500) = 0 mbr=" +
                                      std::to_string(handle)));
  EXPECT_THAT(registryMembers(), ElementsAre(std::pair{5u, handle}));
  EXPECT_EQ(chip.members(), 1u);
  ASSERT_NE(reactor(5), nullptr);
  EXPECT_EQ(reactor(5)->actionProfile(), entry);
  EXPECT_EQ(reactor(5)->fwkKey(), BfnTable::BfnMemberId(5));
  EXPECT_EQ(reactor(5)->ingressMirrorLagGroupActionProfileSm(), sm.get());
  EXPECT_EQ(reactor(5)->actsm(), sm.get());
  EXPECT_TRUE(reactor(5)->velReactor());
  EXPECT_TRUE(reactor(5)->hasNotificationActive());
  EXPECT_FALSE(reactor(5)->velMarkedForDeletion());
}

// "@0": both managers are told before the chip is called.
TEST_F(VelActionProfileTest, TheStatusAndTheKeyOfANewMemberComeBeforeTheAdd) {
  startLog();
  memberIs(5, 500);
  EXPECT_THAT(events, ElementsAre("initAdtStatus 5 @0", "allocAnon 5 @0"));
}

TEST_F(VelActionProfileTest, AMemberWhoseHandleIsRegisteredIsModifiedOnTheStateMachinesSession) {
  const std::uint32_t adopted = chipMember(400);
  registry().memberIs(BfnTable::BfnMemberId(5), adopted);
  startLog();
  memberIs(5, 500);
  EXPECT_THAT(logLines(), ElementsAre(chipsim_test::kModifyMember + "(sess=9, dev=3, mbr=" +
                                      std::to_string(adopted) + ", selector=500) = 0"));
  EXPECT_THAT(registryMembers(), ElementsAre(std::pair{5u, adopted}));
  // No key is reserved for a member that is not created.
  EXPECT_THAT(events, ElementsAre("initAdtStatus 5 @0"));
  EXPECT_EQ(chip.members(), 1u);
}

TEST_F(VelActionProfileTest, EachNewActionOfTheEntryModifiesTheMember) {
  const auto entry = memberIs(5, 500);
  const std::uint32_t handle = memberHandle(5);
  startLog();
  entry->actionIs(selectorAction(501));
  entry->actionIs(selectorAction(502));
  EXPECT_THAT(logLines(),
              ElementsAre(modifyMemberLine(handle, 501), modifyMemberLine(handle, 502)));
  EXPECT_THAT(events, ElementsAre("initAdtStatus 5 @0", "initAdtStatus 5 @1"));
  EXPECT_THAT(registryMembers(), ElementsAre(std::pair{5u, handle}));
  EXPECT_EQ(chip.members(), 1u);
}

TEST_F(VelActionProfileTest, TheSameActionObjectAgainIsNoChange) {
  const auto entry = memberIs(5, 500);
  startLog();
  entry->actionIs(entry->action());
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_THAT(events, IsEmpty());
}

TEST_F(VelActionProfileTest, AMemberWithAnActionOfAnotherTypeIsNotProgrammed) {
  auto action = Vel::allocate<IngressMirrorLagGroupBaseActionProfileSpec>();
  action->actionTypeIs(kUnknownActionType);
  action->lagMemberSelectorIs(500);
  startLog();
  profile->entryIs(
      Vel::allocate<IngressMirrorLagGroupActionProfileEntry>(BfnTable::BfnMemberId(5), action));
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_THAT(registryMembers(), IsEmpty());
  EXPECT_EQ(chip.members(), 0u);
  ASSERT_NE(reactor(5), nullptr);
  forgetUnprogrammed(5);
}

TEST_F(VelActionProfileTest, AProgrammedMemberTakingAnActionOfAnotherTypeIsLeftAsItIs) {
  const auto entry = memberIs(5, 500);
  const std::uint32_t handle = memberHandle(5);
  auto action = Vel::allocate<IngressMirrorLagGroupBaseActionProfileSpec>();
  action->actionTypeIs(kUnknownActionType);
  action->lagMemberSelectorIs(600);
  startLog();
  entry->actionIs(action);
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_THAT(registryMembers(), ElementsAre(std::pair{5u, handle}));
}

TEST_F(VelActionProfileTest, ARemovedMemberIsDeletedOnTheStateMachinesSession) {
  memberIs(8, 800);
  memberIs(5, 500);
  const std::uint32_t handle = memberHandle(5);
  const std::uint32_t other = memberHandle(8);
  startLog();
  profile->entryDel(BfnTable::BfnMemberId(5));
  EXPECT_THAT(logLines(), ElementsAre(chipsim_test::kDelMember +
                                      "(sess=9, dev=3, mbr=" + std::to_string(handle) + ") = 0"));
  EXPECT_THAT(events, ElementsAre("initAdtStatus 5 @0"));
  EXPECT_THAT(registryMembers(), ElementsAre(std::pair{8u, other}));
  EXPECT_EQ(reactor(5), nullptr);
  EXPECT_EQ(sm->actionProfiles(), 1u);
  EXPECT_EQ(chip.members(), 1u);
}

TEST_F(VelActionProfileTest, ADeletedMemberConfiguredAgainIsAddedAnew) {
  memberIs(5, 500);
  profile->entryDel(BfnTable::BfnMemberId(5));
  startLog();
  memberIs(5, 600);
  EXPECT_THAT(logLines(), ElementsAre(addMemberLine(600, memberHandle(5))));
}

TEST_F(VelActionProfileTest, AReactorTurningIntoAZombieDeletesItsMember) {
  memberIs(5, 500);
  const std::uint32_t handle = memberHandle(5);
  const auto member = reactor(5);
  startLog();
  member->velDoZombieReactors(true);
  EXPECT_THAT(logLines(), ElementsAre(delMemberLine(handle)));
  EXPECT_TRUE(member->velMarkedForDeletion());
  EXPECT_FALSE(member->hasNotificationActive());
  EXPECT_THAT(registryMembers(), IsEmpty());
  // Already a zombie: nothing more to delete.
  startLog();
  member->velDoZombieReactors(true);
  EXPECT_THAT(logLines(), IsEmpty());
}

TEST_F(VelActionProfileTest, AZombieReactorProgramsNothingOnAnActionChange) {
  memberIs(5, 500);
  const auto member = reactor(5);
  member->velDoZombieReactors(true);
  startLog();
  member->onAction();
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_THAT(events, IsEmpty());
  EXPECT_THAT(registryMembers(), IsEmpty());
}

TEST_F(VelActionProfileTest, AZombieReactorFollowsANewEntryWithoutProgrammingIt) {
  memberIs(5, 500);
  const auto member = reactor(5);
  member->velDoZombieReactors(true);
  const auto next = entryOf(5, 600);
  startLog();
  member->notifierIs(next);
  EXPECT_EQ(member->actionProfile(), next);
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_THAT(events, IsEmpty());
  EXPECT_THAT(registryMembers(), IsEmpty());
}

TEST_F(VelActionProfileTest, ALiveReactorFollowingANewEntryProgramsIt) {
  const auto first = memberIs(5, 500);
  const std::uint32_t handle = memberHandle(5);
  const auto member = reactor(5);
  const auto next = entryOf(5, 600);
  startLog();
  member->notifierIs(next);
  EXPECT_EQ(member->actionProfile(), next);
  EXPECT_THAT(logLines(), ElementsAre(modifyMemberLine(handle, 600)));
  // The entry left behind is no longer followed.
  startLog();
  first->actionIs(selectorAction(700));
  EXPECT_THAT(logLines(), IsEmpty());
}

TEST_F(VelActionProfileTest, AnEntryWithoutActionIsNotProgrammed) {
  startLog();
  profile->entryIs(
      Vel::allocate<IngressMirrorLagGroupActionProfileEntry>(BfnTable::BfnMemberId(5), nullptr));
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_THAT(registryMembers(), IsEmpty());
  forgetUnprogrammed(5);
}

TEST_F(VelActionProfileTest, TheSessionHandleIsZeroUntilTheHostSetsIt) {
  sm->sessionHandleIs(0);
  memberIs(5, 500);
  const std::uint32_t handle = memberHandle(5);
  startLog();
  profile->entryDel(BfnTable::BfnMemberId(5));
  EXPECT_THAT(logLines(), ElementsAre(chipsim_test::kDelMember +
                                      "(sess=0, dev=3, mbr=" + std::to_string(handle) + ") = 0"));
}

TEST_F(VelActionProfileTest, ANullNotifierProgramsAndDeletesNothing) {
  memberIs(5, 500);
  const auto member = reactor(5);
  startLog();
  member->notifierIs(nullptr);
  EXPECT_EQ(member->actionProfile(), nullptr);
  member->notifierIs(nullptr);
  // An object that is not an entry counts as null.
  member->notifierIs(Vel::allocate<IngressMirrorLagGroupMember>(BfnTable::BfnMemberId(5)));
  EXPECT_EQ(member->actionProfile(), nullptr);
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_NE(memberHandle(5), 0u);
  // Pointed at an entry again, it programs it.
  member->notifierIs(profile->entry(BfnTable::BfnMemberId(5)));
  EXPECT_THAT(logLines(), ElementsAre(modifyMemberLine(memberHandle(5), 500)));
}

TEST_F(VelActionProfileTest, LeavingTheZombieStateDeletesTooBeforeTheBitClears) {
  memberIs(5, 500);
  const auto member = reactor(5);
  const std::uint32_t handle = memberHandle(5);
  member->velMarkedForDeletionIs(true);
  startLog();
  member->velDoZombieReactors(false);
  EXPECT_THAT(logLines(), ElementsAre(delMemberLine(handle)));
  EXPECT_FALSE(member->velMarkedForDeletion());
  EXPECT_THAT(registryMembers(), IsEmpty());
  forgetUnprogrammed(5);
}

TEST_F(VelActionProfileTest, TheReactorIsKeyedByItsMemberIdAndBelongsToItsStateMachine) {
  memberIs(5, 500);
  const auto member = reactor(5);
  EXPECT_EQ(member->fwkKey(), BfnTable::BfnMemberId(5));
  EXPECT_TRUE(member->velReactor());
  EXPECT_EQ(member->actsm(), sm.get());
  EXPECT_EQ(member->ingressMirrorLagGroupActionProfileSm(), sm.get());
  EXPECT_TRUE(member->hasNotificationActive());
  EXPECT_TRUE(member->isRegisteredNotifiee());
  EXPECT_FALSE(member->initialized());
  member->initializedIs(true);
  EXPECT_TRUE(member->initialized());
}

// The key manager bound to the PD object is the state machine's too: the key
// the reactor reserves is the one the member's shadow record is written under.
class VelActionProfileShadowTest : public VelActionProfileTest {
 protected:
  void SetUp() override {
    ActionProfileFixture::SetUp();
    keys = Vel::allocate<MbbVaultKey::VaultKeyManager>(base.str(),
                                                       MbbVaultKey::ShadowCapacity{16, 16, 8});
    helper->pdLib()->vaultKeyManagerIs(keys);
    sm = Sm::IngressMirrorLagGroupActionProfileSmIs(profile, helper, keys, statusManager);
    sm->sessionHandleIs(kSmSession);
  }
  void TearDown() override {
    ActionProfileFixture::TearDown();
    keys = nullptr;
  }

  std::vector<BfnMbbShared::AdtEntryConfig> memberRecords() const {
    const auto walk = shadow_test::walkShadow(keys->adtVaultTableConfig());
    EXPECT_EQ(walk.corruption, "");
    return walk.records;
  }

  shadow_test::ScratchShadowBase base{"velactionprofile"};
  Vel::Ptr<MbbVaultKey::VaultKeyManager> keys;
};

TEST_F(VelActionProfileShadowTest, AnAddedMemberIsRecordedUnderItsAnonymousKey) {
  memberIs(5, 500);
  const std::uint32_t handle = memberHandle(5);
  const auto records = memberRecords();
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].key(), EntryKey(MbbVaultKey::VaultKeyManager::kAnonHigh, 5));
  EXPECT_EQ(keys->anonId(records[0].key()), 5u);
  EXPECT_EQ(records[0].memberHandle(), handle);
  EXPECT_THAT(keys->memberShadow()->intents(), IsEmpty());
}

TEST_F(VelActionProfileShadowTest, AModifiedMemberKeepsItsRecord) {
  const auto entry = memberIs(5, 500);
  const std::uint32_t handle = memberHandle(5);
  entry->actionIs(selectorAction(501));
  const auto records = memberRecords();
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].memberHandle(), handle);
}

TEST_F(VelActionProfileShadowTest, ADeletedMemberLosesItsRecord) {
  memberIs(5, 500);
  memberIs(6, 600);
  const std::uint32_t kept = memberHandle(6);
  profile->entryDel(BfnTable::BfnMemberId(5));
  const auto records = memberRecords();
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].key(), EntryKey(MbbVaultKey::VaultKeyManager::kAnonHigh, 6));
  EXPECT_EQ(records[0].memberHandle(), kept);
  EXPECT_THAT(keys->memberShadow()->intents(), IsEmpty());
}

TEST_F(VelActionProfileShadowTest, AFailedAddRecordsNothing) {
  ASSERT_EQ(chip.failNext(chipsim_test::kAddMember.c_str(), 2, 1), 0);
  EXPECT_THROW(memberIs(5, 500), BfTable::BfNoSysResources);
  EXPECT_THAT(memberRecords(), IsEmpty());
  EXPECT_EQ(keys->memberShadow()->size(), 0u);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
