#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <random>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Allocate.h"
#include "Vel/BitReverse.h"
#include "Vel/HashMap.h"
#include "Vel/HashMapLink.h"
#include "Vel/Ptr.h"

namespace HashMapTestIds {

// A configuration id: a wrapped number with its own hash.
class GroupId {
 public:
  explicit GroupId(std::uint32_t value) : value_(value) {}
  std::uint32_t value() const { return value_; }
  friend bool operator==(GroupId a, GroupId b) { return a.value_ == b.value_; }
  friend bool operator<(GroupId a, GroupId b) { return a.value_ < b.value_; }

 private:
  std::uint32_t value_;
};

std::uint32_t fwkHash(const GroupId& id) {
  return id.value();
}

// A number whose hash counts how often it is taken.
class CountedId {
 public:
  explicit CountedId(std::uint32_t value) : value_(value) {}
  std::uint32_t value() const { return value_; }
  friend bool operator==(CountedId a, CountedId b) { return a.value_ == b.value_; }
  friend bool operator<(CountedId a, CountedId b) { return a.value_ < b.value_; }

  static inline std::size_t hashesTaken = 0;

 private:
  std::uint32_t value_;
};

std::uint32_t fwkHash(const CountedId& id) {
  ++CountedId::hashesTaken;
  return id.value() * 2654435761u;
}

}  // namespace HashMapTestIds

namespace {

using HashMapTestIds::GroupId;

// An element keyed by a number of any integer type.
template <class K>
class Keyed : public Vel::PtrInterface, public Vel::HashMapLink<Keyed<K>> {
 public:
  explicit Keyed(K key) : key_(key) {}
  K fwkKey() const { return key_; }

 private:
  K key_;
};

using Item = Keyed<std::uint32_t>;
using ItemMap = Vel::HashMap<Item, std::uint32_t>;
using WideItem = Keyed<std::uint64_t>;
using WideItemMap = Vel::HashMap<WideItem, std::uint64_t>;

// The configuration object that a Reactor stands for.
class Group : public Vel::PtrInterface {};

// An element keyed by a configuration id, that brings its own chain link.
class Reactor : public Vel::PtrInterface {
 public:
  explicit Reactor(GroupId id) : id_(id) {}
  GroupId fwkKey() const { return id_; }
  Vel::Ptr<Reactor> fwkHmNext() const { return next_; }
  void fwkHmNextIs(const Vel::Ptr<Reactor>& next) { next_ = next; }

 private:
  GroupId id_;
  Vel::Ptr<Reactor> next_;
};

// A value object that elements are keyed by, by identity.
class Spec : public Vel::PtrInterface {
 public:
  explicit Spec(int session) : session_(session) {}
  int session() const { return session_; }

 private:
  int session_;
};

class SpecEntry : public Vel::PtrInterface, public Vel::HashMapLink<SpecEntry> {
 public:
  explicit SpecEntry(Vel::Ptr<const Spec> spec) : spec_(std::move(spec)) {}
  const Vel::Ptr<const Spec>& fwkKey() const { return spec_; }

 private:
  Vel::Ptr<const Spec> spec_;
};

// Elements keyed by a CountedId: one with the framework's link, which keeps
// the hash, and one with a link of its own.
class CountedItem : public Vel::PtrInterface, public Vel::HashMapLink<CountedItem> {
 public:
  explicit CountedItem(std::uint32_t id) : id_(id) {}
  HashMapTestIds::CountedId fwkKey() const { return id_; }

 private:
  HashMapTestIds::CountedId id_;
};

class CountedOwnLinkItem : public Vel::PtrInterface {
 public:
  explicit CountedOwnLinkItem(std::uint32_t id) : id_(id) {}
  HashMapTestIds::CountedId fwkKey() const { return id_; }
  Vel::Ptr<CountedOwnLinkItem> fwkHmNext() const { return next_; }
  void fwkHmNextIs(const Vel::Ptr<CountedOwnLinkItem>& next) { next_ = next; }

 private:
  HashMapTestIds::CountedId id_;
  Vel::Ptr<CountedOwnLinkItem> next_;
};

// Inserts elements 0..count-1 into a map of 4 buckets (so that it doubles
// several times), walks it once and finds every key again; gives how many
// hashes that took.
template <class Element>
std::size_t hashesToFillWalkAndFind(std::uint32_t count) {
  using HashMapTestIds::CountedId;
  Vel::HashMap<Element, CountedId> map(4);
  CountedId::hashesTaken = 0;
  for (std::uint32_t id = 0; id < count; ++id)
    EXPECT_TRUE(map.insert(Vel::allocate<Element>(id)));
  std::uint32_t walked = 0;
  for (auto element = map.begin(); element; ++element)
    ++walked;
  EXPECT_EQ(walked, count);
  for (std::uint32_t id = 0; id < count; ++id)
    EXPECT_TRUE(map.find(CountedId(id)));
  const std::size_t hashes = CountedId::hashesTaken;
  map.deleteAll();
  return hashes;
}

template <class T>
std::size_t live() {
  return Vel::AllocTrackTypeInfo::of<T>().liveObjects();
}

// Every test leaves no element of any of these types alive.
class HashMapTest : public ::testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(live<Item>(), 0u);
    EXPECT_EQ(live<WideItem>(), 0u);
    EXPECT_EQ(live<Reactor>(), 0u);
    EXPECT_EQ(live<Spec>(), 0u);
    EXPECT_EQ(live<SpecEntry>(), 0u);
    EXPECT_EQ(live<CountedItem>(), 0u);
    EXPECT_EQ(live<CountedOwnLinkItem>(), 0u);
  }

  static Vel::Ptr<Item> item(std::uint32_t key) { return Vel::allocate<Item>(key); }

  static void insertAll(ItemMap& map, const std::vector<std::uint32_t>& keys) {
    for (std::uint32_t key : keys)
      ASSERT_TRUE(map.insert(item(key))) << key;
  }

  template <class Map>
  static std::vector<typename Map::Key> keysInOrder(const Map& map) {
    std::vector<typename Map::Key> keys;
    for (const auto& element : map) {
      keys.push_back(element->fwkKey());
      if (keys.size() > map.size()) {
        ADD_FAILURE() << "the iteration visits more elements than the map holds";
        break;
      }
    }
    return keys;
  }

  // Whether the keys are in the map's order: ascending reversed hash, then key.
  template <class K>
  static bool inMapOrder(const std::vector<K>& keys) {
    auto order = [](const K& a, const K& b) {
      const std::uint32_t ra = Vel::bitReverse(Vel::fwkHashOfKey(a));
      const std::uint32_t rb = Vel::bitReverse(Vel::fwkHashOfKey(b));
      return ra < rb || (ra == rb && a < b);
    };
    return std::adjacent_find(keys.begin(), keys.end(),
                              [&](const K& a, const K& b) { return !order(a, b); }) == keys.end();
  }
};

TEST_F(HashMapTest, BucketCountIsTheInitialSizeRoundedUpToAPowerOfTwo) {
  EXPECT_EQ(ItemMap(4).buckets(), 4u);
  EXPECT_EQ(ItemMap(5).buckets(), 8u);
  EXPECT_EQ(ItemMap(1).buckets(), 1u);
  EXPECT_EQ(ItemMap(0).buckets(), 1u);
  EXPECT_EQ(ItemMap(1000).buckets(), 1024u);
  EXPECT_EQ(ItemMap().buckets(), 4u);
}

TEST_F(HashMapTest, AnUncountedLookUpFindsTheElementWithoutAReference) {
  ItemMap map(4);
  const Vel::Ptr<Item> seven = item(7);
  map.insert(seven);
  EXPECT_EQ(seven->references(), 2u);
  EXPECT_EQ(map.findUncounted(7), seven.get());
  EXPECT_EQ(seven->references(), 2u);
  EXPECT_EQ(map.findUncounted(8), nullptr);
}

TEST_F(HashMapTest, NewMapIsEmpty) {
  ItemMap map(4);
  EXPECT_TRUE(map.empty());
  EXPECT_EQ(map.size(), 0u);
  EXPECT_EQ(map.find(0), nullptr);
  EXPECT_FALSE(map.begin().valid());
  EXPECT_TRUE(map.begin() == map.end());
}

TEST_F(HashMapTest, SourceNamesTheConfigurationType) {
  static_assert(std::is_same_v<Vel::HashMap<Reactor, GroupId, Group>::Source, Group>);
  static_assert(std::is_same_v<ItemMap::Source, Item>);
  static_assert(std::is_same_v<ItemMap::Key, std::uint32_t>);
  SUCCEED();
}

TEST_F(HashMapTest, BucketIsTheTopBitsOfTheReversedKey) {
  ItemMap map(4);
  EXPECT_EQ(map.bucketOf(0), 0u);
  EXPECT_EQ(map.bucketOf(1), 2u);
  EXPECT_EQ(map.bucketOf(2), 1u);
  EXPECT_EQ(map.bucketOf(3), 3u);
  EXPECT_EQ(map.bucketOf(4), 0u);
  EXPECT_EQ(map.bucketOf(0x80000000u), 0u);
  ItemMap wide(16);
  EXPECT_EQ(wide.bucketOf(1), 8u);
  EXPECT_EQ(wide.bucketOf(4), 2u);
  EXPECT_EQ(wide.bucketOf(0x0000000fu), 15u);
  EXPECT_EQ(wide.bucketOf(0x00000010u), 0u);
  ItemMap single(1);
  EXPECT_EQ(single.bucketOf(0xffffffffu), 0u);
}

TEST_F(HashMapTest, IteratesInBucketOrder) {
  ItemMap map(4);
  insertAll(map, {3, 1, 2, 0});
  EXPECT_EQ(keysInOrder(map), (std::vector<std::uint32_t>{0, 2, 1, 3}));
}

TEST_F(HashMapTest, KeepsEachChainInReversedKeyOrder) {
  ItemMap map(4);
  insertAll(map, {4, 12, 8, 0});
  EXPECT_EQ(map.bucketOf(12), 0u);
  EXPECT_EQ(keysInOrder(map), (std::vector<std::uint32_t>{0, 8, 4, 12}));
  EXPECT_EQ(map.find(12)->fwkKey(), 12u);
  EXPECT_EQ(map.find(16), nullptr);
}

TEST_F(HashMapTest, FindsWhatWasInserted) {
  ItemMap map(4);
  const Vel::Ptr<Item> seven = item(7);
  EXPECT_TRUE(map.insert(seven));
  EXPECT_EQ(map.find(7), seven);
  EXPECT_EQ(map.find(8), nullptr);
  EXPECT_EQ(map.size(), 1u);
  EXPECT_FALSE(map.empty());
  const ItemMap& constMap = map;
  const Vel::Ptr<const Item> found = constMap.find(7);
  EXPECT_EQ(found, seven);
}

TEST_F(HashMapTest, RefusesASecondElementWithTheSameKey) {
  ItemMap map(4);
  const Vel::Ptr<Item> first = item(5);
  const Vel::Ptr<Item> second = item(5);
  ASSERT_TRUE(map.insert(first));
  EXPECT_FALSE(map.insert(second));
  EXPECT_FALSE(map.insert(first));
  EXPECT_EQ(map.find(5), first);
  EXPECT_EQ(map.size(), 1u);
  EXPECT_EQ(second->references(), 1u);
  EXPECT_EQ(keysInOrder(map), std::vector<std::uint32_t>{5});
}

TEST_F(HashMapTest, RemoveReturnsTheElementWithItsLinkCleared) {
  ItemMap map(4);
  insertAll(map, {0, 4, 8});
  const Vel::Ptr<Item> removed = map.remove(8);
  ASSERT_NE(removed, nullptr);
  EXPECT_EQ(removed->fwkKey(), 8u);
  EXPECT_EQ(removed->fwkHmNext(), nullptr);
  EXPECT_EQ(removed->references(), 1u);
  EXPECT_EQ(map.find(8), nullptr);
  EXPECT_NE(map.find(0), nullptr);
  EXPECT_NE(map.find(4), nullptr);
  EXPECT_EQ(map.size(), 2u);
  EXPECT_EQ(keysInOrder(map), (std::vector<std::uint32_t>{0, 4}));
}

TEST_F(HashMapTest, RemovesChainHeadsAndTails) {
  ItemMap map(4);
  insertAll(map, {0, 4, 8});
  EXPECT_EQ(map.remove(0)->fwkKey(), 0u);
  EXPECT_EQ(map.remove(4)->fwkKey(), 4u);
  EXPECT_EQ(keysInOrder(map), std::vector<std::uint32_t>{8});
  EXPECT_EQ(map.remove(8)->fwkKey(), 8u);
  EXPECT_TRUE(map.empty());
}

TEST_F(HashMapTest, RemovingAnAbsentKeyChangesNothing) {
  ItemMap map(4);
  insertAll(map, {1, 2});
  EXPECT_EQ(map.remove(3), nullptr);
  EXPECT_EQ(map.remove(5), nullptr);
  EXPECT_EQ(map.size(), 2u);
  EXPECT_EQ(keysInOrder(map), (std::vector<std::uint32_t>{2, 1}));
}

TEST_F(HashMapTest, HoldsOneReferenceToEachElement) {
  const Vel::Ptr<Item> element = item(3);
  {
    ItemMap map(4);
    map.insert(element);
    EXPECT_EQ(element->references(), 2u);
    map.remove(3);
    EXPECT_EQ(element->references(), 1u);
    map.insert(element);
    EXPECT_EQ(element->references(), 2u);
  }
  EXPECT_EQ(element->references(), 1u);
  EXPECT_EQ(element->fwkHmNext(), nullptr);
}

TEST_F(HashMapTest, DeleteAllReleasesEveryElementAndKeepsTheBuckets) {
  ItemMap map(4);
  for (std::uint32_t key = 0; key < 100; ++key)
    map.insert(item(key));
  const Vel::Ptr<Item> kept = map.find(42);
  const std::size_t buckets = map.buckets();
  EXPECT_EQ(live<Item>(), 100u);
  map.deleteAll();
  EXPECT_TRUE(map.empty());
  EXPECT_EQ(map.find(42), nullptr);
  EXPECT_EQ(map.buckets(), buckets);
  EXPECT_EQ(live<Item>(), 1u);
  EXPECT_EQ(kept->fwkHmNext(), nullptr);
  EXPECT_TRUE(map.insert(item(42)));
}

TEST_F(HashMapTest, DestructionReleasesEveryElement) {
  {
    ItemMap map(4);
    for (std::uint32_t key = 0; key < 1000; ++key)
      map.insert(item(key * 7919u));
    EXPECT_EQ(live<Item>(), 1000u);
  }
  EXPECT_EQ(live<Item>(), 0u);
}

TEST_F(HashMapTest, DoublesWhenTheCountExceedsTheBuckets) {
  ItemMap map(4);
  insertAll(map, {0, 1, 2, 3});
  EXPECT_EQ(map.buckets(), 4u);
  insertAll(map, {4});
  EXPECT_EQ(map.buckets(), 8u);
  insertAll(map, {5, 6, 7});
  EXPECT_EQ(map.buckets(), 8u);
  insertAll(map, {8});
  EXPECT_EQ(map.buckets(), 16u);
  EXPECT_EQ(keysInOrder(map), (std::vector<std::uint32_t>{0, 8, 4, 2, 6, 1, 5, 3, 7}));
}

TEST_F(HashMapTest, GrowsThroughManyDoublingsAndFindsEveryElement) {
  ItemMap map(4);
  const std::uint32_t count = 20000;
  for (std::uint32_t i = 0; i < count; ++i) {
    ASSERT_TRUE(map.insert(item(i * 2654435761u)));
    ASSERT_LE(map.size(), map.buckets());
  }
  EXPECT_EQ(map.buckets(), 32768u);
  for (std::uint32_t i = 0; i < count; ++i) {
    const Vel::Ptr<Item> found = map.find(i * 2654435761u);
    ASSERT_NE(found, nullptr) << i;
    EXPECT_EQ(found->fwkKey(), i * 2654435761u);
    EXPECT_EQ(map.bucketOf(found->fwkKey()), Vel::bitReverse(found->fwkKey()) >> (32 - 15));
  }
  const std::vector<std::uint32_t> keys = keysInOrder(map);
  EXPECT_EQ(keys.size(), count);
  EXPECT_TRUE(inMapOrder(keys));
}

TEST_F(HashMapTest, RemovingTheCurrentElementDuringIterationVisitsEveryElementOnce) {
  ItemMap map(4);
  for (std::uint32_t key = 0; key < 500; ++key)
    map.insert(item(key));
  std::vector<std::uint32_t> visited;
  for (ItemMap::Iterator it = map.iterator(); it; ++it) {
    ASSERT_LT(visited.size(), 500u);
    visited.push_back(it.key());
    EXPECT_EQ(map.remove(it.key()), it.ptr());
  }
  EXPECT_TRUE(map.empty());
  EXPECT_EQ(visited.size(), 500u);
  EXPECT_TRUE(inMapOrder(visited));
}

TEST_F(HashMapTest, RangeForToleratesRemovingTheCurrentElement) {
  ItemMap map(4);
  for (std::uint32_t key = 0; key < 64; ++key)
    map.insert(item(key));
  std::set<std::uint32_t> visited;
  for (const Vel::Ptr<Item>& element : map) {
    ASSERT_TRUE(visited.insert(element->fwkKey()).second);
    map.remove(element->fwkKey());
  }
  EXPECT_EQ(visited.size(), 64u);
  EXPECT_TRUE(map.empty());
}

TEST_F(HashMapTest, ElementsRemovedBeforeTheyAreReachedAreNotVisited) {
  ItemMap map(4);
  for (std::uint32_t key = 0; key < 256; ++key)
    map.insert(item(key));
  const std::vector<std::uint32_t> order = keysInOrder(map);
  std::vector<std::uint32_t> visited;
  std::set<std::uint32_t> removedEarly;
  for (ItemMap::Iterator it = map.begin(); it != map.end(); ++it) {
    ASSERT_LT(visited.size(), 256u);
    visited.push_back(it.key());
    // Remove the element two places ahead in the map's order.
    const auto here = std::find(order.begin(), order.end(), it.key());
    if (order.end() - here > 2 && map.remove(*(here + 2)))
      removedEarly.insert(*(here + 2));
  }
  std::vector<std::uint32_t> expected;
  for (std::uint32_t key : order) {
    if (removedEarly.count(key) == 0)
      expected.push_back(key);
  }
  EXPECT_FALSE(removedEarly.empty());
  EXPECT_EQ(visited, expected);
  EXPECT_EQ(map.size(), 256u - removedEarly.size());
}

TEST_F(HashMapTest, RemovingElementsAlreadyVisitedKeepsTheIterationGoing) {
  ItemMap map(4);
  for (std::uint32_t key = 0; key < 128; ++key)
    map.insert(item(key));
  const std::vector<std::uint32_t> order = keysInOrder(map);
  std::vector<std::uint32_t> visited;
  for (auto it = map.begin(); it; ++it) {
    ASSERT_LT(visited.size(), 128u);
    if (!visited.empty()) {
      EXPECT_NE(map.remove(visited.back()), nullptr);
    }
    visited.push_back(it.key());
  }
  EXPECT_EQ(visited, order);
  EXPECT_EQ(map.size(), 1u);
}

TEST_F(HashMapTest, InsertingDuringIterationStillVisitsEachOriginalElementOnce) {
  ItemMap map(4);
  for (std::uint32_t key = 0; key < 16; ++key)
    map.insert(item(key));
  std::multiset<std::uint32_t> visited;
  for (auto it = map.begin(); it; ++it) {
    ASSERT_LT(visited.size(), 16u * 9u);
    visited.insert(it.key());
    // Each original element brings eight new ones, growing the table many times.
    if (it.key() < 16) {
      for (std::uint32_t n = 1; n <= 8; ++n)
        map.insert(item(it.key() + 1000 * n));
    }
  }
  EXPECT_EQ(map.size(), 16u * 9u);
  EXPECT_EQ(map.buckets(), 256u);
  for (std::uint32_t key = 0; key < 16; ++key)
    EXPECT_EQ(visited.count(key), 1u) << key;
  for (std::uint32_t key : visited)
    EXPECT_EQ(visited.count(key), 1u) << key;
}

TEST_F(HashMapTest, ConstIterationGivesConstElements) {
  ItemMap map(4);
  insertAll(map, {1, 2, 3});
  const ItemMap& constMap = map;
  std::vector<std::uint32_t> keys;
  for (ItemMap::IteratorConst it = constMap.iteratorConst(); it.valid(); ++it) {
    static_assert(std::is_same_v<decltype(it.ptr()), const Vel::Ptr<const Item>&>);
    ASSERT_LT(keys.size(), 3u);
    keys.push_back(it->fwkKey());
  }
  EXPECT_EQ(keys, (std::vector<std::uint32_t>{2, 1, 3}));
  const ItemMap::IteratorConst fromMutable = map.begin();
  EXPECT_EQ(fromMutable.key(), 2u);
}

TEST_F(HashMapTest, IteratorKeepsItsElementAliveAfterRemoval) {
  ItemMap map(4);
  insertAll(map, {1, 2});
  ItemMap::Iterator it = map.begin();
  map.deleteAll();
  EXPECT_EQ(live<Item>(), 1u);
  EXPECT_EQ(it.key(), 2u);
  ++it;
  EXPECT_FALSE(it.valid());
  EXPECT_EQ(live<Item>(), 0u);
}

TEST_F(HashMapTest, ReferenceKeysCompareByIdentity) {
  Vel::HashMap<SpecEntry, Vel::Ptr<const Spec>> map(4);
  const Vel::Ptr<const Spec> first = Vel::allocate<Spec>(9);
  const Vel::Ptr<const Spec> twin = Vel::allocate<Spec>(9);
  EXPECT_TRUE(map.insert(Vel::allocate<SpecEntry>(first)));
  EXPECT_EQ(map.find(twin), nullptr);
  EXPECT_TRUE(map.insert(Vel::allocate<SpecEntry>(twin)));
  EXPECT_EQ(map.size(), 2u);
  EXPECT_EQ(map.find(first)->fwkKey(), first);
  EXPECT_EQ(map.find(twin)->fwkKey(), twin);
  EXPECT_FALSE(map.insert(Vel::allocate<SpecEntry>(first)));
  EXPECT_EQ(map.remove(first)->fwkKey()->session(), 9);
  EXPECT_EQ(map.find(first), nullptr);
  EXPECT_EQ(map.find(twin)->fwkKey(), twin);
}

TEST_F(HashMapTest, IdKeysUseTheirOwnHashAndTheirOwnLink) {
  Vel::HashMap<Reactor, GroupId, Group> map(4);
  for (std::uint32_t id = 0; id < 40; ++id)
    EXPECT_TRUE(map.insert(Vel::allocate<Reactor>(GroupId(id))));
  EXPECT_EQ(map.bucketOf(GroupId(1)), 32u);
  EXPECT_EQ(map.find(GroupId(17))->fwkKey(), GroupId(17));
  EXPECT_EQ(map.find(GroupId(40)), nullptr);
  EXPECT_EQ(map.remove(GroupId(3))->fwkHmNext(), nullptr);
  std::vector<GroupId> ids;
  for (const auto& reactor : map) {
    ASSERT_LT(ids.size(), 39u);
    ids.push_back(reactor->fwkKey());
  }
  EXPECT_EQ(ids.size(), 39u);
  EXPECT_TRUE(inMapOrder(ids));
}

TEST_F(HashMapTest, KeysOfEqualHashAreOrderedByKey) {
  WideItemMap map(4);
  // Each of these folds to the hash 1.
  const std::vector<std::uint64_t> keys = {0x0000000300000002ull, 0x0000000000000001ull,
                                           0x0000000100000000ull, 0x0000000200000003ull};
  for (std::uint64_t key : keys)
    ASSERT_TRUE(map.insert(Vel::allocate<WideItem>(key)));
  EXPECT_EQ(keysInOrder(map),
            (std::vector<std::uint64_t>{0x0000000000000001ull, 0x0000000100000000ull,
                                        0x0000000200000003ull, 0x0000000300000002ull}));
  EXPECT_EQ(map.remove(0x0000000100000000ull)->fwkKey(), 0x0000000100000000ull);
  EXPECT_EQ(map.find(0x0000000200000003ull)->fwkKey(), 0x0000000200000003ull);
  EXPECT_EQ(map.find(0x0000000100000000ull), nullptr);
}

// The framework's link keeps each element's hash: a key is hashed when it is
// inserted and when it is looked up, never again as chains are walked, split
// on growth or iterated.
TEST_F(HashMapTest, ElementsWithTheFrameworkLinkAreHashedOnceOnInsert) {
  EXPECT_EQ(hashesToFillWalkAndFind<CountedItem>(64), 64u + 64u);
}

// An element with a link of its own has its key hashed again wherever the map
// needs its hash.
TEST_F(HashMapTest, ElementsWithTheirOwnLinkAreHashedAgainWhenNeeded) {
  EXPECT_GT(hashesToFillWalkAndFind<CountedOwnLinkItem>(64), 2u * (64u + 64u));
}

TEST(HashMapDeathTest, GrowthIsOneDoublingAtATime) {
  ItemMap map(4);
  EXPECT_DEATH(map.expandBy(2),
               "^[^\n]*/platform/Vel/HashMap\\.h:[0-9]+: void Vel::HashMap<[^\n]*>::expandBy\\("
               "unsigned int\\)[^\n]*: Assertion 'slotsToShift == 1' failed\\.\n$");
}

TEST(HashMapDeathTest, InsertingNullStops) {
  ItemMap map(4);
  EXPECT_DEATH(map.insert(nullptr),
               "^[^\n]*/platform/Vel/HashMap\\.h:[0-9]+: bool Vel::HashMap<[^\n]*>::insert\\("
               "[^\n]*: Assertion 'element != nullptr' failed\\.\n$");
}

// Differential test against std::map: random inserts, removals and look-ups,
// and iterations that remove elements as they go, over 64-bit keys chosen so
// that many share a hash.
TEST_F(HashMapTest, BehavesLikeAnOrderedMapUnderRandomOperations) {
  std::mt19937 random(20240611u);
  auto randomKey = [&random] {
    const std::uint64_t high = random() % 8;
    const std::uint64_t low = random() % 512;
    return (high << 32) | low;
  };
  WideItemMap map(4);
  std::map<std::uint64_t, Vel::Ptr<WideItem>> model;
  std::size_t operations = 0;
  while (operations < 100000) {
    const unsigned choice = random() % 100;
    const std::uint64_t key = randomKey();
    ++operations;
    if (choice < 45) {
      const Vel::Ptr<WideItem> element = Vel::allocate<WideItem>(key);
      const bool inserted = model.emplace(key, element).second;
      ASSERT_EQ(map.insert(element), inserted) << operations;
    } else if (choice < 80) {
      const auto known = model.find(key);
      const Vel::Ptr<WideItem> removed = map.remove(key);
      ASSERT_EQ(removed, known == model.end() ? nullptr : known->second) << operations;
      if (known != model.end())
        model.erase(known);
    } else if (choice < 99) {
      const auto known = model.find(key);
      ASSERT_EQ(map.find(key), known == model.end() ? nullptr : known->second) << operations;
    } else {
      // Iterate, removing the current element or another one now and then.
      std::set<std::uint64_t> present;
      for (const auto& entry : model)
        present.insert(entry.first);
      std::set<std::uint64_t> visited;
      std::set<std::uint64_t> removedUnvisited;
      std::vector<std::uint64_t> order;
      for (auto it = map.begin(); it; ++it) {
        ++operations;
        const std::uint64_t current = it.key();
        ASSERT_TRUE(visited.insert(current).second) << "visited twice: " << current;
        ASSERT_EQ(removedUnvisited.count(current), 0u) << "removed but visited: " << current;
        order.push_back(current);
        const unsigned action = random() % 4;
        if (action == 0) {
          ASSERT_EQ(map.remove(current), it.ptr());
          model.erase(current);
        } else if (action == 1) {
          const std::uint64_t other = randomKey();
          if (map.remove(other) && visited.count(other) == 0)
            removedUnvisited.insert(other);
          model.erase(other);
        }
      }
      for (std::uint64_t key : present) {
        if (removedUnvisited.count(key) == 0) {
          ASSERT_EQ(visited.count(key), 1u) << key;
        }
      }
      ASSERT_TRUE(inMapOrder(order));
    }
    ASSERT_EQ(map.size(), model.size());
  }
  std::vector<std::uint64_t> expected;
  for (const auto& entry : model)
    expected.push_back(entry.first);
  std::vector<std::uint64_t> actual = keysInOrder(map);
  ASSERT_TRUE(inMapOrder(actual));
  std::sort(actual.begin(), actual.end());
  EXPECT_EQ(actual, expected);
  model.clear();
  map.deleteAll();
}

}  // namespace
