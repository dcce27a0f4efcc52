#include "Vel/GenericKeyIterator.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>

#include "ReflectTestFamily.h"
#include "ReflectTestHelpers.h"
#include "Vel/Allocate.h"
#include "Vel/BuiltinType.h"
#include "Vel/Format.h"
#include "Vel/RangeException.h"

namespace {

using Library::Book;
using Library::Shelf;
using Vel::GenericIf;
using Vel::GenericIterator;
using Vel::GenericValue;

GenericValue u32(std::uint32_t v) {
  return Vel::BuiltinType<std::uint32_t>::value(v);
}

class GenericKeyIteratorTest : public ::testing::Test {
 protected:
  GenericKeyIteratorTest() {
    for (std::uint32_t id : {3u, 5u, 8u})
      shelf_->bookIs(id, Vel::format("Vol %u", id));
  }

  // The keys from the iterator's position to the end.
  static std::set<std::uint32_t> walk(GenericIterator& iterator) {
    std::set<std::uint32_t> keys;
    for (; iterator.valid(); iterator.advance()) {
      const std::uint32_t key = iterator.key().get<std::uint32_t>();
      EXPECT_EQ(iterator.current().get<Vel::Ptr<Book>>()->id(), key);
      keys.insert(key);
    }
    return keys;
  }

  Library::LeakCheck leakCheck_;
  Vel::Ptr<Shelf> shelf_ = Vel::allocate<Shelf>(1);
  GenericIf shelfIf_{shelf_};
};

TEST_F(GenericKeyIteratorTest, WalkVisitsEveryElementOnceWithItsKey) {
  Vel::Ptr<GenericIterator> iterator = shelfIf_.iterator("book");
  ASSERT_TRUE(iterator->valid());
  EXPECT_EQ(iterator->key().type(), &Vel::BuiltinType<std::uint32_t>::instance());
  EXPECT_EQ(iterator->current().type(), &Library::bookType);
  EXPECT_EQ(walk(*iterator), (std::set<std::uint32_t>{3, 5, 8}));
}

TEST_F(GenericKeyIteratorTest, IteratorOverAnEmptyCollectionStandsOnNothing) {
  for (std::uint32_t id : {3u, 5u, 8u})
    shelf_->bookDel(id);
  Vel::Ptr<GenericIterator> iterator = shelfIf_.iterator("book");
  EXPECT_FALSE(iterator->valid());
  EXPECT_EQ(Library::messageOf<Vel::RangeException>([&] { iterator->key(); }),
            "Iterator over attribute 'Library::Shelf::book' stands on no element");
  EXPECT_EQ(Library::messageOf<Vel::RangeException>([&] { iterator->current(); }),
            "Iterator over attribute 'Library::Shelf::book' stands on no element");
  EXPECT_EQ(Library::messageOf<Vel::RangeException>([&] { iterator->deleteCurrent(); }),
            "Iterator over attribute 'Library::Shelf::book' stands on no element");
  iterator->advance();
  EXPECT_FALSE(iterator->valid());
}

TEST_F(GenericKeyIteratorTest, IteratorAtKeyStandsOnThatKeysElement) {
  Vel::Ptr<GenericIterator> iterator = shelfIf_.iteratorAtKey("book", u32(5));
  ASSERT_TRUE(iterator->valid());
  EXPECT_EQ(iterator->key().get<std::uint32_t>(), 5u);
  EXPECT_EQ(iterator->current().get<Vel::Ptr<Book>>(), shelf_->book(5));
}

TEST_F(GenericKeyIteratorTest, IteratorAtAbsentKeyStandsOnNothing) {
  EXPECT_FALSE(shelfIf_.iteratorAtKey("book", u32(4))->valid());
}

TEST_F(GenericKeyIteratorTest, DeleteCurrentRemovesThroughTheDeleteMutatorAndMovesOn) {
  Vel::Ptr<GenericIterator> iterator = shelfIf_.iterator("book");
  std::set<std::uint32_t> removed;
  while (iterator->valid()) {
    const std::uint32_t key = iterator->key().get<std::uint32_t>();
    const GenericValue book = iterator->deleteCurrent();
    EXPECT_EQ(book.get<Vel::Ptr<Book>>()->id(), key);
    EXPECT_EQ(shelf_->book(key), nullptr);
    removed.insert(key);
  }
  EXPECT_EQ(removed, (std::set<std::uint32_t>{3, 5, 8}));
  EXPECT_TRUE(shelf_->books().empty());
}

TEST_F(GenericKeyIteratorTest, ElementRemovedDuringTheWalkIsPassedOver) {
  Vel::Ptr<GenericIterator> iterator = shelfIf_.iterator("book");
  const std::uint32_t first = iterator->key().get<std::uint32_t>();
  std::set<std::uint32_t> others{3, 5, 8};
  others.erase(first);
  const std::uint32_t gone = *others.begin();
  shelf_->bookDel(gone);
  iterator->advance();
  others.erase(gone);
  EXPECT_EQ(walk(*iterator), others);
}

TEST_F(GenericKeyIteratorTest, IteratorHoldsTheCollectionsOwnerAlive) {
  Vel::Ptr<GenericIterator> iterator = shelfIf_.iterator("book");
  shelf_ = nullptr;
  shelfIf_ = GenericIf(Vel::allocate<Shelf>(2));
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Shelf>().liveObjects(), 2u);
  EXPECT_EQ(walk(*iterator).size(), 3u);
  iterator = nullptr;
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Shelf>().liveObjects(), 1u);
}

}  // namespace
