#pragma once

// A small family of types with hand-written type records, in the style of the
// generated reflection code, on which the reflection tests run: a shelf holding
// books (a keyed collection with mutators), a lamp (an object attribute) with a
// derived desk lamp that answers nothing itself, a position (a value type with
// two fields), a finish (an enumeration), and a room: an entity that holds
// shelves and alcoves (rooms of its own) and tells its notifiees about them and
// about being opened, with the adapter that carries its notifications to a
// generic notifiee.

#include <cstddef>
#include <cstdint>
#include <unordered_map>

#include "Vel/EntityNotifieeConst.h"
#include "Vel/EnumType.h"
#include "Vel/GenericNotifieeAdapter.h"
#include "Vel/Name.h"
#include "Vel/NotificationKind.h"
#include "Vel/Ptr.h"
#include "Vel/PtrInterface.h"
#include "Vel/String.h"
#include "Vel/TypeRecord.h"

namespace Library {

enum class Finish : unsigned int { matte = 0, glossy = 1 };

struct Position {
  Position() = default;
  Position(std::uint32_t r, bool f) : row(r), front(f) {}
  // Reads the text form at pos and advances past it.
  Position(Vel::String::IteratorConst& pos, const Vel::String::IteratorConst& end);
  bool operator==(const Position&) const = default;

  std::uint32_t row = 0;
  bool front = false;
};
Vel::String valueToStrep(const Position& position);

class Lamp : public Vel::PtrInterface {
 public:
  std::uint16_t watts() const noexcept { return watts_; }
  void wattsIs(std::uint16_t watts) noexcept { watts_ = watts; }
  Finish finish() const noexcept { return finish_; }
  void finishIs(Finish finish) noexcept { finish_ = finish; }
  const Vel::TypeRecord* fwkType() const override;

 private:
  std::uint16_t watts_ = 40;
  Finish finish_ = Finish::matte;
};

class DeskLamp : public Lamp {
 public:
  const Vel::TypeRecord* fwkType() const override;
};

class Book : public Vel::PtrInterface {
 public:
  Book(std::uint32_t id, Vel::String title) : id_(id), title_(std::move(title)) {}
  std::uint32_t id() const noexcept { return id_; }
  const Vel::String& title() const noexcept { return title_; }
  void titleIs(const Vel::String& title) { title_ = title; }
  const Vel::TypeRecord* fwkType() const override;

 private:
  std::uint32_t id_;
  Vel::String title_;
};

class Shelf : public Vel::PtrInterface {
 public:
  using BookMap = std::unordered_map<std::uint32_t, Vel::Ptr<Book>>;

  explicit Shelf(std::uint32_t serial) : serial_(serial) {}

  const Vel::String& label() const noexcept { return label_; }
  void labelIs(const Vel::String& label) { label_ = label; }
  std::uint32_t serial() const noexcept { return serial_; }
  const Vel::Ptr<Lamp>& lamp() const noexcept { return lamp_; }
  void lampIs(const Vel::Ptr<Lamp>& lamp) { lamp_ = lamp; }
  const Position& position() const noexcept { return position_; }
  void positionIs(const Position& position) { position_ = position; }

  Vel::Ptr<Book> book(std::uint32_t id) const;
  // The book of that id, created with the title when there is none.
  Vel::Ptr<Book> bookIs(std::uint32_t id, const Vel::String& title);
  // Removes the book; the removed book, or null when there was none.
  Vel::Ptr<Book> bookDel(std::uint32_t id);
  const BookMap& books() const noexcept { return books_; }

  const Vel::TypeRecord* fwkType() const override;

 private:
  Vel::String label_;
  std::uint32_t serial_;
  Vel::Ptr<Lamp> lamp_;
  Position position_;
  BookMap books_;
};

class Room : public Vel::Entity {
 public:
  static constexpr unsigned shelfAttribute = 258;
  static constexpr unsigned openAttribute = 259;
  static constexpr unsigned alcoveAttribute = 260;

  using ShelfMap = std::unordered_map<std::uint32_t, Vel::Ptr<Shelf>>;
  using AlcoveMap = std::unordered_map<Vel::Name, Vel::Ptr<Room>>;

  class NotifieeConst;

  explicit Room(Vel::Name name) : Vel::Entity(std::move(name)) {}
  // The alcoves are told that their parent has gone.
  ~Room() override;

  Vel::Ptr<Shelf> shelf(std::uint32_t serial) const;
  // The shelf of that serial, created (and notified) when there is none.
  Vel::Ptr<Shelf> shelfIs(std::uint32_t serial);
  // Removes the shelf and notifies; the removed shelf, or null when there was none.
  Vel::Ptr<Shelf> shelfDel(std::uint32_t serial);
  const ShelfMap& shelves() const noexcept { return shelves_; }

  bool open() const noexcept { return open_; }
  // Notifies when the flag changes.
  void openIs(bool open);

  Vel::Ptr<Room> alcove(const Vel::Name& name) const;
  // The alcove of that name, created under this room (and notified) when there is none.
  Vel::Ptr<Room> alcoveIs(const Vel::Name& name);
  Vel::Ptr<Room> alcoveDel(const Vel::Name& name);
  const AlcoveMap& alcoves() const noexcept { return alcoves_; }

  const Vel::TypeRecord* fwkType() const override;

 private:
  void shelfNotify(std::uint32_t serial);
  void alcoveNotify(const Vel::Name& name);

  ShelfMap shelves_;
  bool open_ = false;
  AlcoveMap alcoves_;
};

class Room::NotifieeConst : public Vel::Entity::NotifieeConst {
 public:
  Vel::Ptr<const Room> notifier() const noexcept {
    return Vel::static_ptr_cast<const Room>(Vel::Entity::NotifieeConst::notifier());
  }
  // Follows rooms only.
  void notifierIs(const Vel::Ptr<const Vel::PtrInterface>& notifier) override;

  virtual void onShelf(std::uint32_t serial);
  virtual void onShelfvelImmediate();
  virtual void onShelf();
  // The flag has no key: its keyed call and its key-less forms are all onOpen().
  virtual void onOpen();
  virtual void onAlcove(const Vel::Name& name);
  virtual void onAlcovevelImmediate();
  virtual void onAlcove();

  // Routes the key-less notifications to the callbacks above.
  void handleNotification(unsigned attributeNumber, Vel::NotificationKind kind) override;
};

// Carries every callback of a room's notifiees to a generic notifiee.
class RoomGenericNotifiee
    : public Vel::GenericNotifieeAdapter<RoomGenericNotifiee, Room::NotifieeConst> {
 public:
  void onShelf(std::uint32_t serial) override;
  void onShelfvelImmediate() override;
  void onShelf() override;
  void onOpen() override;
  void onAlcove(const Vel::Name& name) override;
  void onAlcovevelImmediate() override;
  void onAlcove() override;
};

extern const Vel::EnumType<unsigned int> finishType;
extern const Vel::TypeRecord positionType;
extern const Vel::TypeRecord lampType;
extern const Vel::TypeRecord deskLampType;
extern const Vel::TypeRecord bookType;
extern const Vel::TypeRecord shelfType;
extern const Vel::TypeRecord roomType;

// Objects of the family alive now, for leak checks.
std::size_t liveObjects();

}  // namespace Library
