#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "NotifyTestSupport.h"
#include "Vel/ActivityManager.h"
#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Allocate.h"
#include "Vel/BulkChange.h"

namespace NotifyTestTypes {

// A recorder whose deferred notifications are delivered by an activity manager
// of its own.
class OwnActivityRecorder : public Recorder {
 public:
  OwnActivityRecorder(std::string name, Log* log, const Vel::Ptr<Shelf>& shelf,
                      Vel::ActivityManager* activity)
      : Recorder(std::move(name), log, shelf), activity_(activity) {}
  Vel::ActivityManager& velFwkActivity() const override { return *activity_; }

 private:
  Vel::ActivityManager* activity_;
};

}  // namespace NotifyTestTypes

namespace {

using namespace NotifyTestTypes;
using Vel::BulkChange;

class NotificationDeliveryTest : public NotificationTest {
 protected:
  void TearDown() override {
    shelf = nullptr;
    NotificationTest::TearDown();
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<OwnActivityRecorder>().liveObjects(), 0u);
  }

  Vel::Ptr<Recorder> deferredRecorder(const std::string& name, const Vel::Ptr<Shelf>& shelf) {
    Vel::Ptr<Recorder> r = recorder(name, shelf);
    r->deferredNotificationIs(true);
    return r;
  }

  Vel::ActivityManager& activity = Vel::ActivityManager::instance();
  Vel::Ptr<Shelf> shelf = Vel::allocate<Shelf>("shelf");
};

// Deferred delivery.

TEST_F(NotificationDeliveryTest, NothingIsQueuedWithoutANotifieeThatWantsDeferredDelivery) {
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  shelf->itemIs(1);
  EXPECT_EQ(activity.pending(), 0u);
  EXPECT_EQ(activity.drain(), 0u);
  EXPECT_EQ(log, Log{"a.onItem(1)"});
}

TEST_F(NotificationDeliveryTest, DeferredFormReachesOnlyTheNotifieesThatWantItWhenDrained) {
  Vel::Ptr<Recorder> a = deferredRecorder("a", shelf);
  Vel::Ptr<Recorder> b = recorder("b", shelf);
  shelf->itemIs(1);
  EXPECT_EQ(activity.pending(), 1u);
  EXPECT_EQ(log, (Log{"a.onItem(1)", "b.onItem(1)"}));
  EXPECT_EQ(activity.drain(), 1u);
  EXPECT_EQ(activity.pending(), 0u);
  EXPECT_EQ(log, (Log{"a.onItem(1)", "b.onItem(1)", "a.onItem()"}));
}

TEST_F(NotificationDeliveryTest, NotificationsOfTheSameAttributeAreCoalesced) {
  Vel::Ptr<Recorder> a = deferredRecorder("a", shelf);
  Vel::Ptr<Recorder> b = deferredRecorder("b", shelf);
  shelf->itemIs(1);
  shelf->itemIs(2);
  shelf->itemDel(1);
  EXPECT_EQ(activity.pending(), 1u);
  log.clear();
  EXPECT_EQ(activity.drain(), 2u);
  EXPECT_EQ(log, (Log{"a.onItem()", "b.onItem()"}));
}

TEST_F(NotificationDeliveryTest, QueueIsDrainedInTheOrderOfTheFirstNotifications) {
  Vel::Ptr<Shelf> other = Vel::allocate<Shelf>("other");
  Vel::Ptr<Recorder> a = deferredRecorder("a", shelf);
  Vel::Ptr<Recorder> o = deferredRecorder("o", other);
  shelf->tagIs(1);
  other->itemIs(1);
  shelf->itemIs(1);
  shelf->tagIs(2);
  other->itemIs(2);
  EXPECT_EQ(activity.pending(), 3u);
  log.clear();
  EXPECT_EQ(activity.drain(), 3u);
  EXPECT_EQ(log, (Log{"a.onTag()", "o.onItem()", "a.onItem()"}));
}

TEST_F(NotificationDeliveryTest, AttributeNotifiedAgainAfterDeliveryIsQueuedAgain) {
  Vel::Ptr<Recorder> a = deferredRecorder("a", shelf);
  shelf->itemIs(1);
  activity.drain();
  shelf->itemIs(2);
  EXPECT_EQ(activity.pending(), 1u);
  EXPECT_EQ(activity.drain(), 1u);
  EXPECT_EQ(log, (Log{"a.onItem(1)", "a.onItem()", "a.onItem(2)", "a.onItem()"}));
}

TEST_F(NotificationDeliveryTest, NotificationsQueuedDuringTheDrainAreDeliveredByIt) {
  Vel::Ptr<Shelf> other = Vel::allocate<Shelf>("other");
  Vel::Ptr<Recorder> a = deferredRecorder("a", shelf);
  Vel::Ptr<Recorder> o = deferredRecorder("o", other);
  a->action = [&](const std::string& callback) {
    if (callback == "onItem()")
      other->itemIs(5);
  };
  o->action = [&](const std::string& callback) {
    if (callback == "onItem()")
      shelf->tagIs(6);
  };
  shelf->itemIs(1);
  log.clear();
  EXPECT_EQ(activity.drain(), 3u);
  EXPECT_EQ(activity.pending(), 0u);
  EXPECT_EQ(log, (Log{"a.onItem()", "o.onItem(5)", "o.onItem()", "a.onTag(6)", "a.onTag()"}));
}

TEST_F(NotificationDeliveryTest, QueueKeepsTheNotifierAliveUntilDelivered) {
  Vel::Ptr<Recorder> a = Vel::allocate<Recorder>("a", &log);
  a->deferredNotificationIs(true);
  shelf->notifieeList()->newMember(a.get());
  shelf->itemIs(1);
  shelf = nullptr;
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Shelf>().liveObjects(), 1u);
  EXPECT_EQ(activity.drain(), 1u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Shelf>().liveObjects(), 0u);
  EXPECT_EQ(log, (Log{"a.onItem(1)", "a.onItem()", "a.onZeroReferences()"}));
}

TEST_F(NotificationDeliveryTest, DeleteAllDropsTheQueueWithoutDelivering) {
  Vel::Ptr<Recorder> a = deferredRecorder("a", shelf);
  shelf->itemIs(1);
  shelf->tagIs(1);
  activity.deleteAll();
  EXPECT_EQ(activity.pending(), 0u);
  EXPECT_EQ(activity.drain(), 0u);
  EXPECT_EQ(log, (Log{"a.onItem(1)", "a.onTag(1)"}));
  EXPECT_EQ(shelf->references(), 2u);
}

TEST_F(NotificationDeliveryTest, DrainSkipsNotifieesThatNoLongerWantOrGetTheNotification) {
  Vel::Ptr<Recorder> a = deferredRecorder("a", shelf);
  Vel::Ptr<Recorder> b = deferredRecorder("b", shelf);
  Vel::Ptr<Recorder> c = deferredRecorder("c", shelf);
  Vel::Ptr<Recorder> d = deferredRecorder("d", shelf);
  shelf->itemIs(1);
  log.clear();
  a->hasNotificationActiveIs(false);
  b->deferredNotificationIs(false);
  c->isRegisteredNotifieeIs(false);
  EXPECT_EQ(activity.drain(), 1u);
  EXPECT_EQ(log, Log{"d.onItem()"});
}

TEST_F(NotificationDeliveryTest, NotifieeWithItsOwnActivityManagerIsDeliveredByIt) {
  Vel::ActivityManager own;
  Vel::Ptr<OwnActivityRecorder> mine =
      Vel::allocate<OwnActivityRecorder>("mine", &log, shelf, &own);
  mine->deferredNotificationIs(true);
  Vel::Ptr<Recorder> a = deferredRecorder("a", shelf);
  shelf->itemIs(1);
  EXPECT_EQ(own.pending(), 1u);
  EXPECT_EQ(activity.pending(), 1u);
  log.clear();
  EXPECT_EQ(activity.drain(), 1u);
  EXPECT_EQ(log, Log{"a.onItem()"});
  EXPECT_EQ(own.drain(), 1u);
  EXPECT_EQ(log, (Log{"a.onItem()", "mine.onItem()"}));
}

TEST_F(NotificationDeliveryTest, ExceptionFromADeferredCallbackLeavesTheRestQueued) {
  Vel::Ptr<Shelf> other = Vel::allocate<Shelf>("other");
  Vel::Ptr<Recorder> a = deferredRecorder("a", shelf);
  Vel::Ptr<Recorder> o = deferredRecorder("o", other);
  a->action = [](const std::string& callback) {
    if (callback == "onItem()")
      throw std::runtime_error("deferred refused");
  };
  shelf->itemIs(1);
  other->itemIs(1);
  log.clear();
  try {
    activity.drain();
    ADD_FAILURE() << "the exception did not leave the drain";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()), "deferred refused");
  }
  EXPECT_EQ(activity.pending(), 1u);
  EXPECT_EQ(activity.drain(), 1u);
  EXPECT_EQ(log, (Log{"a.onItem()", "o.onItem()"}));
}

TEST_F(NotificationDeliveryTest, EntityThatIsNotCountedQueuesNothing) {
  Shelf onStack("stack");
  Vel::Ptr<Recorder> a = Vel::allocate<Recorder>("a", &log);
  a->deferredNotificationIs(true);
  onStack.notifieeList()->newMember(a.get());
  onStack.itemIs(1);
  EXPECT_EQ(activity.pending(), 0u);
  EXPECT_EQ(log, Log{"a.onItem(1)"});
}

// Bulk changes.

TEST_F(NotificationDeliveryTest, BulkChangeHoldsKeyedCallbacksAndDeliversTheImmediateFormOnce) {
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  Vel::Ptr<Recorder> b = recorder("b", shelf);
  {
    BulkChange bulk(shelf, Shelf::itemAttribute);
    EXPECT_EQ(bulk.notifier(), shelf);
    EXPECT_EQ(bulk.attributeNumber(), Shelf::itemAttribute);
    EXPECT_FALSE(bulk.changed());
    shelf->itemIs(1);
    shelf->itemIs(2);
    shelf->itemDel(1);
    EXPECT_TRUE(bulk.changed());
    EXPECT_EQ(log, Log{});
  }
  EXPECT_EQ(log, (Log{"a.onItemvelImmediate()", "b.onItemvelImmediate()"}));
  EXPECT_TRUE(shelf->item(2));
  EXPECT_FALSE(shelf->item(1));
}

TEST_F(NotificationDeliveryTest, BulkChangeWithoutChangesDeliversNothing) {
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  { BulkChange bulk(shelf, Shelf::itemAttribute); }
  EXPECT_EQ(log, Log{});
}

TEST_F(NotificationDeliveryTest, BulkChangeHoldsOnlyItsOwnAttributeOfItsOwnEntity) {
  Vel::Ptr<Shelf> other = Vel::allocate<Shelf>("other");
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  Vel::Ptr<Recorder> o = recorder("o", other);
  {
    BulkChange bulk(shelf, Shelf::itemAttribute);
    shelf->tagIs(1);
    other->itemIs(1);
    shelf->itemIs(1);
  }
  EXPECT_EQ(log, (Log{"a.onTag(1)", "o.onItem(1)", "a.onItemvelImmediate()"}));
}

TEST_F(NotificationDeliveryTest, BulkChangeSkipsInactiveNotifiees) {
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  Vel::Ptr<Recorder> b = recorder("b", shelf);
  {
    BulkChange bulk(shelf, Shelf::itemAttribute);
    shelf->itemIs(1);
    a->hasNotificationActiveIs(false);
  }
  EXPECT_EQ(log, Log{"b.onItemvelImmediate()"});
}

TEST_F(NotificationDeliveryTest, BulkChangeClosedByAnExceptionDeliversNothing) {
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  try {
    BulkChange bulk(shelf, Shelf::itemAttribute);
    shelf->itemIs(1);
    throw std::runtime_error("edit failed");
  } catch (const std::runtime_error&) {
  }
  EXPECT_EQ(log, Log{});
  shelf->itemIs(2);
  EXPECT_EQ(log, Log{"a.onItem(2)"});
}

TEST_F(NotificationDeliveryTest, BulkChangeOpenedDuringUnwindingStillDelivers) {
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  // A cleanup that runs while an exception unwinds may make a bulk change of
  // its own; that one closes normally.
  struct Cleanup {
    Vel::Ptr<Shelf> shelf;
    ~Cleanup() {
      BulkChange bulk(shelf, Shelf::itemAttribute);
      shelf->itemIs(9);
    }
  };
  try {
    Cleanup cleanup{shelf};
    throw std::runtime_error("edit failed");
  } catch (const std::runtime_error&) {
  }
  EXPECT_EQ(log, Log{"a.onItemvelImmediate()"});
}

TEST_F(NotificationDeliveryTest, NestedBulkChangesOfOneAttributeDeliverOnceAtTheOutermost) {
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  {
    BulkChange outer(shelf, Shelf::itemAttribute);
    shelf->itemIs(1);
    {
      BulkChange inner(shelf, Shelf::itemAttribute);
      shelf->itemIs(2);
      EXPECT_FALSE(inner.changed());
    }
    EXPECT_EQ(log, Log{});
    shelf->itemIs(3);
  }
  EXPECT_EQ(log, Log{"a.onItemvelImmediate()"});
}

TEST_F(NotificationDeliveryTest, ChangeInAnInnerBulkChangeIsDeliveredByTheOuterOne) {
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  {
    BulkChange outer(shelf, Shelf::itemAttribute);
    try {
      BulkChange inner(shelf, Shelf::itemAttribute);
      shelf->itemIs(1);
      throw std::runtime_error("inner edit failed");
    } catch (const std::runtime_error&) {
    }
    EXPECT_TRUE(outer.changed());
  }
  EXPECT_EQ(log, Log{"a.onItemvelImmediate()"});
}

TEST_F(NotificationDeliveryTest, NestedBulkChangesOfDifferentAttributesEachDeliver) {
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  {
    BulkChange items(shelf, Shelf::itemAttribute);
    {
      BulkChange tags(shelf, Shelf::tagAttribute);
      shelf->tagIs(1);
      shelf->itemIs(1);
    }
    EXPECT_EQ(log, Log{"a.onTagvelImmediate()"});
  }
  EXPECT_EQ(log, (Log{"a.onTagvelImmediate()", "a.onItemvelImmediate()"}));
}

TEST_F(NotificationDeliveryTest, BulkChangeStillQueuesTheDeferredForm) {
  Vel::Ptr<Recorder> a = deferredRecorder("a", shelf);
  {
    BulkChange bulk(shelf, Shelf::itemAttribute);
    shelf->itemIs(1);
    shelf->itemIs(2);
  }
  EXPECT_EQ(activity.pending(), 1u);
  EXPECT_EQ(activity.drain(), 1u);
  EXPECT_EQ(log, (Log{"a.onItemvelImmediate()", "a.onItem()"}));
}

TEST_F(NotificationDeliveryTest, BulkChangeKeepsItsEntityAliveUntilItCloses) {
  Vel::Ptr<Recorder> a = Vel::allocate<Recorder>("a", &log);
  shelf->notifieeList()->newMember(a.get());
  {
    BulkChange bulk(shelf, Shelf::itemAttribute);
    shelf->itemIs(1);
    shelf = nullptr;
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Shelf>().liveObjects(), 1u);
  }
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Shelf>().liveObjects(), 0u);
  EXPECT_EQ(log, (Log{"a.onItemvelImmediate()", "a.onZeroReferences()"}));
}

TEST_F(NotificationDeliveryTest, ExceptionFromAnImmediateCallbackLeavesTheClosingScope) {
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  Vel::Ptr<Recorder> b = recorder("b", shelf);
  a->action = [](const std::string& callback) {
    if (callback == "onItemvelImmediate()")
      throw std::runtime_error("immediate refused");
  };
  try {
    BulkChange bulk(shelf, Shelf::itemAttribute);
    shelf->itemIs(1);
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()), "immediate refused");
  }
  EXPECT_EQ(log, Log{"a.onItemvelImmediate()"});
  // The scope is closed: notifications flow again.
  a->action = nullptr;
  shelf->itemIs(2);
  EXPECT_EQ(log, (Log{"a.onItemvelImmediate()", "a.onItem(2)", "b.onItem(2)"}));
}

TEST(BulkChangeDeathTest, BulkChangeOfANullEntityIsAnAssertion) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(
      BulkChange(nullptr, Shelf::itemAttribute),
      "^.*platform/Vel/BulkChange\\.cpp:[0-9]+: "
      "Vel::BulkChange::BulkChange\\(const (Vel::)?Ptr<(Vel::)?Entity> ?&, unsigned int\\): "
      "Assertion 'notifier != nullptr' failed\\.\n$");
}

}  // namespace
