#include "MbbVaultKey/VaultKeyManager.h"

#include <gtest/gtest.h>

#include "Vel/Allocate.h"
#include "Vel/RangeException.h"

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
  const std::vector<VaultKeyAllocCall> expected = {{first, false, EntryKey(0, 1)},
                                                   {second, true, EntryKey(0, 2)},
                                                   {first, false, EntryKey(0, 1)}};
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

TEST_F(VaultKeyManagerTest, InProcessManagerHasNoShadowTables) {
  EXPECT_FALSE(manager->hasShadowTables());
  EXPECT_EQ(manager->mbbVaultTableConfig(), nullptr);
  EXPECT_EQ(manager->adtVaultTableConfig(), nullptr);
  EXPECT_EQ(manager->selGrpVaultTableConfig(), nullptr);
  EXPECT_EQ(manager->entryShadow(), nullptr);
  EXPECT_EQ(manager->memberShadow(), nullptr);
  EXPECT_EQ(manager->groupShadow(), nullptr);
  EXPECT_EQ(manager->baseName(), "");
}

TEST_F(VaultKeyManagerTest, AnonymousKeyOfANumberCarriesTheNumber) {
  EXPECT_EQ(manager->allocAnon(7), EntryKey(VaultKeyManager::kAnonHigh, 7));
  EXPECT_EQ(manager->allocAnon(0), EntryKey(VaultKeyManager::kAnonHigh, 0));
  EXPECT_FALSE(manager->allocAnon(0).isZero());
  EXPECT_TRUE(VaultKeyManager::isAnon(manager->allocAnon(9)));
  EXPECT_FALSE(VaultKeyManager::isAnon(manager->alloc(first, false)));
}

TEST_F(VaultKeyManagerTest, AnonIdIsTheInverseOfAllocAnon) {
  for (std::uint32_t n : {0u, 1u, 7u, 120u, 0x7fffffffu, 0x80000000u, 0xffffffffu}) {
    EXPECT_EQ(manager->anonId(manager->allocAnon(n)), n) << n;
  }
}

TEST_F(VaultKeyManagerTest, AnonymousKeysDoNotMoveTheEntryKeys) {
  manager->allocAnon(5);
  manager->allocAnon(0xffffffffu);
  EXPECT_EQ(manager->alloc(first, false), EntryKey(0, 1));
  EXPECT_EQ(manager->keys(), 1u);
  EXPECT_EQ(manager->allocCalls().size(), 1u);
}

TEST_F(VaultKeyManagerTest, AnonIdOfAKeyThatIsNotAnonymousIsRefused) {
  try {
    manager->anonId(EntryKey(0, 5));
    FAIL() << "an entry key was taken for an anonymous one";
  } catch (const Vel::RangeException& e) {
    EXPECT_EQ(e.message(), "shadow key 0x0000000000000005 is not an anonymous key");
  }
  EXPECT_THROW(manager->anonId(EntryKey()), Vel::RangeException);
  EXPECT_THROW(manager->anonId(EntryKey(0x80000001u, 5)), Vel::RangeException);
}

TEST_F(VaultKeyManagerTest, PopulateBindsTheKeyToTheObject) {
  manager->populate(EntryKey(0, 9), first);
  EXPECT_EQ(manager->key(first), EntryKey(0, 9));
  EXPECT_EQ(manager->alloc(first, false), EntryKey(0, 9));
  EXPECT_EQ(manager->keys(), 1u);
}

TEST_F(VaultKeyManagerTest, NewKeysComeAboveAPopulatedKey) {
  manager->populate(EntryKey(0, 9), first);
  EXPECT_EQ(manager->latestKey(), EntryKey(0, 9));
  EXPECT_EQ(manager->alloc(second, false), EntryKey(0, 10));
}

TEST_F(VaultKeyManagerTest, AnotherObjectOfAPopulatedKeyGetsANewKey) {
  manager->populate(EntryKey(0, 3), first);
  EXPECT_EQ(manager->alloc(second, false), EntryKey(0, 4));
}

TEST_F(VaultKeyManagerTest, NewKeysComeAboveTheLatestKey) {
  manager->latestKeyIs(EntryKey(2, 5));
  EXPECT_EQ(manager->latestKey(), EntryKey(2, 5));
  EXPECT_EQ(manager->alloc(first, false), EntryKey(2, 6));
}

TEST_F(VaultKeyManagerTest, ALowerLatestKeyDoesNotTakeKeysBack) {
  manager->alloc(first, false);
  manager->alloc(second, false);
  manager->latestKeyIs(EntryKey(0, 1));
  EXPECT_EQ(manager->latestKey(), EntryKey(0, 2));
  EXPECT_EQ(manager->alloc(Vel::allocate<BfnTable::MatchSpecBase>(), false), EntryKey(0, 3));
}

TEST_F(VaultKeyManagerTest, AnonymousAndZeroKeysDoNotCountAsLatest) {
  manager->latestKeyIs(EntryKey(VaultKeyManager::kAnonHigh, 50));
  manager->latestKeyIs(EntryKey());
  manager->populate(EntryKey(0xffffffffu, 1), first);
  EXPECT_EQ(manager->latestKey(), EntryKey());
  EXPECT_EQ(manager->alloc(second, false), EntryKey(0, 1));
}

TEST_F(VaultKeyManagerTest, TheRecorderTakesTheKeyOfTheLastAlloc) {
  manager->alloc(first, false);
  manager->alloc(second, false);
  EXPECT_EQ(manager->entryKeyTake(), EntryKey(0, 2));
  // Taken: an entry made without alloc() gets a key of its own.
  EXPECT_EQ(manager->entryKeyTake(), EntryKey(0, 3));
  EXPECT_EQ(manager->alloc(Vel::allocate<BfnTable::MatchSpecBase>(), false), EntryKey(0, 4));
}

TEST_F(VaultKeyManagerTest, TheRecorderTakesTheKeyOfTheLastAllocAnonOnce) {
  EXPECT_EQ(manager->anonKeyTake(), std::nullopt);
  manager->allocAnon(4);
  manager->allocAnon(6);
  EXPECT_EQ(manager->anonKeyTake(), EntryKey(VaultKeyManager::kAnonHigh, 6));
  EXPECT_EQ(manager->anonKeyTake(), std::nullopt);
}

TEST(VaultKeyManagerDeathTest, PopulateWithNullMatchStops) {
  auto manager = Vel::allocate<VaultKeyManager>();
  EXPECT_DEATH(manager->populate(EntryKey(0, 1), nullptr),
               "^.*platform/MbbVaultKey/VaultKeyManager\\.cpp:[0-9]+: .*populate.*: "
               "Assertion 'match != nullptr' failed\\.");
}

}  // namespace
}  // namespace MbbVaultKey
