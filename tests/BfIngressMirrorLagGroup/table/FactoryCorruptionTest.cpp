#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FactoryFixture.h"
#include "Pd/PipeStatus.h"
#include "Vault/SlotCopy.h"
#include "Vault/TableLayout.h"
#include "Vel/Format.h"
#include "platform/Vault/RawSegment.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// A first table records the entries of sessions 1 to 4 (keys 1 to 4, slots 0
// to 3 of the match-entry shadow table) and goes; the shadow table is then
// damaged, after a restarted host re-attached it, and a second table adopts
// from it.
class FactoryCorruptionTest : public FactoryFixture {
 protected:
  void SetUp() override {
    FactoryFixture::SetUp();
    {
      auto keys = shadowKeys();
      makeTable(keys, nullptr);
      memberIs(11, 500);
      for (std::uint16_t session = 1; session <= 4; ++session) {
        table->entryIs(memberEntry(matchOf(session), 11));
        handles.push_back(registry().entry(sessionMatch(session)));
      }
      table = nullptr;
      helper = nullptr;
    }
    keys = shadowKeys();
  }
  void TearDown() override {
    keys = nullptr;
    FactoryFixture::TearDown();
  }

  // The registry's match spec of `session`, or null.
  IngressMirrorLagGroupTable::MatchSpec sessionMatch(std::uint16_t session) const {
    for (auto slot = registry().entries().begin(); slot; ++slot) {
      if (slot.key()->ingMirrorMdMirrorSession() == session)
        return slot.key();
    }
    return nullptr;
  }

  std::string tableName() const { return MbbVaultKey::VaultKeyManager::mbbTableName(base.str()); }
  RawSegment raw() const { return RawSegment(tableName()); }
  Vault::TableLayout layout() const {
    return *Vault::TableLayout::of(sizeof(EntryConfig), capacity.entries);
  }
  // Flips a bit of the record bytes of `slot`, in both of its copies.
  void flipRecordBit(std::uint32_t slot, std::uint32_t byte) const {
    for (unsigned copy = 0; copy < 2; ++copy) {
      raw().flipBit(
          layout().slotOffset(slot) + layout().copyOffset(copy) + sizeof(Vault::SlotCopy) + byte,
          2);
    }
  }
  std::string message(const std::string& what) const {
    return "Vault table " + tableName() + ": " + what;
  }

  // Makes the second table; the first `count` entries must be adopted and
  // `corruption` reported.
  void expectAdoptedBeforeDamage(std::size_t count, const std::string& corruption) {
    makeTable(keys, status);
    ASSERT_NE(table, nullptr);
    EXPECT_NE(table->defaultMatchSpec(), nullptr);
    EXPECT_EQ(registry().entries().size(), count);
    std::vector<std::string> expectedCalls;
    for (std::size_t i = 0; i < count; ++i) {
      EXPECT_EQ(sessionOfHandle(handles[i]), static_cast<int>(i + 1));
      expectedCalls.push_back("populate " + std::to_string(i + 1) +
                              " session=" + std::to_string(i + 1));
    }
    if (count != 0)
      expectedCalls.push_back("latestKeyIs " + std::to_string(count));
    EXPECT_EQ(keys->calls, expectedCalls);
    const Vault::CorruptionLog& log = keys->mbbVaultTableConfig()->corruption();
    EXPECT_EQ(log.count(), 1u);
    EXPECT_EQ(log.last(), corruption);
    EXPECT_THAT(statusCalls(), ElementsAre("resyncStatus"));
  }

  std::vector<std::uint32_t> handles;
  Vel::Ptr<RecordingKeyManager> keys;
};

TEST_F(FactoryCorruptionTest, AnIntactTableIsAdoptedWhole) {
  makeTable(keys, status);
  EXPECT_EQ(registry().entries().size(), 4u);
  EXPECT_EQ(keys->calls.back(), "latestKeyIs 4");
  EXPECT_EQ(keys->mbbVaultTableConfig()->corruption().count(), 0u);
}

TEST_F(FactoryCorruptionTest, ATruncatedSegmentKeepsTheSlotsBeforeTheCut) {
  const std::uint64_t cut = layout().slotOffset(2) + 10;
  raw().truncate(cut);
  expectAdoptedBeforeDamage(
      2, message(Vel::format("slot 2: lies past the end of the segment (truncated to %llu of %llu "
                             "bytes)",
                             static_cast<unsigned long long>(cut),
                             static_cast<unsigned long long>(layout().segmentSize))));
}

TEST_F(FactoryCorruptionTest, AFlippedBitInARecordStopsTheReplayThere) {
  flipRecordBit(2, 9);
  expectAdoptedBeforeDamage(2, message("slot 2: checksum mismatch (torn or damaged record)"));
}

TEST_F(FactoryCorruptionTest, AFlippedBitInTheFirstRecordAdoptsNothing) {
  flipRecordBit(0, 0);
  expectAdoptedBeforeDamage(0, message("slot 0: checksum mismatch (torn or damaged record)"));
}

TEST_F(FactoryCorruptionTest, ABadHeaderAdoptsNothing) {
  raw().flipBit(20, 2);
  expectAdoptedBeforeDamage(0, message("header checksum mismatch"));
}

TEST_F(FactoryCorruptionTest, ARecordCountPastTheCapacityAdoptsNothing) {
  Vault::TableHeader header = raw().header();
  header.recordCount = capacity.entries + 1;
  raw().headerIs(header, false);
  expectAdoptedBeforeDamage(0, message(Vel::format("record count %u past the capacity %u",
                                                   capacity.entries + 1, capacity.entries)));
}

// The table made from a damaged shadow table works: the adopted entries are
// modified, entries not adopted can be deleted from the chip and added anew.
TEST_F(FactoryCorruptionTest, TheTableWorksAfterTheDamage) {
  flipRecordBit(1, 3);
  makeTable(keys, status);
  ASSERT_EQ(registry().entries().size(), 1u);
  memberIs(11, 600);
  startLog();
  table->entryIs(memberEntry(sessionMatch(1), 11));
  EXPECT_THAT(logLines(), ElementsAre(testing::StartsWith(chipsim_test::kModifyEntry + "(")));
  ASSERT_EQ(chip.tableDelete(kSession, kDevice, handles[2]), PIPE_STATUS_SUCCESS);
  table->entryIs(memberEntry(matchOf(3), 11));
  EXPECT_EQ(chip.entries(), 4u);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
