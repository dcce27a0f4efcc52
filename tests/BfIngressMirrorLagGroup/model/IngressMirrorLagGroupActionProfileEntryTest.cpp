#include "BfIngressMirrorLagGroup/model/IngressMirrorLagGroupActionProfileEntry.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "EntityTestSupport.h"
#include "Vel/BulkChange.h"
#include "Vel/NotifieeList.h"

namespace BfIngressMirrorLagGroup::EntityTesting {
namespace {

class IngressMirrorLagGroupActionProfileEntryTest : public EntityTest {
 protected:
  void TearDown() override {
    seven = nullptr;
    EntityTest::TearDown();
  }

  Vel::Ptr<EntryRecorder> entryRecorder(const std::string& name) {
    return recorder<EntryRecorder>(name, seven);
  }

  Vel::Ptr<Entry> seven = entry(7, 70);
};

TEST_F(IngressMirrorLagGroupActionProfileEntryTest, HoldsItsMemberIdAndActionAndIsNamedAfterTheId) {
  const Vel::Ptr<Spec> action = spec(3);
  const Vel::Ptr<Entry> made = Vel::allocate<Entry>(BfnTable::BfnMemberId(42), action);
  EXPECT_EQ(made->memberId().value(), 42u);
  EXPECT_EQ(made->action(), action);
  EXPECT_EQ(made->name(), "42");
  EXPECT_EQ(made->parent(), nullptr);
  EXPECT_TRUE(made->notifieeList()->empty());
}

TEST_F(IngressMirrorLagGroupActionProfileEntryTest, HoldsACountedReferenceToItsAction) {
  Vel::Ptr<Spec> action = spec(3);
  const Vel::Ptr<Entry> made = Vel::allocate<Entry>(BfnTable::BfnMemberId(42), action);
  const Spec* raw = action.get();
  action = nullptr;
  EXPECT_EQ(made->action().get(), raw);
  EXPECT_EQ(made->action()->lagMemberSelector(), 3u);
}

TEST_F(IngressMirrorLagGroupActionProfileEntryTest, ActionIsOfTheSameReferenceNotifiesNothing) {
  const Vel::Ptr<EntryRecorder> a = entryRecorder("a");
  seven->actionIs(seven->action());
  EXPECT_TRUE(log.empty());
}

TEST_F(IngressMirrorLagGroupActionProfileEntryTest,
       ActionIsOfAnotherObjectNotifiesOnceEvenIfEqual) {
  const Vel::Ptr<EntryRecorder> a = entryRecorder("a");
  const Vel::Ptr<Spec> same = spec(70);
  seven->actionIs(same);
  EXPECT_EQ(seven->action(), same);
  EXPECT_EQ(log, Log{"a.onAction()"});
  seven->actionIs(same);
  EXPECT_EQ(log, Log{"a.onAction()"});
}

TEST_F(IngressMirrorLagGroupActionProfileEntryTest, ActionIsReachesEveryNotifieeInOrder) {
  const Vel::Ptr<EntryRecorder> a = entryRecorder("a");
  const Vel::Ptr<EntryRecorder> b = entryRecorder("b");
  seven->actionIs(spec(1));
  EXPECT_EQ(log, (Log{"a.onAction()", "b.onAction()"}));
}

TEST_F(IngressMirrorLagGroupActionProfileEntryTest,
       NotifieeUnregisteringItselfLetsTheOthersBeCalled) {
  const Vel::Ptr<EntryRecorder> a = entryRecorder("a");
  const Vel::Ptr<EntryRecorder> b = entryRecorder("b");
  a->action = [&a](const std::string&) { a->isRegisteredNotifieeIs(false); };
  seven->actionIs(spec(1));
  seven->actionIs(spec(2));
  EXPECT_EQ(log, (Log{"a.onAction()", "b.onAction()", "b.onAction()"}));
}

TEST_F(IngressMirrorLagGroupActionProfileEntryTest, NotifieeUnregisteredByAnotherIsNotCalled) {
  const Vel::Ptr<EntryRecorder> a = entryRecorder("a");
  const Vel::Ptr<EntryRecorder> b = entryRecorder("b");
  const Vel::Ptr<EntryRecorder> c = entryRecorder("c");
  a->action = [&b](const std::string&) { b->isRegisteredNotifieeIs(false); };
  seven->actionIs(spec(1));
  EXPECT_EQ(log, (Log{"a.onAction()", "c.onAction()"}));
}

TEST_F(IngressMirrorLagGroupActionProfileEntryTest, NullActionIsAnotherReference) {
  const Vel::Ptr<EntryRecorder> a = entryRecorder("a");
  seven->actionIs(nullptr);
  EXPECT_EQ(seven->action(), nullptr);
  seven->actionIs(nullptr);
  EXPECT_EQ(log, Log{"a.onAction()"});
}

// The new spec is held, and the one it replaced released, before the
// notifiees hear of it; a notifiee's exception leaves it so.
TEST_F(IngressMirrorLagGroupActionProfileEntryTest,
       ExceptionFromANotifieeReachesTheCallerWithTheActionHeld) {
  const Vel::Ptr<EntryRecorder> a = entryRecorder("a");
  const Vel::Ptr<Spec> next = spec(2);
  std::size_t specsAlive = 0;
  a->action = [&](const std::string&) {
    specsAlive = alive<Spec>();
    throw std::runtime_error("refused");
  };
  EXPECT_THROW(seven->actionIs(next), std::runtime_error);
  EXPECT_EQ(seven->action(), next);
  EXPECT_EQ(specsAlive, 1u);
  EXPECT_EQ(log, Log{"a.onAction()"});
}

TEST_F(IngressMirrorLagGroupActionProfileEntryTest, BulkChangeOfActionEndsInOneOnAction) {
  const Vel::Ptr<EntryRecorder> a = entryRecorder("a");
  {
    Vel::BulkChange action(seven, Entry::actionAttribute);
    seven->actionIs(spec(1));
    seven->actionIs(spec(2));
    EXPECT_TRUE(log.empty());
  }
  EXPECT_EQ(log, Log{"a.onAction()"});
}

TEST_F(IngressMirrorLagGroupActionProfileEntryTest, DeferredDeliveryDoesNotRepeatOnAction) {
  const Vel::Ptr<EntryRecorder> a = entryRecorder("a");
  a->deferredNotificationIs(true);
  seven->actionIs(spec(1));
  Vel::ActivityManager::instance().drain();
  EXPECT_EQ(log, Log{"a.onAction()"});
}

TEST_F(IngressMirrorLagGroupActionProfileEntryTest, NotifieeFollowsOnlyAnEntry) {
  const Vel::Ptr<EntryRecorder> a = entryRecorder("a");
  EXPECT_EQ(a->notifier(), seven);
  a->notifierIs(Vel::allocate<Profile>("p"));
  EXPECT_EQ(a->notifier(), nullptr);
  EXPECT_TRUE(seven->notifieeList()->empty());
  seven->actionIs(spec(1));
  EXPECT_TRUE(log.empty());
}

TEST_F(IngressMirrorLagGroupActionProfileEntryTest,
       ActionChangeOfAnEntryInTheProfileIsNotAProfileChange) {
  const Vel::Ptr<Profile> profile = Vel::allocate<Profile>("p");
  profile->entryIs(seven);
  const Vel::Ptr<ProfileRecorder> p = recorder<ProfileRecorder>("p", profile);
  const Vel::Ptr<EntryRecorder> a = entryRecorder("a");
  seven->actionIs(spec(1));
  EXPECT_EQ(log, Log{"a.onAction()"});
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup::EntityTesting
