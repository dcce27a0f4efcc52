#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "NotifyTestSupport.h"
#include "Vel/ActivityManager.h"
#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Allocate.h"
#include "Vel/Entity.h"
#include "Vel/EntityNotifieeConst.h"

namespace NotifyTestTypes {

// An entity type that answers an empty name, whatever it was given.
class Anonymous : public Vel::Entity {
 public:
  using Vel::Entity::Entity;
  Vel::Name name() const override { return Vel::Name(); }
};

// A shelf that announces the removal of its items when it is destroyed, as
// entities that own collections do.
class Crate : public Shelf {
 public:
  using Shelf::Shelf;
  ~Crate() override {
    for (unsigned key : keys)
      itemDel(key);
  }
  std::vector<unsigned> keys;
};

// A counted object that is not an entity.
class NotAnEntity : public Vel::PtrInterface {};

}  // namespace NotifyTestTypes

namespace {

using namespace NotifyTestTypes;

class EntityTest : public NotificationTest {
 protected:
  void TearDown() override {
    NotificationTest::TearDown();
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Anonymous>().liveObjects(), 0u);
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Crate>().liveObjects(), 0u);
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<NotAnEntity>().liveObjects(), 0u);
  }
};

TEST_F(EntityTest, NameIsGivenAtConstruction) {
  EXPECT_EQ(Vel::allocate<Shelf>("shelf")->name(), "shelf");
  EXPECT_EQ(Vel::allocate<Shelf>()->name(), "");
}

TEST_F(EntityTest, NewEntityHasNoParentAndNoNotifiees) {
  Vel::Ptr<Shelf> shelf = Vel::allocate<Shelf>("shelf");
  EXPECT_EQ(shelf->parent(), nullptr);
  EXPECT_EQ(shelf->parentAttrName(), "");
  EXPECT_EQ(shelf->parentAttrNumber(), 0u);
  ASSERT_NE(shelf->notifieeList(), nullptr);
  EXPECT_TRUE(shelf->notifieeList()->empty());
}

TEST_F(EntityTest, NameIsFromBackupReplacesTheNameAndNotifiesNothing) {
  Vel::Ptr<Shelf> shelf = Vel::allocate<Shelf>("shelf");
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  a->deferredNotificationIs(true);
  shelf->nameIsFromBackup("restored");
  EXPECT_EQ(shelf->name(), "restored");
  EXPECT_EQ(shelf->fullName(), "restored");
  EXPECT_EQ(log, Log{});
  EXPECT_EQ(Vel::ActivityManager::instance().pending(), 0u);
}

TEST_F(EntityTest, FullNameWithoutParentIsTheName) {
  EXPECT_EQ(Vel::allocate<Shelf>("shelf")->fullName(), "shelf");
}

TEST_F(EntityTest, FullNameJoinsTheParentsAndTheirAttributes) {
  Vel::Ptr<Shelf> profile = Vel::allocate<Shelf>("profile");
  Vel::Ptr<Shelf> group = Vel::allocate<Shelf>("3");
  Vel::Ptr<Shelf> member = Vel::allocate<Shelf>("7");
  group->parentAttrIs(258, "group");
  group->parentIs(profile.get());
  member->parentAttrIs(259, "member");
  member->parentIs(group.get());
  EXPECT_EQ(group->parent(), profile);
  EXPECT_EQ(group->parentAttrNumber(), 258u);
  EXPECT_EQ(group->parentAttrName(), "group");
  EXPECT_EQ(group->fullName(), "profile/group/3");
  EXPECT_EQ(member->fullName(), "profile/group/3/member/7");
}

TEST_F(EntityTest, FullNameUsesTheNameThatTheEntityAnswers) {
  Vel::Ptr<Shelf> root = Vel::allocate<Shelf>("root");
  Vel::Ptr<Anonymous> child = Vel::allocate<Anonymous>("hidden");
  child->parentAttrIs(1, "slot");
  child->parentIs(root.get());
  EXPECT_EQ(child->name(), "");
  EXPECT_EQ(child->fullName(), "root/slot/");
}

TEST_F(EntityTest, ParentIsNotCountedAndNullClearsIt) {
  Vel::Ptr<Shelf> parent = Vel::allocate<Shelf>("parent");
  Vel::Ptr<Shelf> child = Vel::allocate<Shelf>("child");
  child->parentAttrIs(258, "group");
  child->parentIs(parent.get());
  EXPECT_EQ(parent->references(), 1u);
  child->parentIs(nullptr);
  EXPECT_EQ(child->parent(), nullptr);
  EXPECT_EQ(child->fullName(), "child");
}

TEST_F(EntityTest, OwnNotificationFlagIsTheEntitysAndDoesNotStopItsNotifications) {
  Vel::Ptr<Shelf> shelf = Vel::allocate<Shelf>("shelf");
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  EXPECT_FALSE(shelf->hasNotificationActive());
  shelf->itemIs(1);
  shelf->hasNotificationActiveIs(true);
  EXPECT_TRUE(shelf->hasNotificationActive());
  EXPECT_TRUE(a->hasNotificationActive());
  shelf->itemIs(2);
  EXPECT_EQ(log, (Log{"a.onItem(1)", "a.onItem(2)"}));
}

TEST_F(EntityTest, KeyedCallbacksReachEveryNotifieeInRegistrationOrder) {
  Vel::Ptr<Shelf> shelf = Vel::allocate<Shelf>("shelf");
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  Vel::Ptr<Recorder> b = recorder("b", shelf);
  Vel::Ptr<Recorder> c = recorder("c", shelf);
  shelf->itemIs(7);
  shelf->tagIs(2);
  shelf->itemDel(7);
  EXPECT_EQ(log, (Log{"a.onItem(7)", "b.onItem(7)", "c.onItem(7)", "a.onTag(2)", "b.onTag(2)",
                      "c.onTag(2)", "a.onItem(7)", "b.onItem(7)", "c.onItem(7)"}));
}

TEST_F(EntityTest, UnregisteredAndInactiveNotifieesAreNotCalled) {
  Vel::Ptr<Shelf> shelf = Vel::allocate<Shelf>("shelf");
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  Vel::Ptr<Recorder> b = recorder("b", shelf);
  Vel::Ptr<Recorder> c = recorder("c", shelf);
  a->isRegisteredNotifieeIs(false);
  b->hasNotificationActiveIs(false);
  shelf->itemIs(1);
  b->hasNotificationActiveIs(true);
  shelf->itemIs(2);
  EXPECT_EQ(log, (Log{"c.onItem(1)", "b.onItem(2)", "c.onItem(2)"}));
}

TEST_F(EntityTest, NotifieeUnregisteringItselfInItsCallbackIsCalledNoMore) {
  Vel::Ptr<Shelf> shelf = Vel::allocate<Shelf>("shelf");
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  Vel::Ptr<Recorder> b = recorder("b", shelf);
  Vel::Ptr<Recorder> c = recorder("c", shelf);
  b->action = [&b](const std::string&) { b->isRegisteredNotifieeIs(false); };
  shelf->itemIs(1);
  shelf->itemIs(2);
  EXPECT_EQ(log, (Log{"a.onItem(1)", "b.onItem(1)", "c.onItem(1)", "a.onItem(2)", "c.onItem(2)"}));
}

TEST_F(EntityTest, NotifieeUnregisteredByAnEarlierCallbackIsNotCalled) {
  Vel::Ptr<Shelf> shelf = Vel::allocate<Shelf>("shelf");
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  Vel::Ptr<Recorder> b = recorder("b", shelf);
  Vel::Ptr<Recorder> c = recorder("c", shelf);
  a->action = [&c](const std::string&) { c->isRegisteredNotifieeIs(false); };
  b->action = [&a](const std::string&) { a->isRegisteredNotifieeIs(false); };
  shelf->itemIs(1);
  shelf->itemIs(2);
  EXPECT_EQ(log, (Log{"a.onItem(1)", "b.onItem(1)", "b.onItem(2)"}));
}

TEST_F(EntityTest, NotifieeDestroyedInItsOwnCallbackLetsTheOthersBeCalled) {
  Vel::Ptr<Shelf> shelf = Vel::allocate<Shelf>("shelf");
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  Vel::Ptr<Recorder> b = recorder("b", shelf);
  Vel::Ptr<Recorder> c = recorder("c", shelf);
  b->action = [&b](const std::string&) { b = nullptr; };
  shelf->itemIs(1);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Recorder>().liveObjects(), 2u);
  EXPECT_EQ(shelf->notifieeList()->size(), 2u);
  shelf->itemIs(2);
  EXPECT_EQ(log, (Log{"a.onItem(1)", "b.onItem(1)", "c.onItem(1)", "a.onItem(2)", "c.onItem(2)"}));
}

TEST_F(EntityTest, NotifieeDestroyedByAnotherCallbackIsNotCalled) {
  Vel::Ptr<Shelf> shelf = Vel::allocate<Shelf>("shelf");
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  Vel::Ptr<Recorder> b = recorder("b", shelf);
  Vel::Ptr<Recorder> c = recorder("c", shelf);
  a->action = [&c](const std::string&) { c = nullptr; };
  shelf->itemIs(1);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Recorder>().liveObjects(), 2u);
  EXPECT_EQ(log, (Log{"a.onItem(1)", "b.onItem(1)"}));
}

TEST_F(EntityTest, NotifieeRegisteredDuringANotificationIsCalledFromTheNextOne) {
  Vel::Ptr<Shelf> shelf = Vel::allocate<Shelf>("shelf");
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  Vel::Ptr<Recorder> b = recorder("b", shelf);
  Vel::Ptr<Recorder> late;
  a->action = [&](const std::string&) {
    if (!late)
      late = recorder("late", shelf);
  };
  shelf->itemIs(1);
  shelf->itemIs(2);
  EXPECT_EQ(log,
            (Log{"a.onItem(1)", "b.onItem(1)", "a.onItem(2)", "b.onItem(2)", "late.onItem(2)"}));
}

TEST_F(EntityTest, NotificationCausedByACallbackIsDeliveredWithinIt) {
  Vel::Ptr<Shelf> shelf = Vel::allocate<Shelf>("shelf");
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  Vel::Ptr<Recorder> b = recorder("b", shelf);
  a->action = [&shelf](const std::string& callback) {
    if (callback == "onItem(1)")
      shelf->itemIs(2);
  };
  shelf->itemIs(1);
  EXPECT_EQ(log, (Log{"a.onItem(1)", "a.onItem(2)", "b.onItem(2)", "b.onItem(1)"}));
}

TEST_F(EntityTest, ExceptionFromACallbackReachesTheMutatorsCaller) {
  Vel::Ptr<Shelf> shelf = Vel::allocate<Shelf>("shelf");
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  Vel::Ptr<Recorder> b = recorder("b", shelf);
  Vel::Ptr<Recorder> c = recorder("c", shelf);
  b->action = [](const std::string& callback) {
    if (callback == "onItem(1)")
      throw std::runtime_error("refused 1");
  };
  try {
    shelf->itemIs(1);
    ADD_FAILURE() << "the exception did not reach the caller";
  } catch (const std::runtime_error& error) {
    EXPECT_EQ(std::string(error.what()), "refused 1");
  }
  EXPECT_TRUE(shelf->item(1));
  EXPECT_EQ(shelf->notifieeList()->size(), 3u);
  shelf->itemIs(2);
  EXPECT_EQ(log, (Log{"a.onItem(1)", "b.onItem(1)", "a.onItem(2)", "b.onItem(2)", "c.onItem(2)"}));
}

TEST_F(EntityTest, EntityLivesUntilItsNotificationEndsWhenACallbackDropsItsLastReference) {
  Vel::Ptr<Shelf> shelf = Vel::allocate<Shelf>("shelf");
  // Listed without following the shelf, so that the test holds its only reference.
  Vel::Ptr<Recorder> a = Vel::allocate<Recorder>("a", &log);
  Vel::Ptr<Recorder> b = Vel::allocate<Recorder>("b", &log);
  shelf->notifieeList()->newMember(a.get());
  shelf->notifieeList()->newMember(b.get());
  a->action = [&shelf](const std::string& callback) {
    if (callback == "onItem(1)")
      shelf = nullptr;
  };
  Shelf* raw = shelf.get();
  raw->itemIs(1);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Shelf>().liveObjects(), 0u);
  EXPECT_EQ(log,
            (Log{"a.onItem(1)", "b.onItem(1)", "a.onZeroReferences()", "b.onZeroReferences()"}));
}

TEST_F(EntityTest, ChangesMadeByTheEntitysDestructorAreStillNotifiedAndNotQueued) {
  Vel::Ptr<Crate> crate = Vel::allocate<Crate>("crate");
  Vel::Ptr<Recorder> a = Vel::allocate<Recorder>("a", &log);
  a->deferredNotificationIs(true);
  crate->notifieeList()->newMember(a.get());
  crate->itemIs(4);
  crate->itemIs(5);
  EXPECT_EQ(Vel::ActivityManager::instance().drain(), 1u);
  crate->keys = {4, 5};
  crate = nullptr;
  EXPECT_EQ(Vel::ActivityManager::instance().pending(), 0u);
  EXPECT_EQ(log, (Log{"a.onItem(4)", "a.onItem(5)", "a.onItem()", "a.onZeroReferences()",
                      "a.onItem(4)", "a.onItem(5)"}));
}

TEST_F(EntityTest, NotifieesInTheListAreToldWhenTheLastReferenceGoes) {
  Vel::Ptr<Shelf> shelf = Vel::allocate<Shelf>("shelf");
  Vel::Ptr<Recorder> a = Vel::allocate<Recorder>("a", &log);
  Vel::Ptr<Recorder> b = Vel::allocate<Recorder>("b", &log);
  b->hasNotificationActiveIs(false);
  shelf->notifieeList()->newMember(a.get());
  shelf->notifieeList()->newMember(b.get());
  shelf = nullptr;
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Shelf>().liveObjects(), 0u);
  EXPECT_EQ(log, Log{"a.onZeroReferences()"});
}

// A notifiee that follows an entity only as an entity (for its zero-reference
// and key-less notifications) has none of the entity type's keyed callbacks:
// keyed notifications pass it by, and the key-less forms still reach it.
TEST_F(EntityTest, KeyedCallbacksPassByANotifieeOfTheGeneralEntityInterface) {
  Vel::Ptr<Shelf> shelf = Vel::allocate<Shelf>("shelf");
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  Vel::Ptr<Vel::Entity::NotifieeConst> general = Vel::allocate<Vel::Entity::NotifieeConst>();
  general->deferredNotificationIs(true);
  general->notifierIs(shelf);
  general->isRegisteredNotifieeIs(true);
  Vel::Ptr<Recorder> b = recorder("b", shelf);
  shelf->itemIs(1);
  EXPECT_EQ(log, (Log{"a.onItem(1)", "b.onItem(1)"}));
  EXPECT_EQ(Vel::ActivityManager::instance().drain(), 1u);
  general = nullptr;
  EXPECT_EQ(shelf->notifieeList()->size(), 2u);
}

TEST_F(EntityTest, EntityNotifieeFollowsOnlyEntities) {
  Vel::Ptr<Shelf> shelf = Vel::allocate<Shelf>("shelf");
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  Vel::Entity::NotifieeConst& asEntityNotifiee = *a;
  EXPECT_EQ(asEntityNotifiee.notifier(), shelf);
  asEntityNotifiee.notifierIs(Vel::allocate<NotAnEntity>());
  EXPECT_EQ(a->notifier(), nullptr);
  EXPECT_TRUE(shelf->notifieeList()->empty());
  EXPECT_TRUE(a->isRegisteredNotifiee());
  asEntityNotifiee.notifierIs(shelf);
  EXPECT_TRUE(shelf->notifieeList()->isMember(a.get()));
}

TEST_F(EntityTest, GeneratedNotifieeFollowsOnlyItsOwnEntityType) {
  Vel::Ptr<Shelf> shelf = Vel::allocate<Shelf>("shelf");
  Vel::Ptr<Recorder> a = recorder("a", shelf);
  a->notifierIs(Vel::allocate<Anonymous>("other"));
  EXPECT_EQ(a->notifier(), nullptr);
  EXPECT_TRUE(shelf->notifieeList()->empty());
}

}  // namespace
