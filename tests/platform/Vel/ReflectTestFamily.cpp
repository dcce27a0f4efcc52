#include "ReflectTestFamily.h"

#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Allocate.h"
#include "Vel/BuiltinType.h"
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

namespace {

// The family is known by name once the test program is loaded.
[[maybe_unused]] const bool familyRegistered = [] {
  Vel::typeNodeIs(finishType);
  Vel::typeNodeIs(positionType);
  Vel::typeNodeIs(lampType);
  Vel::typeNodeIs(deskLampType);
  Vel::typeNodeIs(bookType);
  Vel::typeNodeIs(shelfType);
  return true;
}();

}  // namespace

}  // namespace Library
