// Spare nodes of node-based containers: a container changed through them holds
// exactly what plain inserts and erases would leave, nodes erased are used
// again, and only a few are kept.

#include "Vault/SpareNodes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <set>
#include <unordered_map>

namespace {

using Map = std::map<std::uint64_t, int>;
using Set = std::set<std::uint32_t>;
using UnorderedMap = std::unordered_map<std::uint32_t, std::uint64_t>;

TEST(SpareNodesTest, AMapHoldsWhatPlainInsertsAndErasesLeave) {
  Map map;
  Vault::SpareNodes<Map> spare;
  spare.assign(map, 1, 10);
  spare.assign(map, 2, 20);
  spare.assign(map, 1, 11);
  spare.erase(map, map.find(2));
  spare.assign(map, 3, 30);
  spare.assign(map, 4, 40);
  EXPECT_EQ(map, (Map{{1, 11}, {3, 30}, {4, 40}}));
}

TEST(SpareNodesTest, AnErasedNodeIsUsedForTheNextInsert) {
  UnorderedMap map;
  Vault::SpareNodes<UnorderedMap> spare;
  spare.assign(map, 7, 70);
  const auto* node = &*map.find(7);
  spare.erase(map, map.find(7));
  EXPECT_TRUE(map.empty());
  spare.assign(map, 8, 80);
  EXPECT_EQ(&*map.find(8), node);
  EXPECT_EQ(map.at(8), 80u);
}

TEST(SpareNodesTest, ASetTakesEachValueOnceAndKeepsItsOrder) {
  Set set;
  Vault::SpareNodes<Set> spare;
  for (std::uint32_t slot : {5u, 3u, 9u})
    spare.add(set, slot);
  spare.erase(set, set.begin());
  spare.add(set, 9);
  spare.add(set, 1);
  EXPECT_EQ(set, (Set{1, 5, 9}));
}

TEST(SpareNodesTest, OnlyAFewNodesAreKept) {
  Map map;
  Vault::SpareNodes<Map, 2> spare;
  for (int key = 0; key < 5; ++key)
    spare.assign(map, key, key);
  while (!map.empty())
    spare.erase(map, map.begin());
  for (int key = 0; key < 5; ++key)
    spare.assign(map, key, -key);
  EXPECT_EQ(map.size(), 5u);
  EXPECT_EQ(map.at(4), -4);
}

}  // namespace
