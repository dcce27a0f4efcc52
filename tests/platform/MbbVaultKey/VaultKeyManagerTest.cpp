#include "MbbVaultKey/VaultKeyManager.h"

#include <gtest/gtest.h>

#include "Vel/Allocate.h"

namespace MbbVaultKey {
namespace {

using Vault::MbbPostcodef::EntryKey;

class VaultKeyManagerTest : public testing::Test {
 protected:
  void TearDown() override {
    manager = nullptr;
    first = nullptr;
    second = nullptr;
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<VaultKeyManager>().liveObjects(), 0u);
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<BfnTable::MatchSpecBase>().liveObjects(), 0u);
  }

  Vel::Ptr<VaultKeyManager> manager = Vel::allocate<VaultKeyManager>();
  VaultKeyManager::MatchSpec first = Vel::allocate<BfnTable::MatchSpecBase>();
  VaultKeyManager::MatchSpec second = Vel::allocate<BfnTable::MatchSpecBase>();
};

TEST_F(VaultKeyManagerTest, KeysGrowFromOneForEachNewObject) {
  EXPECT_EQ(manager->alloc(first, false), EntryKey(0, 1));
  EXPECT_EQ(manager->alloc(second, false), EntryKey(0, 2));
  EXPECT_EQ(manager->keys(), 2u);
}

TEST_F(VaultKeyManagerTest, TheSameObjectKeepsItsKey) {
  const EntryKey key = manager->alloc(first, false);
  EXPECT_EQ(manager->alloc(first, true), key);
  EXPECT_EQ(manager->alloc(second, false), EntryKey(0, 2));
  EXPECT_EQ(manager->alloc(first, false), key);
  EXPECT_EQ(manager->keys(), 2u);
}

TEST_F(VaultKeyManagerTest, KeyOfAnObjectWithoutOneIsZero) {
  EXPECT_TRUE(manager->key(first).isZero());
  manager->alloc(first, false);
  EXPECT_EQ(manager->key(first), EntryKey(0, 1));
  EXPECT_TRUE(manager->key(second).isZero());
}

TEST_F(VaultKeyManagerTest, RecordsEveryAllocWithMatchFlagAndKey) {
  manager->alloc(first, false);
  manager->alloc(second, true);
  manager->alloc(first, false);
  const std::vector<VaultKeyAllocCall> expected = {
      {first, false, EntryKey(0, 1)}, {second, true, EntryKey(0, 2)}, {first, false, EntryKey(0, 1)}};
  EXPECT_EQ(manager->allocCalls(), expected);
}

TEST_F(VaultKeyManagerTest, ClearForgetsTheCallsButKeepsTheKeys) {
  manager->alloc(first, false);
  manager->clear();
  EXPECT_TRUE(manager->allocCalls().empty());
  EXPECT_EQ(manager->alloc(second, false), EntryKey(0, 2));
  EXPECT_EQ(manager->key(first), EntryKey(0, 1));
}

TEST_F(VaultKeyManagerTest, ManagerHoldsTheObjectsItKeys) {
  manager->alloc(first, false);
  EXPECT_EQ(first->references(), 3u);  // the test, the key and the recorded call
  manager->clear();
  EXPECT_EQ(first->references(), 2u);
  manager = nullptr;
  EXPECT_EQ(first->references(), 1u);
}

// A shadow-table back end takes over through the virtual operation.
class FixedKeyManager : public VaultKeyManager {
 public:
  EntryKey alloc(const MatchSpec&, bool) override { return EntryKey(7, 7); }
};

TEST_F(VaultKeyManagerTest, AllocIsVirtual) {
  Vel::Ptr<VaultKeyManager> manager = Vel::allocate<FixedKeyManager>();
  EXPECT_EQ(manager->alloc(first, false), EntryKey(7, 7));
}

TEST(VaultKeyManagerDeathTest, AllocOfNullMatchStops) {
  auto manager = Vel::allocate<VaultKeyManager>();
  EXPECT_DEATH(manager->alloc(nullptr, false),
               "^.*platform/MbbVaultKey/VaultKeyManager\\.cpp:[0-9]+: .*alloc.*: "
               "Assertion 'match != nullptr' failed\\.");
}

}  // namespace
}  // namespace MbbVaultKey
