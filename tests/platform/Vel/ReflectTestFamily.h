#pragma once

// A small family of types with hand-written type records, in the style of the
// generated reflection code, on which the reflection tests run: a shelf holding
// books (a keyed collection with mutators), a lamp (an object attribute) with a
// derived desk lamp that answers nothing itself, a position (a value type with
// two fields) and a finish (an enumeration).

#include <cstddef>
#include <cstdint>
#include <unordered_map>

#include "Vel/EnumType.h"
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

extern const Vel::EnumType<unsigned int> finishType;
extern const Vel::TypeRecord positionType;
extern const Vel::TypeRecord lampType;
extern const Vel::TypeRecord deskLampType;
extern const Vel::TypeRecord bookType;
extern const Vel::TypeRecord shelfType;

// Objects of the family alive now, for leak checks.
std::size_t liveObjects();

}  // namespace Library
