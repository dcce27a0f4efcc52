#include "ReflectTestFamily.h"

#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Allocate.h"
#include "Vel/BuiltinType.h"
#include "Vel/EntityType.h"
#include "Vel/Format.h"
#include "Vel/GenericCall.h"
#include "Vel/GenericIf.h"
#include "Vel/GenericKeyIterator.h"
#include "Vel/TextParse.h"
#include "Vel/TypeNode.h"
#include "Vel/ValueOperations.h"
#include "Vel/ValueToStrep.h"

namespace Library {

using Vel::AttributeRecord;
using Vel::GenericIf;
using Vel::TypeRecord;

Vel::String valueToStrep(const Position& position) {
  return Vel::format("Value('Library::Position', ** {'row': %s, 'front': %s})",
                     Vel::valueToStrep(position.row).c_str(),
                     Vel::valueToStrep(position.front).c_str());
}

Position::Position(Vel::String::IteratorConst& pos, const Vel::String::IteratorConst& end) {
  Vel::needString(pos, end, "Value('Library::Position', ** {");
  Vel::needString(pos, end, "'row': ");
  Vel::deserializeAttr(pos, end, "row", &row);
  Vel::needString(pos, end, ", 'front': ");
  Vel::deserializeAttr(pos, end, "front", &front);
  Vel::needString(pos, end, "})");
}

Vel::Ptr<Book> Shelf::book(std::uint32_t id) const {
  auto slot = books_.find(id);
  return slot != books_.end() ? slot->second : nullptr;
}

Vel::Ptr<Book> Shelf::bookIs(std::uint32_t id, const Vel::String& title) {
  Vel::Ptr<Book>& slot = books_[id];
  if (!slot)
    slot = Vel::allocate<Book>(id, title);
  return slot;
}

Vel::Ptr<Book> Shelf::bookDel(std::uint32_t id) {
  auto slot = books_.find(id);
  if (slot == books_.end())
    return nullptr;
  Vel::Ptr<Book> removed = std::move(slot->second);
  books_.erase(slot);
  return removed;
}

Room::~Room() {
  for (const auto& [name, alcove] : alcoves_)
    alcove->parentIs(nullptr);
}

Vel::Ptr<Shelf> Room::shelf(std::uint32_t serial) const {
  auto slot = shelves_.find(serial);
  return slot != shelves_.end() ? slot->second : nullptr;
}

Vel::Ptr<Shelf> Room::shelfIs(std::uint32_t serial) {
  Vel::Ptr<Shelf>& slot = shelves_[serial];
  if (slot)
    return slot;
  slot = Vel::allocate<Shelf>(serial);
  const Vel::Ptr<Shelf> added = slot;
  shelfNotify(serial);
  return added;
}

Vel::Ptr<Shelf> Room::shelfDel(std::uint32_t serial) {
  auto slot = shelves_.find(serial);
  if (slot == shelves_.end())
    return nullptr;
  Vel::Ptr<Shelf> removed = std::move(slot->second);
  shelves_.erase(slot);
  shelfNotify(serial);
  return removed;
}

void Room::openIs(bool open) {
  if (open == open_)
    return;
  open_ = open;
  notify<NotifieeConst>(openAttribute, [](NotifieeConst& notifiee) { notifiee.onOpen(); });
}

Vel::Ptr<Room> Room::alcove(const Vel::Name& name) const {
  auto slot = alcoves_.find(name);
  return slot != alcoves_.end() ? slot->second : nullptr;
}

Vel::Ptr<Room> Room::alcoveIs(const Vel::Name& name) {
  Vel::Ptr<Room>& slot = alcoves_[name];
  if (slot)
    return slot;
  slot = Vel::allocate<Room>(name);
  slot->parentIs(this);
  slot->parentAttrIs(alcoveAttribute, "alcove");
  const Vel::Ptr<Room> added = slot;
  alcoveNotify(name);
  return added;
}

Vel::Ptr<Room> Room::alcoveDel(const Vel::Name& name) {
  auto slot = alcoves_.find(name);
  if (slot == alcoves_.end())
    return nullptr;
  Vel::Ptr<Room> removed = std::move(slot->second);
  alcoves_.erase(slot);
  removed->parentIs(nullptr);
  alcoveNotify(name);
  return removed;
}

void Room::shelfNotify(std::uint32_t serial) {
  notify<NotifieeConst>(shelfAttribute,
                        [serial](NotifieeConst& notifiee) { notifiee.onShelf(serial); });
}

void Room::alcoveNotify(const Vel::Name& name) {
  notify<NotifieeConst>(alcoveAttribute,
                        [&name](NotifieeConst& notifiee) { notifiee.onAlcove(name); });
}

void Room::NotifieeConst::notifierIs(const Vel::Ptr<const Vel::PtrInterface>& notifier) {
  Vel::Entity::NotifieeConst::notifierIs(Vel::ptr_cast<const Room>(notifier));
}

void Room::NotifieeConst::onShelf(std::uint32_t) {}
void Room::NotifieeConst::onShelfvelImmediate() {}
void Room::NotifieeConst::onShelf() {}
void Room::NotifieeConst::onOpen() {}
void Room::NotifieeConst::onAlcove(const Vel::Name&) {}
void Room::NotifieeConst::onAlcovevelImmediate() {}
void Room::NotifieeConst::onAlcove() {}

void Room::NotifieeConst::handleNotification(unsigned attributeNumber, Vel::NotificationKind kind) {
  const bool immediate = kind == Vel::NotificationKind::immediate;
  switch (attributeNumber) {
    case shelfAttribute:
      return immediate ? onShelfvelImmediate() : onShelf();
    case openAttribute:
      return onOpen();
    case alcoveAttribute:
      return immediate ? onAlcovevelImmediate() : onAlcove();
  }
  Vel::Entity::NotifieeConst::handleNotification(attributeNumber, kind);
}

void RoomGenericNotifiee::onShelf(std::uint32_t serial) {
  forwardRawAttribute(Room::shelfAttribute, serial);
}
void RoomGenericNotifiee::onShelfvelImmediate() {
  forwardRawAttribute(Room::shelfAttribute);
}
void RoomGenericNotifiee::onShelf() {
  forwardRawAttribute(Room::shelfAttribute);
}
void RoomGenericNotifiee::onOpen() {
  forwardRawAttribute(Room::openAttribute);
}
void RoomGenericNotifiee::onAlcove(const Vel::Name& name) {
  forwardRawAttribute(Room::alcoveAttribute, name);
}
void RoomGenericNotifiee::onAlcovevelImmediate() {
  forwardRawAttribute(Room::alcoveAttribute);
}
void RoomGenericNotifiee::onAlcove() {
  forwardRawAttribute(Room::alcoveAttribute);
}

const TypeRecord* Room::fwkType() const {
  return &roomType;
}
const TypeRecord* Lamp::fwkType() const {
  return &lampType;
}
const TypeRecord* DeskLamp::fwkType() const {
  return &deskLampType;
}
const TypeRecord* Book::fwkType() const {
  return &bookType;
}
const TypeRecord* Shelf::fwkType() const {
  return &shelfType;
}

std::size_t liveObjects() {
  return Vel::AllocTrackTypeInfo::of<Shelf>().liveObjects() +
         Vel::AllocTrackTypeInfo::of<Book>().liveObjects() +
         Vel::AllocTrackTypeInfo::of<Lamp>().liveObjects() +
         Vel::AllocTrackTypeInfo::of<DeskLamp>().liveObjects() +
         Vel::AllocTrackTypeInfo::of<Room>().liveObjects() +
         Vel::AllocTrackTypeInfo::of<RoomGenericNotifiee>().liveObjects() +
         Vel::AllocTrackTypeInfo::of<Vel::GenericKeyIterator>().liveObjects();
}

// ---- Reflection, written as the generated code of the family is.

namespace {

// Library::Position

Vel::GenericReply positionAttribute(Vel::GenericCall& call) {
  Position& position = call.value<Position>();
  switch (call.attributeNumber()) {
    case 2:  // row
      return call.answerRead(position.row);
    case 3:  // front
      switch (call.op()) {
        case GenericIf::opRead:
          return call.answer(position.front);
        case GenericIf::opWrite:
          position.front = call.arg<bool>(0);
          return call.done();
      }
      return call.notSupported();
  }
  return call.notOwned();
}

Vel::GenericValue positionFromArgs(const TypeRecord& type, const Vel::GenericArgs& args) {
  return Vel::GenericValue(type, Position{args.get<std::uint32_t>(0), args.get<bool>(1)});
}

// Library::Lamp

Vel::GenericReply lampAttribute(Vel::GenericCall& call) {
  Lamp& lamp = call.object<Lamp>();
  switch (call.attributeNumber()) {
    case 130:  // watts
      switch (call.op()) {
        case GenericIf::opRead:
          return call.answer(lamp.watts());
        case GenericIf::opWrite:
          lamp.wattsIs(call.arg<std::uint16_t>(0));
          return call.done();
      }
      return call.notSupported();
    case 131:  // finish
      switch (call.op()) {
        case GenericIf::opRead:
          return call.answer(lamp.finish());
        case GenericIf::opWrite:
          lamp.finishIs(call.arg<Finish>(0));
          return call.done();
      }
      return call.notSupported();
  }
  return call.notOwned();
}

// Library::Book

Vel::GenericReply bookAttribute(Vel::GenericCall& call) {
  Book& book = call.object<Book>();
  switch (call.attributeNumber()) {
    case 130:  // id
      return call.answerRead(book.id());
    case 131:  // title
      switch (call.op()) {
        case GenericIf::opRead:
          return call.answer(book.title());
        case GenericIf::opWrite:
          book.titleIs(call.arg<Vel::String>(0));
          return call.done();
      }
      return call.notSupported();
  }
  return call.notOwned();
}

// Library::Shelf

Vel::GenericReply shelfAttribute(Vel::GenericCall& call) {
  Shelf& shelf = call.object<Shelf>();
  switch (call.attributeNumber()) {
    case 130:  // label
      switch (call.op()) {
        case GenericIf::opRead:
          return call.answer(shelf.label());
        case GenericIf::opWrite:
          shelf.labelIs(call.arg<Vel::String>(0));
          return call.done();
      }
      return call.notSupported();
    case 131:  // serial
      return call.answerRead(shelf.serial());
    case 132:  // book
      switch (call.op()) {
        case GenericIf::opRead:
          return call.answer(shelf.book(call.arg<std::uint32_t>(0)));
        case GenericIf::opWrite:
          return call.answer(shelf.bookIs(call.arg<std::uint32_t>(0), call.arg<Vel::String>(1)));
        case GenericIf::opDelete:
          return call.answer(shelf.bookDel(call.arg<std::uint32_t>(0)));
        case GenericIf::opSize:
          return call.answerCount(shelf.books().size());
        case GenericIf::opBucketCount:
          return call.answerCount(shelf.books().bucket_count());
        case GenericIf::opContains:
          return call.answerBool(shelf.book(call.arg<std::uint32_t>(0)) != nullptr);
      }
      return call.notSupported();
    case 133:  // lamp
      switch (call.op()) {
        case GenericIf::opRead:
          return call.answer(shelf.lamp());
        case GenericIf::opWrite:
          shelf.lampIs(call.arg<Vel::Ptr<Lamp>>(0));
          return call.done();
      }
      return call.notSupported();
    case 134:  // position
      switch (call.op()) {
        case GenericIf::opRead:
          return call.answer(shelf.position());
        case GenericIf::opWrite:
          shelf.positionIs(call.arg<Position>(0));
          return call.done();
      }
      return call.notSupported();
  }
  return call.notOwned();
}

// Library::Room

Vel::GenericReply roomAttribute(Vel::GenericCall& call) {
  Room& room = call.object<Room>();
  switch (call.attributeNumber()) {
    case Room::shelfAttribute:
      switch (call.op()) {
        case GenericIf::opRead:
          return call.answer(room.shelf(call.arg<std::uint32_t>(0)));
        case GenericIf::opWrite:
          return call.answer(room.shelfIs(call.arg<std::uint32_t>(0)));
        case GenericIf::opDelete:
          return call.answer(room.shelfDel(call.arg<std::uint32_t>(0)));
        case GenericIf::opSize:
          return call.answerCount(room.shelves().size());
        case GenericIf::opBucketCount:
          return call.answerCount(room.shelves().bucket_count());
        case GenericIf::opContains:
          return call.answerBool(room.shelf(call.arg<std::uint32_t>(0)) != nullptr);
      }
      return call.notSupported();
    case Room::openAttribute:
      switch (call.op()) {
        case GenericIf::opRead:
          return call.answer(room.open());
        case GenericIf::opWrite:
          room.openIs(call.arg<bool>(0));
          return call.done();
      }
      return call.notSupported();
    case Room::alcoveAttribute:
      switch (call.op()) {
        case GenericIf::opRead:
          return call.answer(room.alcove(call.arg<Vel::Name>(0)));
        case GenericIf::opWrite:
          return call.answer(room.alcoveIs(call.arg<Vel::Name>(0)));
        case GenericIf::opDelete:
          return call.answer(room.alcoveDel(call.arg<Vel::Name>(0)));
        case GenericIf::opSize:
          return call.answerCount(room.alcoves().size());
        case GenericIf::opBucketCount:
          return call.answerCount(room.alcoves().bucket_count());
        case GenericIf::opContains:
          return call.answerBool(room.alcove(call.arg<Vel::Name>(0)) != nullptr);
      }
      return call.notSupported();
  }
  return call.notOwned();
}

std::vector<Vel::GenericValue> shelfBookKeys(const Vel::GenericValue& self,
                                             const AttributeRecord& attribute) {
  return Vel::GenericKeyIterator::keysOf(attribute, self.get<Vel::Ptr<Shelf>>()->books(),
                                         [](const auto& slot) { return slot.first; });
}

Vel::Ptr<Vel::GenericIterator> shelfIterator(const Vel::GenericValue& self,
                                             const AttributeRecord& attribute) {
  if (attribute.number() != 132)
    return nullptr;
  return Vel::GenericKeyIterator::make(self, attribute, shelfBookKeys(self, attribute));
}

Vel::Ptr<Vel::GenericIterator> shelfIteratorAtKey(const Vel::GenericValue& self,
                                                  const AttributeRecord& attribute,
                                                  const Vel::GenericValue& key) {
  if (attribute.number() != 132)
    return nullptr;
  return Vel::GenericKeyIterator::makeAt(self, attribute, shelfBookKeys(self, attribute), key);
}

}  // namespace

const Vel::EnumType<unsigned int> finishType("Library::Finish", {{"matte", 0}, {"glossy", 1}});

const TypeRecord positionType("Library::Position", TypeRecord::Kind::value, nullptr,
                              {
                                  {"row", Vel::BuiltinType<std::uint32_t>::instance(), 2,
                                   AttributeRecord::constructorArg},
                                  {"front", Vel::BuiltinType<bool>::instance(), 3,
                                   AttributeRecord::readWrite | AttributeRecord::constructorArg},
                              },
                              {.attribute = &positionAttribute,
                               .value = &Vel::ValueOperations<Position>::operation,
                               .fromRawPtr = &Vel::ValueOperations<Position>::fromRawPtr,
                               .fromText = &Vel::ValueOperations<Position>::fromText,
                               .fromArgs = &positionFromArgs,
                               .toText = &Vel::ValueOperations<Position>::toText,
                               .hash = &TypeRecord::unhashable});

const TypeRecord lampType("Library::Lamp", TypeRecord::Kind::object, nullptr,
                          {
                              {"watts", Vel::BuiltinType<std::uint16_t>::instance(), 130,
                               AttributeRecord::readWrite},
                              {"finish", finishType, 131, AttributeRecord::readWrite},
                          },
                          {.attribute = &lampAttribute});

const TypeRecord deskLampType("Library::DeskLamp", TypeRecord::Kind::object, &lampType,
                              {
                                  {"watts", Vel::BuiltinType<std::uint16_t>::instance(), 130,
                                   AttributeRecord::readWrite},
                                  {"finish", finishType, 131, AttributeRecord::readWrite},
                              },
                              {});

const TypeRecord bookType(
    "Library::Book", TypeRecord::Kind::object, nullptr,
    {
        {"id", Vel::BuiltinType<std::uint32_t>::instance(), 130, AttributeRecord::constructorArg},
        {"title", Vel::BuiltinType<Vel::String>::instance(), 131, AttributeRecord::readWrite},
    },
    {.attribute = &bookAttribute});

const TypeRecord shelfType(
    "Library::Shelf", TypeRecord::Kind::object, nullptr,
    {
        {"label", Vel::BuiltinType<Vel::String>::instance(), 130, AttributeRecord::readWrite},
        {"serial", Vel::BuiltinType<std::uint32_t>::instance(), 131,
         AttributeRecord::constructorArg},
        {"book", bookType, 132,
         AttributeRecord::collection | AttributeRecord::readWrite | AttributeRecord::notifying,
         &Vel::BuiltinType<std::uint32_t>::instance()},
        {"lamp", lampType, 133, AttributeRecord::readWrite},
        {"position", positionType, 134, AttributeRecord::readWrite},
    },
    {.attribute = &shelfAttribute,
     .iterator = &shelfIterator,
     .iteratorAtKey = &shelfIteratorAtKey});

const TypeRecord roomType(
    "Library::Room", TypeRecord::Kind::entity, &Vel::entityType(),
    {
        {"shelf", shelfType, Room::shelfAttribute,
         AttributeRecord::collection | AttributeRecord::readWrite | AttributeRecord::notifying,
         &Vel::BuiltinType<std::uint32_t>::instance()},
        {"open", Vel::BuiltinType<bool>::instance(), Room::openAttribute,
         AttributeRecord::readWrite | AttributeRecord::notifying},
        {"alcove", roomType, Room::alcoveAttribute,
         AttributeRecord::collection | AttributeRecord::readWrite | AttributeRecord::notifying,
         &Vel::BuiltinType<Vel::Name>::instance()},
    },
    {.attribute = &roomAttribute, .notifiee = &RoomGenericNotifiee::factory});

namespace {

// The family is known by name once the test program is loaded.
[[maybe_unused]] const bool familyRegistered = [] {
  Vel::typeNodeIs(finishType);
  Vel::typeNodeIs(positionType);
  Vel::typeNodeIs(lampType);
  Vel::typeNodeIs(deskLampType);
  Vel::typeNodeIs(bookType);
  Vel::typeNodeIs(shelfType);
  Vel::typeNodeIs(roomType);
  return true;
}();

}  // namespace

}  // namespace Library
