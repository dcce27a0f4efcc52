// Look-up, insertion and removal in the framework's hash maps against
// std::unordered_map, at 1, 4096 and 65536 elements.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "Vel/Allocate.h"
#include "Vel/HashMap.h"
#include "Vel/HashMap2018.h"
#include "Vel/HashMapLink.h"
#include "Vel/Ptr.h"

namespace {

class Item : public Vel::PtrInterface, public Vel::HashMapLink<Item> {
 public:
  explicit Item(std::uint32_t key) : key_(key) {}
  std::uint32_t fwkKey() const { return key_; }

 private:
  std::uint32_t key_;
};

using ItemMap = Vel::HashMap<Item, std::uint32_t>;
using HandleMap = Vel::HashMap2018<std::uint32_t, std::uint32_t>;
using StdMap = std::unordered_map<std::uint32_t, std::uint32_t>;

// Spread-out keys, as configuration ids and handles are not always dense.
std::uint32_t keyOf(std::int64_t index) {
  return static_cast<std::uint32_t>(index) * 2654435761u;
}

void fill(ItemMap& map, std::int64_t count) {
  for (std::int64_t i = 0; i < count; ++i)
    map.insert(Vel::allocate<Item>(keyOf(i)));
}
void fill(HandleMap& map, std::int64_t count) {
  for (std::int64_t i = 0; i < count; ++i)
    map.insert(keyOf(i), static_cast<std::uint32_t>(i));
}
void fill(StdMap& map, std::int64_t count) {
  for (std::int64_t i = 0; i < count; ++i)
    map.emplace(keyOf(i), static_cast<std::uint32_t>(i));
}

bool found(const ItemMap& map, std::uint32_t key) {
  return map.find(key) != nullptr;
}
bool found(const HandleMap& map, std::uint32_t key) {
  return map.find(key) != nullptr;
}
bool found(const StdMap& map, std::uint32_t key) {
  return map.find(key) != map.end();
}

// Removes a present key and puts it back, so the size stays the same.
void removeAndInsert(ItemMap& map, std::uint32_t key) {
  map.insert(map.remove(key));
}
void removeAndInsert(HandleMap& map, std::uint32_t key) {
  map.insert(key, *map.remove(key));
}
void removeAndInsert(StdMap& map, std::uint32_t key) {
  auto node = map.extract(key);
  map.insert(std::move(node));
}

template <class Map>
void findPresent(benchmark::State& state) {
  Map map;
  fill(map, state.range(0));
  std::int64_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(found(map, keyOf(i)));
    if (++i == state.range(0))
      i = 0;
  }
}

template <class Map>
void findAbsent(benchmark::State& state) {
  Map map;
  fill(map, state.range(0));
  std::int64_t i = state.range(0);
  for (auto _ : state)
    benchmark::DoNotOptimize(found(map, keyOf(i++)));
}

// Fills an empty map to the given size: growth included, one element per item.
template <class Map>
void insertFromEmpty(benchmark::State& state) {
  for (auto _ : state) {
    Map map;
    fill(map, state.range(0));
    benchmark::DoNotOptimize(&map);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <class Map>
void removeThenInsert(benchmark::State& state) {
  Map map;
  fill(map, state.range(0));
  std::int64_t i = 0;
  for (auto _ : state) {
    removeAndInsert(map, keyOf(i));
    if (++i == state.range(0))
      i = 0;
  }
}

#define MIRRORLAG_HASHMAP_BENCH(function)                                 \
  BENCHMARK_TEMPLATE(function, ItemMap)->Arg(1)->Arg(4096)->Arg(65536);   \
  BENCHMARK_TEMPLATE(function, HandleMap)->Arg(1)->Arg(4096)->Arg(65536); \
  BENCHMARK_TEMPLATE(function, StdMap)->Arg(1)->Arg(4096)->Arg(65536)

MIRRORLAG_HASHMAP_BENCH(findPresent);
MIRRORLAG_HASHMAP_BENCH(findAbsent);
MIRRORLAG_HASHMAP_BENCH(insertFromEmpty);
MIRRORLAG_HASHMAP_BENCH(removeThenInsert);

}  // namespace

BENCHMARK_MAIN();
