#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ReflectFixture.h"
#include "Vel/ActivityManager.h"
#include "Vel/Allocate.h"
#include "Vel/EntityNotifieeConst.h"
#include "Vel/OperationNotSupportedException.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Vel::GenericIf;

BfnTable::BfnMemberId mid(std::uint32_t id) {
  return BfnTable::BfnMemberId(id);
}
BfnTable::BfnGroupId gid(std::uint32_t id) {
  return BfnTable::BfnGroupId(id);
}

// Generic notifiees attached to the four entities that have notifiees, with
// no state machine: each change arrives as the attribute's number, keyed
// changes with their key.
class GenericNotifieeTest : public ReflectFixture {
 protected:
  void TearDown() override {
    EXPECT_EQ(Vel::ActivityManager::instance().pending(), 0u);
    recorder = nullptr;
    ReflectFixture::TearDown();
  }

  Vel::Ptr<RawRecorder> recorder = Vel::allocate<RawRecorder>();
};

TEST_F(GenericNotifieeTest, TheAdapterIsTheEntitysRegisteredNotifiee) {
  const Vel::Ptr<Vel::PtrInterface> adapter = GenericIf(profile).notifieeIs(recorder);
  const auto asNotifiee = Vel::ptr_cast<IngressMirrorLagGroupActionProfile::NotifieeConst>(adapter);
  ASSERT_NE(asNotifiee, nullptr);
  EXPECT_EQ(asNotifiee->notifier(), profile);
  EXPECT_TRUE(asNotifiee->isRegisteredNotifiee());
  EXPECT_TRUE(profile->notifieeList()->isMember(asNotifiee.get()));
}

TEST_F(GenericNotifieeTest, ProfileEntriesArriveAs259WithTheMemberId) {
  const auto adapter = GenericIf(profile).notifieeIs(recorder);
  memberIs(1, 100);
  memberIs(2, 200);
  profile->entryDel(mid(1));
  profile->entryDel(mid(1));  // absent: nobody told
  EXPECT_THAT(recorder->seen, ElementsAre("259:1", "259:2", "259:1"));
  EXPECT_THAT(recorder->keyTypes, ElementsAre("BfnTable::BfnMemberId", "BfnTable::BfnMemberId",
                                              "BfnTable::BfnMemberId"));
}

TEST_F(GenericNotifieeTest, ProfileGroupsArriveAs258WithTheGroupId) {
  const auto adapter = GenericIf(profile).notifieeIs(recorder);
  groupIs(10, 4, 1);
  groupIs(10, 4, 1);  // already there: nobody told
  groupIs(11, 4, 1);
  profile->groupDel(gid(10));
  EXPECT_THAT(recorder->seen, ElementsAre("258:10", "258:11", "258:10"));
  EXPECT_THAT(recorder->keyTypes,
              ElementsAre("BfnTable::BfnGroupId", "BfnTable::BfnGroupId", "BfnTable::BfnGroupId"));
}

TEST_F(GenericNotifieeTest, GroupMembersArriveAs263WithTheMemberId) {
  const auto group = groupIs(10, 4, 1);
  const auto adapter = GenericIf(group).notifieeIs(recorder);
  group->memberIs(mid(1));
  group->memberIs(mid(1));  // already there: nobody told
  group->memberIs(mid(2));
  group->memberDel(mid(1));
  EXPECT_THAT(recorder->seen, ElementsAre("263:1", "263:2", "263:1"));
  EXPECT_THAT(recorder->keyTypes, ElementsAre("BfnTable::BfnMemberId", "BfnTable::BfnMemberId",
                                              "BfnTable::BfnMemberId"));
}

TEST_F(GenericNotifieeTest, MemberActiveArrivesAs259WithoutAKey) {
  const auto member = groupIs(10, 4, 1)->memberIs(mid(1));
  const auto adapter = GenericIf(member).notifieeIs(recorder);
  member->activeIs(false);
  member->activeIs(false);  // unchanged: nobody told
  member->activeIs(true);
  EXPECT_THAT(recorder->seen, ElementsAre("259", "259"));
  EXPECT_THAT(recorder->keyTypes, IsEmpty());
}

TEST_F(GenericNotifieeTest, EntryActionArrivesAs260WithoutAKey) {
  const auto entry = memberIs(1, 100);
  const auto adapter = GenericIf(entry).notifieeIs(recorder);
  entry->actionIs(selectorAction(200));
  entry->actionIs(entry->action());  // the same object: nobody told
  EXPECT_THAT(recorder->seen, ElementsAre("260"));
  EXPECT_THAT(recorder->keyTypes, IsEmpty());
}

TEST_F(GenericNotifieeTest, ChangesMadeReflectivelyArriveToo) {
  const auto group = groupIs(10, 4, 1);
  const auto entry = memberIs(1, 100);
  const auto onProfile = GenericIf(profile).notifieeIs(recorder);
  const auto onGroup = GenericIf(group).notifieeIs(recorder);
  const auto onEntry = GenericIf(entry).notifieeIs(recorder);
  GenericIf profileIf(profile);
  GenericIf groupIf(group);
  profileIf.attribute(
      "entry", GenericIf::opWrite,
      {Vel::GenericValue(IngressMirrorLagGroupActionProfileEntry::typeRecord(), entryOf(2, 200))});
  groupIf.attribute("member", GenericIf::opWrite, {keyOf(groupIf, "member", "2")});
  const auto member = group->member(mid(2));
  const auto onMember = GenericIf(member).notifieeIs(recorder);
  GenericIf(member).attribute("active", GenericIf::opWrite, {boolean(false)});
  GenericIf(entry).attribute(
      "action", GenericIf::opWrite,
      {Vel::GenericValue(IngressMirrorLagGroupBaseActionProfileSpec::typeRecord(),
                         selectorAction(300))});
  groupIf.attribute("member", GenericIf::opDelete, {keyOf(groupIf, "member", "2")});
  profileIf.attribute("group", GenericIf::opDelete, {keyOf(profileIf, "group", "10")});
  EXPECT_THAT(recorder->seen, ElementsAre("259:2", "263:2", "259", "260", "263:2", "258:10"));
}

TEST_F(GenericNotifieeTest, DeferredFormsArriveWithoutAKeyWhenTheQueueIsDrained) {
  const auto adapter = GenericIf(profile).notifieeIs(recorder);
  Vel::ptr_cast<Vel::PtrInterface::NotifieeConst>(adapter)->deferredNotificationIs(true);
  memberIs(1, 100);
  groupIs(10, 4, 1);
  EXPECT_THAT(recorder->seen, ElementsAre("259:1", "258:10"));
  EXPECT_EQ(Vel::ActivityManager::instance().drain(), 2u);
  EXPECT_THAT(recorder->seen, ElementsAre("259:1", "258:10", "259", "258"));
}

TEST_F(GenericNotifieeTest, OneGenericNotifieeHearsEveryEntityItIsAttachedTo) {
  const auto a = memberIs(1, 100);
  const auto b = memberIs(2, 100);
  const auto onA = GenericIf(a).notifieeIs(recorder);
  const auto onB = GenericIf(b).notifieeIs(recorder);
  b->actionIs(selectorAction(1));
  a->actionIs(selectorAction(2));
  EXPECT_THAT(recorder->seen, ElementsAre("260", "260"));
}

TEST_F(GenericNotifieeTest, DroppingTheAdapterEndsTheForwarding) {
  const auto member = groupIs(10, 4, 1)->memberIs(mid(1));
  auto adapter = GenericIf(member).notifieeIs(recorder);
  member->activeIs(false);
  adapter = nullptr;
  member->activeIs(true);
  EXPECT_THAT(recorder->seen, ElementsAre("259"));
}

TEST_F(GenericNotifieeTest, AnAdapterWithoutGenericNotifieeForwardsNothing) {
  const auto member = groupIs(10, 4, 1)->memberIs(mid(1));
  const auto adapter = GenericIf(member).notifieeIs(nullptr);
  ASSERT_NE(adapter, nullptr);
  member->activeIs(false);
  EXPECT_FALSE(member->active());
}

TEST_F(GenericNotifieeTest, TypesWithoutNotifieesRefuseThem) {
  makeSm();
  const std::vector<GenericIf> unobservable = {
      GenericIf(sm), GenericIf(helper), GenericIf(selectorAction(1)),
      GenericIf(Vel::allocate<IngressMirrorLagGroupMatchSpec>())};
  for (GenericIf object : unobservable) {
    EXPECT_EQ(messageOf<Vel::OperationNotSupportedException>([&] { object.notifieeIs(recorder); }),
              "Operation notifiee is not supported on type '" + object.type().name() + "'");
  }
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
