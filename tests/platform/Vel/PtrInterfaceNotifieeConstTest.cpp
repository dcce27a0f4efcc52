#include <gtest/gtest.h>

#include <stdexcept>

#include "Vel/ActivityManager.h"
#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Allocate.h"
#include "Vel/NotifieeList.h"
#include "Vel/Ptr.h"
#include "Vel/PtrInterfaceNotifieeConst.h"

// Named (not anonymous) so that the readable type names are known to the tests.
namespace NotifieeConstTestTypes {

// The smallest notifier: an object with a notifiee list.
class Source : public Vel::PtrInterface {
 public:
  Vel::NotifieeList* notifieeList() const override { return &notifiees_; }

 private:
  mutable Vel::NotifieeList notifiees_;
};

class Watcher : public Vel::PtrInterface::NotifieeConst {};

}  // namespace NotifieeConstTestTypes

namespace {

using namespace NotifieeConstTestTypes;

class NotifieeConstTest : public ::testing::Test {
 protected:
  void TearDown() override {
    first = nullptr;
    second = nullptr;
    watcher = nullptr;
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Source>().liveObjects(), 0u);
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Watcher>().liveObjects(), 0u);
  }

  static bool listed(const Vel::Ptr<Source>& source, const Vel::Ptr<Watcher>& watcher) {
    return source->notifieeList()->isMember(watcher.get());
  }

  Vel::Ptr<Source> first = Vel::allocate<Source>();
  Vel::Ptr<Source> second = Vel::allocate<Source>();
  Vel::Ptr<Watcher> watcher = Vel::allocate<Watcher>();
};

TEST_F(NotifieeConstTest, NewNotifieeIsActiveUnregisteredAndFollowsNothing) {
  EXPECT_TRUE(watcher->hasNotificationActive());
  EXPECT_FALSE(watcher->isRegisteredNotifiee());
  EXPECT_EQ(watcher->notifier(), nullptr);
  EXPECT_FALSE(watcher->deferredNotification());
  EXPECT_FALSE(watcher->velReactor());
  EXPECT_EQ(watcher->actsm(), nullptr);
  EXPECT_EQ(&watcher->velFwkActivity(), &Vel::ActivityManager::instance());
  EXPECT_EQ(watcher->references(), 1u);
}

TEST_F(NotifieeConstTest, DefaultHandlersChangeNothing) {
  watcher->notifierIs(first);
  watcher->isRegisteredNotifieeIs(true);
  watcher->handleNotification(3, Vel::NotificationKind::immediate);
  watcher->handleNotification(3, Vel::NotificationKind::deferred);
  watcher->onNotificationException(std::runtime_error("lost"));
  watcher->onZeroReferences();
  EXPECT_TRUE(watcher->isRegisteredNotifiee());
  EXPECT_TRUE(listed(first, watcher));
  EXPECT_EQ(watcher->notifier(), first);
  EXPECT_TRUE(watcher->hasNotificationActive());
}

TEST_F(NotifieeConstTest, DeferredDeliveryIsAFlagOfTheNotifiee) {
  watcher->deferredNotificationIs(true);
  EXPECT_TRUE(watcher->deferredNotification());
  watcher->deferredNotificationIs(false);
  EXPECT_FALSE(watcher->deferredNotification());
}

TEST_F(NotifieeConstTest, NotifierIsHeldByACountedReference) {
  watcher->notifierIs(first);
  EXPECT_EQ(watcher->notifier(), first);
  EXPECT_EQ(first->references(), 2u);
  watcher->notifierIs(nullptr);
  EXPECT_EQ(watcher->notifier(), nullptr);
  EXPECT_EQ(first->references(), 1u);
}

TEST_F(NotifieeConstTest, NotifieeKeepsItsNotifierAlive) {
  watcher->notifierIs(first);
  watcher->isRegisteredNotifieeIs(true);
  first = nullptr;
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Source>().liveObjects(), 2u);
  watcher = nullptr;
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Source>().liveObjects(), 1u);
}

TEST_F(NotifieeConstTest, RegistrationAddsToAndRemovesFromTheNotifiersList) {
  watcher->notifierIs(first);
  EXPECT_TRUE(first->notifieeList()->empty());
  watcher->isRegisteredNotifieeIs(true);
  EXPECT_TRUE(watcher->isRegisteredNotifiee());
  EXPECT_TRUE(listed(first, watcher));
  EXPECT_EQ(first->notifieeList()->size(), 1u);
  watcher->isRegisteredNotifieeIs(false);
  EXPECT_FALSE(watcher->isRegisteredNotifiee());
  EXPECT_TRUE(first->notifieeList()->empty());
}

TEST_F(NotifieeConstTest, UnchangedRegistrationFlagDoesNothing) {
  watcher->notifierIs(first);
  watcher->isRegisteredNotifieeIs(true);
  first->notifieeList()->deleteMember(watcher.get());
  watcher->isRegisteredNotifieeIs(true);
  EXPECT_TRUE(first->notifieeList()->empty());
  watcher->isRegisteredNotifieeIs(false);
  first->notifieeList()->newMember(watcher.get());
  watcher->isRegisteredNotifieeIs(false);
  EXPECT_TRUE(listed(first, watcher));
  first->notifieeList()->deleteAll();
}

TEST_F(NotifieeConstTest, RegistrationWithoutANotifierIsAppliedWhenOneIsSet) {
  watcher->isRegisteredNotifieeIs(true);
  EXPECT_TRUE(watcher->isRegisteredNotifiee());
  watcher->notifierIs(first);
  EXPECT_TRUE(listed(first, watcher));
}

TEST_F(NotifieeConstTest, NotifierIsMovesARegisteredNotifieeToTheNewList) {
  watcher->notifierIs(first);
  watcher->isRegisteredNotifieeIs(true);
  watcher->notifierIs(second);
  EXPECT_TRUE(first->notifieeList()->empty());
  EXPECT_TRUE(listed(second, watcher));
  EXPECT_EQ(first->references(), 1u);
  EXPECT_EQ(second->references(), 2u);
  watcher->notifierIs(nullptr);
  EXPECT_TRUE(second->notifieeList()->empty());
  EXPECT_TRUE(watcher->isRegisteredNotifiee());
}

TEST_F(NotifieeConstTest, NotifierIsLeavesAnUnregisteredNotifieeOutOfTheLists) {
  watcher->notifierIs(first);
  watcher->notifierIs(second);
  EXPECT_TRUE(first->notifieeList()->empty());
  EXPECT_TRUE(second->notifieeList()->empty());
  EXPECT_EQ(watcher->notifier(), second);
}

TEST_F(NotifieeConstTest, SameNotifierAgainChangesNothing) {
  watcher->notifierIs(first);
  watcher->isRegisteredNotifieeIs(true);
  first->notifieeList()->deleteMember(watcher.get());
  watcher->notifierIs(first);
  EXPECT_TRUE(first->notifieeList()->empty());
  EXPECT_EQ(first->references(), 2u);
}

TEST_F(NotifieeConstTest, DestroyedNotifieeLeavesItsNotifiersList) {
  Vel::Ptr<Watcher> other = Vel::allocate<Watcher>();
  for (const Vel::Ptr<Watcher>& w : {watcher, other}) {
    w->notifierIs(first);
    w->isRegisteredNotifieeIs(true);
  }
  watcher = nullptr;
  EXPECT_EQ(first->notifieeList()->size(), 1u);
  EXPECT_TRUE(listed(first, other));
  EXPECT_EQ(first->references(), 2u);
  other = nullptr;
  EXPECT_TRUE(first->notifieeList()->empty());
  EXPECT_EQ(first->references(), 1u);
}

TEST_F(NotifieeConstTest, DestroyedUnregisteredNotifieeLeavesTheListAlone) {
  watcher->notifierIs(first);
  first->notifieeList()->newMember(watcher.get());
  watcher = nullptr;
  EXPECT_EQ(first->notifieeList()->size(), 1u);
  first->notifieeList()->deleteAll();
}

}  // namespace
