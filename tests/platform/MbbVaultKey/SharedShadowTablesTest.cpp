#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "MbbVaultKey/VaultKeyManager.h"
#include "Quill/CorruptionDetectedException.h"
#include "Vault/MbbPostcodef/ShadowOp.h"
#include "Vault/ReadOnlyVaultTable.h"
#include "Vault/SlotCopy.h"
#include "Vault/TableInUseException.h"
#include "Vault/TableLayout.h"
#include "Vel/Allocate.h"
#include "Vel/OperationNotSupportedException.h"
#include "Vel/RangeException.h"
#include "platform/Vault/RawSegment.h"
#include "support/ScratchShadowBase.h"
#include "support/ShadowWalk.h"

namespace MbbVaultKey {
namespace {

using BfnMbbShared::AdtEntryConfig;
using BfnMbbShared::SelGrpEntryConfig;
using Vault::MbbPostcodef::EntryConfig;
using Vault::MbbPostcodef::EntryKey;
using Vault::MbbPostcodef::opIdOf;
using Vault::MbbPostcodef::ShadowOp;

EntryConfig entryRecord(std::uint32_t key, std::uint32_t handle) {
  return EntryConfig(EntryKey(0, key), opIdOf(ShadowOp::entryAdd), handle,
                     static_cast<std::uint16_t>(key), 0xffff);
}

AdtEntryConfig memberRecord(std::uint32_t id, std::uint32_t handle) {
  return AdtEntryConfig(EntryKey(VaultKeyManager::kAnonHigh, id), opIdOf(ShadowOp::memberAdd),
                        handle);
}

SelGrpEntryConfig groupRecord(std::uint32_t id, std::uint32_t handle) {
  return SelGrpEntryConfig(EntryKey(VaultKeyManager::kAnonHigh, id), opIdOf(ShadowOp::groupCreate),
                           handle, 4, 0xffff, 0);
}

class SharedShadowTablesTest : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<VaultKeyManager>().liveObjects(), 0u);
  }

  Vel::Ptr<VaultKeyManager> attach() {
    return Vel::allocate<VaultKeyManager>(base.str(), capacity);
  }

  // Runs `body` in a child process, which exits with what it returns.
  template <class Body>
  int inChild(Body body) {
    pid_t child = fork();
    if (child == 0) {
      _exit(body());
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  static mode_t modeOf(const std::string& name) {
    int fd = shm_open(name.c_str(), O_RDONLY, 0);
    if (fd < 0) {
      return 0;
    }
    struct stat status;
    fstat(fd, &status);
    close(fd);
    return status.st_mode & 0777;
  }

  shadow_test::ScratchShadowBase base{"shared"};
  ShadowCapacity capacity{8, 6, 4};
};

TEST_F(SharedShadowTablesTest, MakesThreeTablesOfMode0600UnderTheBaseName) {
  auto manager = attach();
  EXPECT_TRUE(manager->hasShadowTables());
  EXPECT_EQ(manager->baseName(), base.str());
  EXPECT_EQ(manager->entryShadow()->name(), base.str() + "-mbb");
  EXPECT_EQ(manager->memberShadow()->name(), base.str() + "-adt");
  EXPECT_EQ(manager->groupShadow()->name(), base.str() + "-selgrp");
  EXPECT_EQ(modeOf(base.str() + "-mbb"), 0600u);
  EXPECT_EQ(modeOf(base.str() + "-adt"), 0600u);
  EXPECT_EQ(modeOf(base.str() + "-selgrp"), 0600u);
  EXPECT_EQ(manager->entryShadow()->table().capacity(), 8u);
  EXPECT_EQ(manager->memberShadow()->table().capacity(), 6u);
  EXPECT_EQ(manager->groupShadow()->table().capacity(), 4u);
}

TEST_F(SharedShadowTablesTest, ConfigsAreReadOnlyAdaptersOfTheTables) {
  auto manager = attach();
  ASSERT_NE(manager->mbbVaultTableConfig(), nullptr);
  EXPECT_EQ(manager->mbbVaultTableConfig(), manager->mbbVaultTableConfig());
  try {
    manager->mbbVaultTableConfig()->write(entryRecord(1, 1));
    FAIL() << "a reader wrote a record";
  } catch (const Vel::OperationNotSupportedException& e) {
    EXPECT_EQ(e.message(), "write to read-only Vault table");
  }
  EXPECT_THROW(manager->adtVaultTableConfig()->remove(memberRecord(1, 1)),
               Vel::OperationNotSupportedException);
  EXPECT_THROW(manager->selGrpVaultTableConfig()->cleanup(), Vel::OperationNotSupportedException);
}

TEST_F(SharedShadowTablesTest, ASecondProcessSeesTheRecordsOfTheFirst) {
  ASSERT_EQ(inChild([&] {
              auto manager = attach();
              manager->entryShadow()->recordIs(entryRecord(5, 50));
              manager->entryShadow()->recordIs(entryRecord(9, 90));
              manager->memberShadow()->recordIs(memberRecord(7, 70));
              manager->groupShadow()->recordIs(groupRecord(3, 30));
              manager->groupShadow()->intentIs(groupRecord(4, 0));
              return 0;
            }),
            0);
  auto manager = attach();
  EXPECT_EQ(shadow_test::walkShadow(manager->mbbVaultTableConfig()).records,
            (std::vector<EntryConfig>{entryRecord(5, 50), entryRecord(9, 90)}));
  EXPECT_EQ(shadow_test::walkShadow(manager->adtVaultTableConfig()).records,
            std::vector<AdtEntryConfig>{memberRecord(7, 70)});
  EXPECT_EQ(shadow_test::walkShadow(manager->selGrpVaultTableConfig()).records,
            std::vector<SelGrpEntryConfig>{groupRecord(3, 30)});
  EXPECT_EQ(manager->groupShadow()->intents(), std::vector<SelGrpEntryConfig>{groupRecord(4, 0)});
  EXPECT_EQ(manager->anonId(manager->memberShadow()->records().front().key()), 7u);
}

TEST_F(SharedShadowTablesTest, AReaderSeesWhatAWriterInAnotherProcessWrote) {
  const auto reader = Vel::allocate<Vault::ReadOnlyVaultTable<AdtEntryConfig>>(
      VaultKeyManager::adtTableName(base.str()));
  ASSERT_EQ(inChild([&] {
              auto manager = attach();
              manager->memberShadow()->recordIs(memberRecord(2, 20));
              return 0;
            }),
            0);
  EXPECT_EQ(shadow_test::walkShadow(Vel::Ptr<Vault::VaultBase<AdtEntryConfig>>(reader)).records,
            std::vector<AdtEntryConfig>{memberRecord(2, 20)});
}

TEST_F(SharedShadowTablesTest, ASecondManagerIsRefusedAtOnceWhileTheFirstLives) {
  auto manager = attach();
  manager->memberShadow()->recordIs(memberRecord(2, 20));
  const std::string expected =
      "shadow tables '" + base.str() + "' are in use by process " + std::to_string(getpid());
  EXPECT_EQ(inChild([&] {
              try {
                attach();
              } catch (const Vault::TableInUseException& e) {
                return e.message() == expected && e.holder() == getppid() ? 0 : 2;
              }
              return 1;
            }),
            0);
  try {
    attach();
    ADD_FAILURE() << "a second manager in the same process was let in";
  } catch (const Vault::TableInUseException& e) {
    EXPECT_EQ(e.message(), expected);
  }
  EXPECT_EQ(manager->memberShadow()->records(), std::vector<AdtEntryConfig>{memberRecord(2, 20)});
  manager = nullptr;
  EXPECT_EQ(attach()->memberShadow()->records(), std::vector<AdtEntryConfig>{memberRecord(2, 20)});
}

TEST_F(SharedShadowTablesTest, AttachingCountsKeysAboveTheLargestEntryRecord) {
  {
    auto manager = attach();
    manager->entryShadow()->recordIs(entryRecord(9, 90));
    manager->entryShadow()->intentIs(entryRecord(12, 0));
    manager->entryShadow()->recordIs(entryRecord(5, 50));
  }
  auto manager = attach();
  EXPECT_EQ(manager->latestKey(), EntryKey(0, 12));
  EXPECT_EQ(manager->alloc(Vel::allocate<BfnTable::MatchSpecBase>(), false), EntryKey(0, 13));
}

TEST_F(SharedShadowTablesTest, TablesOutliveTheManagerUntilUnlinked) {
  attach()->entryShadow()->recordIs(entryRecord(1, 10));
  EXPECT_EQ(attach()->entryShadow()->records(), std::vector<EntryConfig>{entryRecord(1, 10)});
  EXPECT_TRUE(VaultKeyManager::unlink(base.str()));
  EXPECT_FALSE(VaultKeyManager::unlink(base.str()));
  EXPECT_TRUE(attach()->entryShadow()->records().empty());
}

TEST_F(SharedShadowTablesTest, AnotherCapacityIsRefusedAndChangesNothing) {
  attach()->entryShadow()->recordIs(entryRecord(1, 10));
  ShadowCapacity other = capacity;
  other.entries = 16;
  try {
    Vel::allocate<VaultKeyManager>(base.str(), other);
    FAIL() << "a table of another capacity was taken";
  } catch (const Vel::RangeException& e) {
    EXPECT_EQ(e.message(), "Vault table " + base.str() +
                               "-mbb holds 8 records of type 1 and 24 bytes, not 16 of type 1 "
                               "and 24 bytes");
  }
  EXPECT_EQ(attach()->entryShadow()->records(), std::vector<EntryConfig>{entryRecord(1, 10)});
}

TEST_F(SharedShadowTablesTest, ABadBaseNameIsRefused) {
  EXPECT_THROW(Vel::allocate<VaultKeyManager>("/two/parts", capacity), Vel::RangeException);
}

TEST_F(SharedShadowTablesTest, AFullTableRefusesANewRecordAndKeepsTheOthers) {
  auto manager = attach();
  for (std::uint32_t id = 0; id < 4; ++id) {
    manager->groupShadow()->recordIs(groupRecord(id, id + 1));
  }
  EXPECT_THROW(manager->groupShadow()->intentIs(groupRecord(9, 0)), Vel::RangeException);
  EXPECT_EQ(manager->groupShadow()->records().size(), 4u);
  EXPECT_EQ(manager->groupShadow()->intent(EntryKey(VaultKeyManager::kAnonHigh, 9)), std::nullopt);
}

TEST_F(SharedShadowTablesTest, ARecordOfAHandleReplacesTheOtherRecordOfThatHandle) {
  auto manager = attach();
  manager->entryShadow()->recordIs(entryRecord(1, 10));
  manager->entryShadow()->recordIs(entryRecord(2, 10));
  EXPECT_EQ(manager->entryShadow()->records(), std::vector<EntryConfig>{entryRecord(2, 10)});
  EXPECT_EQ(manager->entryShadow()->keyOfHandle(10), EntryKey(0, 2));
}

TEST_F(SharedShadowTablesTest, ARecordWrittenAgainUnderItsKeyTakesItsNewHandle) {
  auto manager = attach();
  manager->entryShadow()->recordIs(entryRecord(1, 10));
  manager->entryShadow()->recordIs(entryRecord(1, 11));
  EXPECT_EQ(manager->entryShadow()->keyOfHandle(10), std::nullopt);
  EXPECT_EQ(manager->entryShadow()->keyOfHandle(11), EntryKey(0, 1));
  EXPECT_EQ(shadow_test::walkShadow(manager->mbbVaultTableConfig()).records,
            std::vector<EntryConfig>{entryRecord(1, 11)});
}

// Slots are taken lowest first whatever the key, so that the table's slots
// hold keys in any order; the walks that promise key order keep it, before
// and after an attach.
TEST_F(SharedShadowTablesTest, WalksGoInKeyOrderWhateverSlotsTheRecordsTook) {
  auto handleOfTwenties = [](const EntryConfig& record) { return record.handle() % 20 == 0; };
  auto anyKey = [](const EntryKey&) { return true; };
  {
    auto manager = attach();
    MbbVaultKey::ShadowTable<EntryConfig>& table = *manager->entryShadow();
    table.recordIs(entryRecord(7, 70));
    table.recordIs(entryRecord(5, 50));
    table.intentIs(entryRecord(6, 0));
    table.recordIs(entryRecord(3, 30));
    ASSERT_TRUE(table.recordDel(EntryKey(0, 5)));
    table.recordIs(entryRecord(8, 80));  // in the slot that key 5 left
    table.recordIs(entryRecord(2, 20));
    EXPECT_EQ(table.size(), 5u);
    EXPECT_EQ(table.records(), (std::vector<EntryConfig>{entryRecord(2, 20), entryRecord(3, 30),
                                                         entryRecord(7, 70), entryRecord(8, 80)}));
    EXPECT_EQ(table.intents(), std::vector<EntryConfig>{entryRecord(6, 0)});
    EXPECT_EQ(table.recordWhere(handleOfTwenties), entryRecord(2, 20));
    EXPECT_EQ(table.largestKey(anyKey), EntryKey(0, 8));
    EXPECT_EQ(table.record(EntryKey(0, 5)), std::nullopt);
    EXPECT_FALSE(table.recordDel(EntryKey(0, 5)));
  }
  auto manager = attach();
  MbbVaultKey::ShadowTable<EntryConfig>& table = *manager->entryShadow();
  EXPECT_EQ(table.size(), 5u);
  EXPECT_EQ(table.records(), (std::vector<EntryConfig>{entryRecord(2, 20), entryRecord(3, 30),
                                                       entryRecord(7, 70), entryRecord(8, 80)}));
  EXPECT_EQ(table.intent(EntryKey(0, 6)), entryRecord(6, 0));
  EXPECT_EQ(table.keyOfHandle(80), EntryKey(0, 8));
  EXPECT_EQ(table.largestKey([](const EntryKey& key) { return key.value() < 8; }), EntryKey(0, 7));
}

TEST_F(SharedShadowTablesTest, RecordWhereFindsAFinishedRecord) {
  auto manager = attach();
  manager->entryShadow()->recordIs(entryRecord(1, 10));
  manager->entryShadow()->recordIs(entryRecord(2, 20));
  manager->entryShadow()->intentIs(entryRecord(3, 30));
  auto handleAbove = [](std::uint32_t floor) {
    return [floor](const EntryConfig& record) { return record.handle() > floor; };
  };
  EXPECT_EQ(manager->entryShadow()->recordWhere(handleAbove(15)), entryRecord(2, 20));
  EXPECT_EQ(manager->entryShadow()->recordWhere(handleAbove(25)), std::nullopt);
}

// The entry table indexes the default entry's records, so that the first
// finished one is found without a walk, whatever was written over, removed,
// or found again by a later attach: what recordWhere() finds for it.
TEST_F(SharedShadowTablesTest, TheDefaultEntrysRecordIsFoundThroughTheIndex) {
  auto defaultRecord = [](std::uint32_t key, std::uint32_t handle) {
    return EntryConfig(EntryKey(0, key), opIdOf(ShadowOp::defaultEntrySet), handle, 0, 0xffff);
  };
  auto isDefault = [](const EntryConfig& record) {
    return Vault::MbbPostcodef::shadowOpOf(record.opId()) == ShadowOp::defaultEntrySet;
  };
  {
    auto manager = attach();
    MbbVaultKey::ShadowTable<EntryConfig>& table = *manager->entryShadow();
    table.recordIs(entryRecord(1, 10));
    EXPECT_EQ(table.firstIndexed(), std::nullopt);
    table.intentIs(defaultRecord(4, 40));
    EXPECT_EQ(table.firstIndexed(), std::nullopt);  // an intent is not a record
    table.recordIs(defaultRecord(4, 40));
    table.recordIs(defaultRecord(3, 30));
    EXPECT_EQ(table.firstIndexed(), defaultRecord(3, 30));
    table.recordIs(entryRecord(3, 31));  // key 3 holds an entry now
    EXPECT_EQ(table.firstIndexed(), defaultRecord(4, 40));
    EXPECT_EQ(table.firstIndexed(), table.recordWhere(isDefault));
    table.recordIs(defaultRecord(2, 20));
    table.recordDel(EntryKey(0, 2));
    EXPECT_EQ(table.firstIndexed(), defaultRecord(4, 40));
  }
  auto manager = attach();
  EXPECT_EQ(manager->entryShadow()->firstIndexed(), defaultRecord(4, 40));
  manager->entryShadow()->recordDel(EntryKey(0, 4));
  EXPECT_EQ(manager->entryShadow()->firstIndexed(), std::nullopt);
  EXPECT_EQ(manager->memberShadow()->firstIndexed(), std::nullopt);
}

// Damage found by a reader is reported to the table it read; attaching anew
// frees the damaged slot, so that the table can be read again.
TEST_F(SharedShadowTablesTest, DamageIsReportedToReadersAndFreedOnAttach) {
  {
    auto manager = attach();
    manager->entryShadow()->recordIs(entryRecord(1, 10));
    manager->entryShadow()->recordIs(entryRecord(2, 20));
  }
  const Vault::TableLayout layout = *Vault::TableLayout::of(sizeof(EntryConfig), 8);
  RawSegment(base.str() + "-mbb")
      .flipBit(layout.slotOffset(1) + layout.copyOffset(0) + sizeof(Vault::SlotCopy) + 8, 0);

  auto reader = Vel::allocate<Vault::ReadOnlyVaultTable<EntryConfig>>(base.str() + "-mbb");
  Vel::Ptr<Vault::VaultBase<EntryConfig>> table = reader;
  shadow_test::ShadowWalk<EntryConfig> read = shadow_test::walkShadow(table);
  EXPECT_EQ(read.records, std::vector<EntryConfig>{entryRecord(1, 10)});
  EXPECT_NE(read.corruption.find("Vault table " + base.str() + "-mbb: slot 1: "), std::string::npos)
      << read.corruption;
  EXPECT_EQ(table->corruption().count(), 1u);
  EXPECT_EQ(table->corruption().last(), read.corruption);

  auto manager = attach();
  EXPECT_EQ(manager->entryShadow()->damagedFreed(), 1u);
  shadow_test::ShadowWalk<EntryConfig> again =
      shadow_test::walkShadow(manager->mbbVaultTableConfig());
  EXPECT_EQ(again.records, std::vector<EntryConfig>{entryRecord(1, 10)});
  EXPECT_EQ(again.corruption, "");
}

}  // namespace
}  // namespace MbbVaultKey
