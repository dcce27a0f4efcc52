#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <type_traits>
#include <vector>

#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Allocate.h"
#include "Vel/ExternalKey.h"
#include "Vel/HashMap2018.h"
#include "Vel/Ptr.h"

namespace HashMap2018TestIds {

// A configuration id: a wrapped number with its own hash.
class MemberId {
 public:
  explicit MemberId(std::uint32_t value) : value_(value) {}
  std::uint32_t value() const { return value_; }
  friend bool operator==(MemberId a, MemberId b) { return a.value_ == b.value_; }
  friend bool operator<(MemberId a, MemberId b) { return a.value_ < b.value_; }

 private:
  std::uint32_t value_;
};

std::uint32_t fwkHash(const MemberId& id) {
  return id.value();
}

}  // namespace HashMap2018TestIds

namespace {

using HashMap2018TestIds::MemberId;

// A match specification; registries key by the object, not by its contents.
class MatchSpec : public Vel::PtrInterface {
 public:
  explicit MatchSpec(int session) : session_(session) {}
  int session() const { return session_; }

 private:
  int session_;
};

// A configured member that carries its own id.
class Entry : public Vel::PtrInterface {
 public:
  Entry(MemberId memberId, int action) : memberId_(memberId), action_(action) {}
  MemberId memberId() const { return memberId_; }
  int action() const { return action_; }

 private:
  MemberId memberId_;
  int action_;
};

// The key of an entry slot is the member id of the entry stored there.
struct EntryMemberId {
  MemberId operator()(const Vel::Ptr<Entry>& entry) const { return entry->memberId(); }
};

using HandleMap = Vel::HashMap2018<std::uint32_t, std::uint32_t>;
using SpecHandleMap = Vel::HashMap2018<Vel::Ptr<const MatchSpec>, std::uint32_t>;
using EntryMap = Vel::HashMap2018<MemberId, Vel::Ptr<Entry>, EntryMemberId>;

template <class T>
std::size_t live() {
  return Vel::AllocTrackTypeInfo::of<T>().liveObjects();
}

// Every test leaves no slot, spec or entry alive.
class HashMap2018Test : public ::testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(live<HandleMap::Slot>(), 0u);
    EXPECT_EQ(live<SpecHandleMap::Slot>(), 0u);
    EXPECT_EQ(live<EntryMap::Slot>(), 0u);
    EXPECT_EQ(live<MatchSpec>(), 0u);
    EXPECT_EQ(live<Entry>(), 0u);
  }

  static std::map<std::uint32_t, std::uint32_t> contents(const HandleMap& map) {
    std::map<std::uint32_t, std::uint32_t> result;
    for (auto it = map.begin(); it; ++it) {
      if (!result.emplace(it.key(), it.value()).second) {
        ADD_FAILURE() << "visited twice: " << it.key();
        break;
      }
    }
    return result;
  }
};

TEST_F(HashMap2018Test, ExternalKeyIsTheDefaultPolicy) {
  static_assert(
      std::is_same_v<HandleMap, Vel::HashMap2018<std::uint32_t, std::uint32_t, Vel::ExternalKey>>);
  static_assert(std::is_same_v<HandleMap::Key, std::uint32_t>);
  static_assert(std::is_same_v<EntryMap::Value, Vel::Ptr<Entry>>);
  SUCCEED();
}

TEST_F(HashMap2018Test, NewMapIsEmpty) {
  HandleMap map(4);
  EXPECT_TRUE(map.empty());
  EXPECT_EQ(map.size(), 0u);
  EXPECT_EQ(map.buckets(), 4u);
  EXPECT_EQ(map.find(7), nullptr);
  EXPECT_FALSE(map.begin().valid());
}

TEST_F(HashMap2018Test, InsertStoresTheKeyAndTheValueInASlot) {
  HandleMap map(4);
  const Vel::Ptr<HandleMap::Slot> slot = map.insert(7, 0x1001);
  ASSERT_NE(slot, nullptr);
  EXPECT_EQ(map.find(7), slot);
  EXPECT_EQ(slot->fwkKey(), 7u);
  EXPECT_EQ(slot->value(), 0x1001u);
  EXPECT_EQ(map.size(), 1u);
  EXPECT_EQ(live<HandleMap::Slot>(), 1u);
  const HandleMap& constMap = map;
  EXPECT_EQ(constMap.find(7)->value(), 0x1001u);
}

TEST_F(HashMap2018Test, ValueIsReplacesTheValueInPlace) {
  HandleMap map(4);
  map.insert(7, 0x1001);
  map.find(7)->valueIs(0x2002);
  EXPECT_EQ(map.find(7)->value(), 0x2002u);
  EXPECT_EQ(map.size(), 1u);
}

TEST_F(HashMap2018Test, RefusesAKeyThatIsPresent) {
  HandleMap map(4);
  const Vel::Ptr<HandleMap::Slot> first = map.insert(7, 0x1001);
  EXPECT_EQ(map.insert(7, 0x2002), nullptr);
  EXPECT_EQ(map.find(7), first);
  EXPECT_EQ(first->value(), 0x1001u);
  EXPECT_EQ(map.size(), 1u);
  EXPECT_EQ(live<HandleMap::Slot>(), 1u);
}

TEST_F(HashMap2018Test, ValueOfReadsAValueInPlace) {
  HandleMap map(4);
  map.insert(7, 0x1001);
  const std::uint32_t* value = map.valueOf(7);
  ASSERT_NE(value, nullptr);
  EXPECT_EQ(*value, 0x1001u);
  EXPECT_EQ(value, &map.find(7)->value());
  EXPECT_EQ(map.valueOf(8), nullptr);
  map.remove(7);
  EXPECT_EQ(map.valueOf(7), nullptr);
}

TEST_F(HashMap2018Test, RemoveReturnsTheValueOfTheKey) {
  HandleMap map(4);
  map.insert(7, 0x1001);
  map.insert(8, 0x1002);
  EXPECT_EQ(map.remove(7), std::optional<std::uint32_t>(0x1001));
  EXPECT_EQ(map.find(7), nullptr);
  EXPECT_EQ(map.size(), 1u);
  EXPECT_EQ(live<HandleMap::Slot>(), 1u);
  EXPECT_EQ(contents(map), (std::map<std::uint32_t, std::uint32_t>{{8, 0x1002}}));
}

TEST_F(HashMap2018Test, RemovingAnAbsentKeyGivesNoValue) {
  HandleMap map(4);
  map.insert(8, 0);
  EXPECT_EQ(map.remove(7), std::nullopt);
  EXPECT_EQ(map.size(), 1u);
  // A stored value of 0 is still a value.
  EXPECT_EQ(map.remove(8), std::optional<std::uint32_t>(0));
}

TEST_F(HashMap2018Test, DeleteAllReleasesEverySlot) {
  HandleMap map(4);
  for (std::uint32_t key = 0; key < 50; ++key)
    map.insert(key, key + 100);
  EXPECT_EQ(live<HandleMap::Slot>(), 50u);
  map.deleteAll();
  EXPECT_TRUE(map.empty());
  EXPECT_EQ(live<HandleMap::Slot>(), 0u);
  EXPECT_EQ(map.find(3), nullptr);
}

TEST_F(HashMap2018Test, GrowsAndFindsEveryKey) {
  HandleMap map(4);
  for (std::uint32_t key = 0; key < 5000; ++key)
    ASSERT_NE(map.insert(key * 40503u, key), nullptr);
  EXPECT_EQ(map.buckets(), 8192u);
  for (std::uint32_t key = 0; key < 5000; ++key) {
    const auto slot = map.find(key * 40503u);
    ASSERT_NE(slot, nullptr) << key;
    EXPECT_EQ(slot->value(), key);
  }
  EXPECT_EQ(contents(map).size(), 5000u);
}

TEST_F(HashMap2018Test, IteratesInBucketOrderWithKeysAndValues) {
  HandleMap map(4);
  map.insert(3, 30);
  map.insert(0, 0);
  map.insert(1, 10);
  map.insert(2, 20);
  std::vector<std::uint32_t> keys;
  std::vector<std::uint32_t> values;
  for (HandleMap::Iterator it = map.iterator(); it.valid(); ++it) {
    ASSERT_LT(keys.size(), 4u);
    keys.push_back(it.key());
    values.push_back(it.value());
  }
  EXPECT_EQ(keys, (std::vector<std::uint32_t>{0, 2, 1, 3}));
  EXPECT_EQ(values, (std::vector<std::uint32_t>{0, 20, 10, 30}));
  EXPECT_EQ(map.bucketOf(1), 2u);
}

TEST_F(HashMap2018Test, RemovingDuringIterationVisitsEverySlotOnce) {
  HandleMap map(4);
  for (std::uint32_t key = 0; key < 300; ++key)
    map.insert(key, key);
  std::set<std::uint32_t> visited;
  for (const auto& slot : map) {
    ASSERT_TRUE(visited.insert(slot->fwkKey()).second);
    EXPECT_EQ(map.remove(slot->fwkKey()), std::optional<std::uint32_t>(slot->value()));
  }
  EXPECT_EQ(visited.size(), 300u);
  EXPECT_TRUE(map.empty());
}

TEST_F(HashMap2018Test, SlotsRemovedBeforeTheyAreReachedAreNotVisited) {
  HandleMap map(4);
  for (std::uint32_t key = 0; key < 100; ++key)
    map.insert(key, key);
  std::set<std::uint32_t> visited;
  for (auto it = map.begin(); it; ++it) {
    ASSERT_TRUE(visited.insert(it.key()).second);
    // Odd keys lie after the even ones in bucket order.
    if (it.key() % 2 == 0)
      map.remove(it.key() + 1);
  }
  std::set<std::uint32_t> evens;
  for (std::uint32_t key = 0; key < 100; key += 2)
    evens.insert(key);
  EXPECT_EQ(visited, evens);
  EXPECT_EQ(map.size(), 50u);
}

TEST_F(HashMap2018Test, TheSlotOfARemovedKeyServesTheNextInsert) {
  HandleMap map(4);
  const HandleMap::Slot* removedSlot = map.insert(7, 0x1001).get();
  EXPECT_EQ(map.remove(7), std::optional<std::uint32_t>(0x1001));
  // Kept aside, the slot counts as released, as a freed one would.
  EXPECT_EQ(live<HandleMap::Slot>(), 0u);
  const Vel::Ptr<HandleMap::Slot> slot = map.insert(8, 0x1002);
  ASSERT_NE(slot, nullptr);
  EXPECT_EQ(slot.get(), removedSlot);
  EXPECT_EQ(slot->fwkKey(), 8u);
  EXPECT_EQ(slot->value(), 0x1002u);
  EXPECT_EQ(live<HandleMap::Slot>(), 1u);
  EXPECT_EQ(map.find(7), nullptr);
  EXPECT_EQ(contents(map), (std::map<std::uint32_t, std::uint32_t>{{8, 0x1002}}));
}

TEST_F(HashMap2018Test, ASlotHeldElsewhereIsNotUsedAgain) {
  HandleMap map(4);
  map.insert(7, 0x1001);
  const Vel::Ptr<HandleMap::Slot> held = map.find(7);
  map.remove(7);
  const Vel::Ptr<HandleMap::Slot> slot = map.insert(8, 0x1002);
  EXPECT_NE(slot.get(), held.get());
  EXPECT_EQ(held->fwkKey(), 7u);
  EXPECT_EQ(held->value(), 0x1001u);
  EXPECT_EQ(live<HandleMap::Slot>(), 2u);
}

TEST_F(HashMap2018Test, InsertingAPresentKeyKeepsTheSpareSlotForLater) {
  HandleMap map(4);
  map.insert(7, 0x1001);
  map.insert(8, 0x1002);
  const HandleMap::Slot* removedSlot = map.insert(9, 0x1003).get();
  map.remove(9);
  EXPECT_EQ(map.insert(8, 0x2002), nullptr);
  EXPECT_EQ(map.find(8)->value(), 0x1002u);
  EXPECT_EQ(live<HandleMap::Slot>(), 2u);
  EXPECT_EQ(map.insert(10, 0x1004).get(), removedSlot);
  EXPECT_EQ(live<HandleMap::Slot>(), 3u);
}

TEST_F(HashMap2018Test, AKeptSlotHoldsNoReferenceToItsFormerKey) {
  SpecHandleMap map(4);
  const Vel::Ptr<const MatchSpec> spec = Vel::allocate<MatchSpec>(5);
  map.insert(spec, 0x11);
  EXPECT_EQ(spec->references(), 2u);
  map.remove(spec);
  EXPECT_EQ(spec->references(), 1u);
  const Vel::Ptr<const MatchSpec> next = Vel::allocate<MatchSpec>(6);
  map.insert(next, 0x22);
  EXPECT_EQ(next->references(), 2u);
  EXPECT_EQ(map.find(spec), nullptr);
  EXPECT_EQ(map.find(next)->value(), 0x22u);
}

TEST_F(HashMap2018Test, ReferenceKeysCompareByIdentityAndAreHeldWhilePresent) {
  SpecHandleMap map(4);
  const Vel::Ptr<const MatchSpec> spec = Vel::allocate<MatchSpec>(5);
  const Vel::Ptr<const MatchSpec> twin = Vel::allocate<MatchSpec>(5);
  ASSERT_NE(map.insert(spec, 0x11), nullptr);
  EXPECT_EQ(spec->references(), 2u);
  EXPECT_EQ(map.find(twin), nullptr);
  ASSERT_NE(map.insert(twin, 0x22), nullptr);
  EXPECT_EQ(map.size(), 2u);
  EXPECT_EQ(map.find(spec)->value(), 0x11u);
  EXPECT_EQ(map.find(twin)->value(), 0x22u);
  EXPECT_EQ(map.remove(spec), std::optional<std::uint32_t>(0x11));
  EXPECT_EQ(spec->references(), 1u);
  EXPECT_EQ(map.find(twin)->fwkKey(), twin);
  map.deleteAll();
  EXPECT_EQ(twin->references(), 1u);
}

TEST_F(HashMap2018Test, InternalKeysComeFromTheValue) {
  EntryMap map(4);
  const Vel::Ptr<Entry> entry = Vel::allocate<Entry>(MemberId(7), 1);
  ASSERT_NE(map.insert(entry), nullptr);
  EXPECT_EQ(map.find(MemberId(7))->fwkKey(), MemberId(7));
  EXPECT_EQ(map.find(MemberId(7))->value(), entry);
  EXPECT_EQ(map.find(MemberId(8)), nullptr);
  EXPECT_EQ(map.insert(Vel::allocate<Entry>(MemberId(7), 2)), nullptr);
  EXPECT_EQ(map.find(MemberId(7))->value()->action(), 1);
  EXPECT_EQ(map.remove(MemberId(7)), std::optional<Vel::Ptr<Entry>>(entry));
  EXPECT_EQ(entry->references(), 1u);
  EXPECT_TRUE(map.empty());
}

TEST_F(HashMap2018Test, InternalKeySlotTakesAValueWithItsOwnKey) {
  EntryMap map(4);
  map.insert(Vel::allocate<Entry>(MemberId(7), 1));
  const Vel::Ptr<Entry> replacement = Vel::allocate<Entry>(MemberId(7), 2);
  map.find(MemberId(7))->valueIs(replacement);
  EXPECT_EQ(map.find(MemberId(7))->value(), replacement);
  EXPECT_EQ(live<Entry>(), 1u);
  std::vector<int> actions;
  for (auto it = map.begin(); it; ++it) {
    ASSERT_LT(actions.size(), 1u);
    actions.push_back(it.value()->action());
  }
  EXPECT_EQ(actions, std::vector<int>{2});
}

TEST(HashMap2018DeathTest, InternalKeySlotRefusesAValueOfAnotherKey) {
  EntryMap map(4);
  map.insert(Vel::allocate<Entry>(MemberId(7), 1));
  const Vel::Ptr<Entry> stranger = Vel::allocate<Entry>(MemberId(8), 1);
  EXPECT_DEATH(map.find(MemberId(7))->valueIs(stranger),
               "^[^\n]*/platform/Vel/HashMap2018\\.h:[0-9]+: void Vel::HashMap2018<[^\n]*>::Slot::"
               "valueIs\\([^\n]*: Assertion 'fwkKey\\(\\) == KeyFunktor\\(\\)\\( _value \\)' "
               "failed\\.\n$");
}

// Differential test against std::map: random inserts, value replacements,
// removals and look-ups, with iterations that remove as they go.
TEST_F(HashMap2018Test, BehavesLikeAnOrderedMapUnderRandomOperations) {
  std::mt19937 random(7331u);
  HandleMap map(4);
  std::map<std::uint32_t, std::uint32_t> model;
  for (unsigned operation = 0; operation < 30000; ++operation) {
    const std::uint32_t key = random() % 1024;
    const std::uint32_t value = random();
    switch (random() % 5) {
      case 0:
      case 1:
        ASSERT_EQ(map.insert(key, value) != nullptr, model.emplace(key, value).second);
        break;
      case 2: {
        const auto known = model.find(key);
        const std::optional<std::uint32_t> removed = map.remove(key);
        ASSERT_EQ(removed.has_value(), known != model.end());
        if (known != model.end()) {
          ASSERT_EQ(*removed, known->second);
          model.erase(known);
        }
        break;
      }
      case 3:
        if (const auto slot = map.find(key)) {
          slot->valueIs(value);
          model[key] = value;
        }
        ASSERT_EQ(map.find(key) != nullptr, model.count(key) == 1);
        break;
      default:
        if (operation % 97 == 0) {
          std::set<std::uint32_t> visited;
          for (auto it = map.begin(); it; ++it) {
            ASSERT_TRUE(visited.insert(it.key()).second) << "visited twice: " << it.key();
            ASSERT_EQ(it.value(), model.at(it.key()));
            if (random() % 3 == 0) {
              map.remove(it.key());
              model.erase(it.key());
            }
          }
        }
    }
    ASSERT_EQ(map.size(), model.size());
  }
  EXPECT_EQ(contents(map), model);
}

}  // namespace
