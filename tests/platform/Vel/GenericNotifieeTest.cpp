#include "Vel/GenericNotifiee.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "ReflectTestFamily.h"
#include "ReflectTestHelpers.h"
#include "Vel/ActivityManager.h"
#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Allocate.h"
#include "Vel/AttributeRecord.h"
#include "Vel/BuiltinType.h"
#include "Vel/BulkChange.h"
#include "Vel/EntityType.h"
#include "Vel/GenericIf.h"
#include "Vel/GenericNotifieeAdapter.h"
#include "Vel/OperationNotSupportedException.h"
#include "Vel/RangeException.h"

namespace Library {

// A room kind whose record names no notifiee factory: generic notifiees of an
// annex come from the room's.
class Annex : public Room {
 public:
  using Room::Room;
  const Vel::TypeRecord* fwkType() const override;
};

const Vel::TypeRecord annexType("Library::Annex", Vel::TypeRecord::Kind::entity, &roomType);

const Vel::TypeRecord* Annex::fwkType() const {
  return &annexType;
}

}  // namespace Library

namespace {

using Library::messageOf;
using Library::Room;
using Library::RoomGenericNotifiee;
using Vel::GenericIf;
using Vel::GenericValue;
using Log = std::vector<std::string>;

// Writes "<name>.<attribute number>" for every raw notification it gets, with
// ":<key's text>" for keyed ones, checks the key's type, then runs the test's
// action, if one is set. The action may drop the recorder's last reference.
class RawRecorder : public Vel::GenericNotifiee {
 public:
  using Action = std::function<void()>;

  RawRecorder(std::string name, Log* log) : name_(std::move(name)), log_(log) {}

  void onRawAttribute(unsigned attributeNumber, const GenericValue* key) override {
    std::string entry = name_ + "." + std::to_string(attributeNumber);
    if (key != nullptr) {
      entry += ":" + GenericIf(*key).text();
      keyTypes.push_back(key->type());
    }
    log_->push_back(entry);
    const Action copy = action;
    if (copy)
      copy();
    // Still alive here, whatever the action dropped.
    ++calls;
  }

  Action action;
  std::vector<const Vel::TypeRecord*> keyTypes;
  unsigned calls = 0;

 private:
  std::string name_;
  Log* log_;
};

class GenericNotifieeTest : public ::testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(Vel::ActivityManager::instance().pending(), 0u);
    Vel::ActivityManager::instance().deleteAll();
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<RawRecorder>().liveObjects(), 0u);
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Library::Annex>().liveObjects(), 0u);
  }

  Vel::Ptr<RawRecorder> recorder(const std::string& name) {
    return Vel::allocate<RawRecorder>(name, &log_);
  }

  // The adapter of `notifiee` on `room`, as the entity's notifiee interface.
  static Vel::Ptr<RoomGenericNotifiee> attach(const Vel::Ptr<Room>& room,
                                              const Vel::Ptr<Vel::GenericNotifiee>& notifiee) {
    const Vel::Ptr<Vel::PtrInterface> adapter = GenericIf(room).notifieeIs(notifiee);
    return Vel::ptr_cast<RoomGenericNotifiee>(adapter);
  }

  Library::LeakCheck leakCheck_;
  Log log_;
  Vel::Ptr<Room> room_ = Vel::allocate<Room>("hall");
};

TEST_F(GenericNotifieeTest, AdapterImplementsTheRoomsNotifieeInterfaceAndIsRegistered) {
  const Vel::Ptr<RawRecorder> raw = recorder("raw");
  const Vel::Ptr<Vel::PtrInterface> adapter = GenericIf(room_).notifieeIs(raw);
  const Vel::Ptr<Room::NotifieeConst> asRoomNotifiee = Vel::ptr_cast<Room::NotifieeConst>(adapter);
  ASSERT_NE(asRoomNotifiee, nullptr);
  EXPECT_EQ(asRoomNotifiee->notifier(), room_);
  EXPECT_TRUE(asRoomNotifiee->isRegisteredNotifiee());
  EXPECT_TRUE(room_->notifieeList()->isMember(asRoomNotifiee.get()));
  EXPECT_EQ(Vel::ptr_cast<RoomGenericNotifiee>(adapter)->genericNotifiee(), raw);
  EXPECT_EQ(adapter->references(), 2u);  // the answer and asRoomNotifiee: the room counts none
}

TEST_F(GenericNotifieeTest, KeyedCallbacksArriveWithTheKeyInTheCollectionsKeyType) {
  const Vel::Ptr<RawRecorder> raw = recorder("raw");
  const auto adapter = attach(room_, raw);
  room_->shelfIs(7);
  room_->shelfIs(7);  // already there: no notification
  room_->shelfDel(7);
  room_->alcoveIs("east");
  EXPECT_EQ(log_, (Log{"raw.258:7", "raw.258:7", "raw.260:'east'"}));
  EXPECT_EQ(raw->keyTypes,
            (std::vector<const Vel::TypeRecord*>{&Vel::BuiltinType<std::uint32_t>::instance(),
                                                 &Vel::BuiltinType<std::uint32_t>::instance(),
                                                 &Vel::BuiltinType<Vel::Name>::instance()}));
}

TEST_F(GenericNotifieeTest, KeylessCallbackArrivesWithoutAKey) {
  const Vel::Ptr<RawRecorder> raw = recorder("raw");
  const auto adapter = attach(room_, raw);
  room_->openIs(true);
  room_->openIs(true);  // unchanged: no notification
  room_->openIs(false);
  EXPECT_EQ(log_, (Log{"raw.259", "raw.259"}));
  EXPECT_TRUE(raw->keyTypes.empty());
}

TEST_F(GenericNotifieeTest, ChangesMadeReflectivelyAreForwardedToo) {
  const Vel::Ptr<RawRecorder> raw = recorder("raw");
  const auto adapter = attach(room_, raw);
  GenericIf roomIf(room_);
  roomIf.attribute("shelf", GenericIf::opWrite, {Vel::BuiltinType<std::uint32_t>::value(5)});
  roomIf.attribute("open", GenericIf::opWrite, {Vel::BuiltinType<bool>::value(true)});
  roomIf.attribute("alcove", GenericIf::opWrite, {Vel::BuiltinType<Vel::Name>::value("west")});
  roomIf.attribute("shelf", GenericIf::opDelete, {Vel::BuiltinType<std::uint32_t>::value(5)});
  EXPECT_EQ(log_, (Log{"raw.258:5", "raw.259", "raw.260:'west'", "raw.258:5"}));
}

TEST_F(GenericNotifieeTest, BulkChangeArrivesOnceWithoutAKeyWhenItCloses) {
  const Vel::Ptr<RawRecorder> raw = recorder("raw");
  const auto adapter = attach(room_, raw);
  {
    Vel::BulkChange bulk(room_, Room::shelfAttribute);
    room_->shelfIs(1);
    room_->shelfIs(2);
    room_->alcoveIs("north");
    EXPECT_EQ(log_, (Log{"raw.260:'north'"}));
  }
  EXPECT_EQ(log_, (Log{"raw.260:'north'", "raw.258"}));
}

TEST_F(GenericNotifieeTest, DeferredFormsArriveWhenTheQueueIsDrained) {
  const Vel::Ptr<RawRecorder> raw = recorder("raw");
  const auto adapter = attach(room_, raw);
  adapter->deferredNotificationIs(true);
  room_->shelfIs(3);
  room_->openIs(true);
  EXPECT_EQ(log_, (Log{"raw.258:3", "raw.259"}));
  EXPECT_EQ(Vel::ActivityManager::instance().drain(), 2u);
  EXPECT_EQ(log_, (Log{"raw.258:3", "raw.259", "raw.258", "raw.259"}));
}

TEST_F(GenericNotifieeTest, EveryAdapterIsCalledInRegistrationOrder) {
  const Vel::Ptr<RawRecorder> first = recorder("first");
  const Vel::Ptr<RawRecorder> second = recorder("second");
  const auto a = attach(room_, first);
  const auto b = attach(room_, second);
  // One generic notifiee may watch several rooms, through one adapter each.
  const Vel::Ptr<Room> lobby = Vel::allocate<Room>("lobby");
  const auto c = attach(lobby, first);
  room_->shelfIs(4);
  lobby->openIs(true);
  EXPECT_EQ(log_, (Log{"first.258:4", "second.258:4", "first.259"}));
}

TEST_F(GenericNotifieeTest, DroppingTheAdapterUnregistersIt) {
  const Vel::Ptr<RawRecorder> raw = recorder("raw");
  Vel::Ptr<RoomGenericNotifiee> adapter = attach(room_, raw);
  room_->shelfIs(1);
  adapter = nullptr;
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<RoomGenericNotifiee>().liveObjects(), 0u);
  EXPECT_TRUE(room_->notifieeList()->empty());
  room_->shelfIs(2);
  EXPECT_EQ(log_, (Log{"raw.258:1"}));
  EXPECT_EQ(raw->references(), 1u);
}

TEST_F(GenericNotifieeTest, DetachedAdapterForwardsNothingUntilANotifieeIsAttachedAgain) {
  const Vel::Ptr<RawRecorder> raw = recorder("raw");
  const auto adapter = attach(room_, raw);
  adapter->genericNotifieeIs(nullptr);
  EXPECT_EQ(raw->references(), 1u);
  room_->shelfIs(1);
  room_->openIs(true);
  EXPECT_TRUE(log_.empty());
  adapter->genericNotifieeIs(raw);
  room_->shelfIs(2);
  EXPECT_EQ(log_, (Log{"raw.258:2"}));
}

TEST_F(GenericNotifieeTest, NullGenericNotifieeGivesAnAdapterThatForwardsNothing) {
  const auto adapter = attach(room_, nullptr);
  ASSERT_NE(adapter, nullptr);
  EXPECT_TRUE(adapter->isRegisteredNotifiee());
  room_->shelfIs(1);
  room_->alcoveIs("south");
  const Vel::Ptr<RawRecorder> raw = recorder("raw");
  adapter->genericNotifieeIs(raw);
  room_->shelfIs(2);
  EXPECT_EQ(log_, (Log{"raw.258:2"}));
}

// ---- Changes of the list and deaths inside a callback

TEST_F(GenericNotifieeTest, AdapterDroppedInsideItsOwnCallbackLetsTheOthersBeCalled) {
  const Vel::Ptr<RawRecorder> first = recorder("first");
  const Vel::Ptr<RawRecorder> second = recorder("second");
  Vel::Ptr<RoomGenericNotifiee> a = attach(room_, first);
  const auto b = attach(room_, second);
  first->action = [&] { a = nullptr; };
  room_->shelfIs(1);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<RoomGenericNotifiee>().liveObjects(), 1u);
  room_->shelfIs(2);
  EXPECT_EQ(log_, (Log{"first.258:1", "second.258:1", "second.258:2"}));
  EXPECT_EQ(first->calls, 1u);
}

TEST_F(GenericNotifieeTest, AdapterUnregisteredInsideItsCallbackIsCalledNoMore) {
  const Vel::Ptr<RawRecorder> raw = recorder("raw");
  const auto adapter = attach(room_, raw);
  raw->action = [&] { adapter->isRegisteredNotifieeIs(false); };
  room_->shelfIs(1);
  room_->openIs(true);
  EXPECT_EQ(log_, (Log{"raw.258:1"}));
  EXPECT_FALSE(room_->notifieeList()->isMember(adapter.get()));
}

TEST_F(GenericNotifieeTest, GenericNotifieeMayDetachAndDropItselfInsideItsCallback) {
  Vel::Ptr<RawRecorder> raw = recorder("raw");
  const auto adapter = attach(room_, raw);
  RawRecorder* watched = raw.get();
  raw = nullptr;  // the adapter holds the only reference now
  watched->action = [&] { adapter->genericNotifieeIs(nullptr); };
  room_->shelfIs(1);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<RawRecorder>().liveObjects(), 0u);
  room_->shelfIs(2);
  EXPECT_EQ(log_, (Log{"raw.258:1"}));
}

TEST_F(GenericNotifieeTest, AdapterDroppedByAnEarlierCallbackIsNotCalled) {
  const Vel::Ptr<RawRecorder> first = recorder("first");
  const Vel::Ptr<RawRecorder> second = recorder("second");
  const auto a = attach(room_, first);
  Vel::Ptr<RoomGenericNotifiee> b = attach(room_, second);
  first->action = [&] { b = nullptr; };
  room_->openIs(true);
  EXPECT_EQ(log_, (Log{"first.259"}));
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<RoomGenericNotifiee>().liveObjects(), 1u);
}

TEST_F(GenericNotifieeTest, AdapterAttachedInsideACallbackIsCalledFromTheNextNotification) {
  const Vel::Ptr<RawRecorder> first = recorder("first");
  const Vel::Ptr<RawRecorder> late = recorder("late");
  const auto a = attach(room_, first);
  Vel::Ptr<RoomGenericNotifiee> b;
  first->action = [&] {
    if (!b)
      b = attach(room_, late);
  };
  room_->shelfIs(1);
  room_->shelfIs(2);
  EXPECT_EQ(log_, (Log{"first.258:1", "first.258:2", "late.258:2"}));
}

TEST_F(GenericNotifieeTest,
       RoomWhoseLastReferenceGoesInsideACallbackLivesUntilTheNotificationEnds) {
  const Vel::Ptr<RawRecorder> raw = recorder("raw");
  Vel::Ptr<RoomGenericNotifiee> adapter = attach(room_, raw);
  Room* room = room_.get();
  room_ = nullptr;  // the adapter holds the room now
  raw->action = [&] { adapter = nullptr; };
  room->shelfIs(1);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Room>().liveObjects(), 0u);
  EXPECT_EQ(log_, (Log{"raw.258:1"}));
}

TEST_F(GenericNotifieeTest, ExceptionFromAGenericNotifieeReachesTheMutatorsCaller) {
  const Vel::Ptr<RawRecorder> first = recorder("first");
  const Vel::Ptr<RawRecorder> second = recorder("second");
  const auto a = attach(room_, first);
  const auto b = attach(room_, second);
  first->action = [] { throw std::runtime_error("refused"); };
  EXPECT_THROW(room_->shelfIs(6), std::runtime_error);
  EXPECT_NE(room_->shelf(6), nullptr);  // the change itself stands
  EXPECT_EQ(log_, (Log{"first.258:6"}));
  first->action = nullptr;
  room_->shelfIs(8);
  EXPECT_EQ(log_, (Log{"first.258:6", "first.258:8", "second.258:8"}));
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<RoomGenericNotifiee>().liveObjects(), 2u);
}

// ---- Types and objects that cannot be observed

TEST_F(GenericNotifieeTest, DerivedEntityTypeGetsTheAdapterOfItsBase) {
  const Vel::Ptr<Library::Annex> annex = Vel::allocate<Library::Annex>("annex");
  const Vel::Ptr<RawRecorder> raw = recorder("raw");
  const Vel::Ptr<Vel::PtrInterface> adapter = GenericIf(annex).notifieeIs(raw);
  EXPECT_NE(Vel::ptr_cast<RoomGenericNotifiee>(adapter), nullptr);
  annex->shelfIs(9);
  EXPECT_EQ(log_, (Log{"raw.258:9"}));
}

TEST_F(GenericNotifieeTest, EntityTypeWithoutAFactoryIsNotSupported) {
  const Vel::Ptr<Vel::Entity> plain = Vel::allocate<Vel::Entity>("plain");
  const Vel::Ptr<RawRecorder> raw = recorder("raw");
  EXPECT_EQ(
      messageOf<Vel::OperationNotSupportedException>([&] { GenericIf(plain).notifieeIs(raw); }),
      "Operation notifiee is not supported on type 'Vel::Entity'");
  EXPECT_EQ(raw->references(), 1u);
}

TEST_F(GenericNotifieeTest, NullRoomCannotBeObserved) {
  const Vel::Ptr<RawRecorder> raw = recorder("raw");
  EXPECT_EQ(messageOf<Vel::RangeException>(
                [&] { GenericIf(GenericValue(Library::roomType, nullptr)).notifieeIs(raw); }),
            "A generic notifiee cannot observe a null reference of type 'Library::Room'");
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<RoomGenericNotifiee>().liveObjects(), 0u);
}

TEST_F(GenericNotifieeTest, FactoryRefusesAnObjectOfAnotherClass) {
  const Vel::Ptr<Library::Shelf> shelf = Vel::allocate<Library::Shelf>(1);
  const Vel::Ptr<RawRecorder> raw = recorder("raw");
  EXPECT_EQ(messageOf<Vel::RangeException>([&] {
              RoomGenericNotifiee::factory(GenericValue(Library::shelfType, shelf), raw);
            }),
            "A generic notifiee of type 'Library::Shelf' cannot observe this object");
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<RoomGenericNotifiee>().liveObjects(), 0u);
  EXPECT_EQ(raw->references(), 1u);
}

TEST_F(GenericNotifieeTest, NotifiedAttributeIsLookedUpInTheNotifiersTypeAndItsBases) {
  EXPECT_EQ(Vel::GenericNotifiee::notifiedAttribute(room_.get(), 258).name(), "shelf");
  EXPECT_EQ(&Vel::GenericNotifiee::notifiedAttribute(room_.get(), 130).owner(), &Vel::entityType());
  EXPECT_EQ(messageOf<Vel::RangeException>(
                [&] { Vel::GenericNotifiee::notifiedAttribute(room_.get(), 999); }),
            "Type 'Library::Room' has no attribute numbered 999");
  EXPECT_EQ(messageOf<Vel::RangeException>(
                [&] { Vel::GenericNotifiee::notifiedAttribute(nullptr, 258); }),
            "Type 'Vel::PtrInterface' has no attribute numbered 258");
}

TEST_F(GenericNotifieeTest, PlainGenericNotifieeIgnoresWhatItIsTold) {
  const Vel::Ptr<Vel::GenericNotifiee> quiet = Vel::allocate<Vel::GenericNotifiee>();
  const auto adapter = attach(room_, quiet);
  room_->shelfIs(1);
  room_->openIs(true);
  EXPECT_EQ(quiet->references(), 2u);
  EXPECT_NE(room_->shelf(1), nullptr);
}

}  // namespace
