#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <random>
#include <string>

#include "RawSegment.h"
#include "ScratchName.h"
#include "TestRecord.h"
#include "Vault/ReadOnlyVaultTable.h"
#include "Vault/SlotCopy.h"
#include "Vault/VaultTable.h"
#include "Vel/Format.h"
#include "WalkResult.h"

namespace {

using Table = Vault::VaultTable<TestRecord>;
using Reader = Vault::ReadOnlyVaultTable<TestRecord>;

// TestRecord tables: a 64-byte header, then slots of an 8-byte control word
// and two copies of a 32-byte copy header and 16 record bytes.
constexpr std::uint64_t kSlotSize = 104;
constexpr std::uint64_t slotOffset(std::uint32_t slot) {
  return 64 + kSlotSize * slot;
}
constexpr std::uint64_t recordOffset(std::uint32_t slot) {
  return slotOffset(slot) + 8 + sizeof(Vault::SlotCopy);
}

const std::vector<TestRecord> kFour = {{10, 1, 1}, {20, 2, 2}, {30, 3, 3}, {40, 4, 4}};

class CorruptionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Table table(name_.str(), 4);
    for (const TestRecord& record : kFour) {
      table.write(record);
    }
  }

  // Reads the table through the read-only adapter, as the plug-in does.
  WalkResult<TestRecord> read() {
    Reader reader(name_.str());
    return walk<TestRecord>(reader);
  }
  std::string message(const std::string& what) const {
    return "Vault table " + name_.str() + ": " + what;
  }
  std::vector<TestRecord> firstOf(std::size_t count) const {
    return std::vector<TestRecord>(kFour.begin(), kFour.begin() + count);
  }
  // Rewrites the header with one field changed and its checksum made to match.
  template <class Change>
  void forgeHeader(Change change) {
    Vault::TableHeader header = raw().header();
    change(header);
    raw().headerIs(header, true);
  }
  RawSegment raw() const { return RawSegment(name_.str()); }

  ScratchName name_;
};

TEST_F(CorruptionTest, IntactTableReadsWhole) {
  WalkResult<TestRecord> result = read();
  EXPECT_EQ(result.records, kFour);
  EXPECT_EQ(result.corruption, "");
}

TEST_F(CorruptionTest, TruncatedSegmentStopsAtTheFirstSlotCut) {
  raw().truncate(slotOffset(2) + 10);
  WalkResult<TestRecord> result = read();
  EXPECT_EQ(result.records, firstOf(2));
  EXPECT_EQ(result.corruption,
            message("slot 2: lies past the end of the segment (truncated to 282 of 480 bytes)"));
}

// A writer whose segment another process cut short after it was mapped is told
// so at the start of each of its walks, instead of dying of SIGBUS in it.
TEST_F(CorruptionTest, AWriterFindsItsSegmentCutShortBeforeEveryWalk) {
  Table table(name_.str(), 4);
  raw().truncate(slotOffset(2) + 10);
  const std::string cut = message("segment truncated to 282 of 480 bytes");
  TestRecord record;
  Vault::IterHint hint;
  auto expectCut = [&](const std::function<void()>& walk) {
    try {
      walk();
      ADD_FAILURE() << "a walk of a segment cut short went ahead";
    } catch (const Quill::CorruptionDetectedException& error) {
      EXPECT_EQ(error.what(), cut);
    }
  };
  expectCut([&] { table.first(record, hint); });
  expectCut([&] { table.firstIntent(record, hint); });
  expectCut([&] { table.validate(); });
  expectCut([&] { table.cleanup(); });
}

TEST_F(CorruptionTest, SegmentShorterThanItsHeader) {
  raw().truncate(10);
  WalkResult<TestRecord> result = read();
  EXPECT_TRUE(result.records.empty());
  EXPECT_EQ(result.corruption,
            message("segment of 10 bytes is shorter than its header (64 bytes)"));
}

TEST_F(CorruptionTest, EmptySegment) {
  raw().truncate(0);
  EXPECT_EQ(read().corruption, message("segment of 0 bytes is shorter than its header (64 bytes)"));
}

TEST_F(CorruptionTest, FlippedBitInARecord) {
  raw().flipBit(recordOffset(1) + 5, 3);
  WalkResult<TestRecord> result = read();
  EXPECT_EQ(result.records, firstOf(1));
  EXPECT_EQ(result.corruption, message("slot 1: checksum mismatch (torn or damaged record)"));
}

TEST_F(CorruptionTest, FlippedBitInAKey) {
  raw().flipBit(slotOffset(3) + 8, 0);
  WalkResult<TestRecord> result = read();
  EXPECT_EQ(result.records, firstOf(3));
  EXPECT_EQ(result.corruption, message("slot 3: checksum mismatch (torn or damaged record)"));
}

TEST_F(CorruptionTest, FlippedBitInAControlWord) {
  raw().flipBit(slotOffset(2) + 1, 1);
  WalkResult<TestRecord> result = read();
  EXPECT_EQ(result.records, firstOf(2));
  EXPECT_EQ(result.corruption, message("slot 2: bad control word 0x00000201"));
}

TEST_F(CorruptionTest, SlotStateChangedUnderItsRecord) {
  raw().flipBit(slotOffset(1), 1);  // in use (1) becomes 3, an unknown state
  EXPECT_EQ(read().corruption, message("slot 1: bad control word 0x00000003"));
  raw().flipBit(slotOffset(1), 1);
  raw().flipBit(slotOffset(1), 0);
  raw().flipBit(slotOffset(1), 1);  // in use becomes intent
  WalkResult<TestRecord> result = read();
  EXPECT_EQ(result.records, firstOf(1));
  EXPECT_EQ(result.corruption, message("slot 1: record written in state 1, slot in state 2"));
}

TEST_F(CorruptionTest, FlippedBitInTheHeader) {
  raw().flipBit(20, 2);
  WalkResult<TestRecord> result = read();
  EXPECT_TRUE(result.records.empty());
  EXPECT_EQ(result.corruption, message("header checksum mismatch"));
}

TEST_F(CorruptionTest, BadMagic) {
  forgeHeader([](Vault::TableHeader& h) { h.magic = 0x1122334455667788ull; });
  EXPECT_EQ(read().corruption, message("bad magic 0x1122334455667788"));
}

TEST_F(CorruptionTest, BadVersion) {
  forgeHeader([](Vault::TableHeader& h) { h.version = 7; });
  EXPECT_EQ(read().corruption, message("version 7, expected 2"));
}

TEST_F(CorruptionTest, BadHeaderSize) {
  forgeHeader([](Vault::TableHeader& h) { h.headerSize = 12; });
  EXPECT_EQ(read().corruption, message("header size 12, expected 64"));
}

TEST_F(CorruptionTest, OtherRecordType) {
  forgeHeader([](Vault::TableHeader& h) { h.recordType = 3; });
  EXPECT_EQ(read().corruption, message("record type 3, expected 99"));
}

TEST_F(CorruptionTest, OtherRecordSize) {
  forgeHeader([](Vault::TableHeader& h) { h.recordSize = 24; });
  EXPECT_EQ(read().corruption, message("record size 24, expected 16"));
}

TEST_F(CorruptionTest, BadSlotSize) {
  forgeHeader([](Vault::TableHeader& h) { h.slotSize = 8; });
  EXPECT_EQ(read().corruption, message("slot size 8, expected 104"));
}

TEST_F(CorruptionTest, CapacityPastTheSegmentSize) {
  forgeHeader([](Vault::TableHeader& h) { h.capacity = 1000; });
  EXPECT_EQ(read().corruption,
            message("capacity 1000 needs 104064 bytes, past the segment size 480"));
}

TEST_F(CorruptionTest, CapacityOutOfRange) {
  forgeHeader([](Vault::TableHeader& h) { h.capacity = 0xffffffffu; });
  EXPECT_EQ(read().corruption, message("capacity 4294967295 out of range"));
}

// A header that claims a larger segment than the file: the slots the file
// holds are read, and the walk stops at the first one it does not.
TEST_F(CorruptionTest, CapacityAndSizeClaimingMoreThanTheFile) {
  forgeHeader([](Vault::TableHeader& h) {
    h.capacity = 6;
    h.segmentSize = slotOffset(6);
  });
  WalkResult<TestRecord> result = read();
  EXPECT_EQ(result.records, kFour);
  EXPECT_EQ(result.corruption,
            message("slot 4: lies past the end of the segment (truncated to 480 of 688 bytes)"));
}

TEST_F(CorruptionTest, RecordCountPastTheCapacity) {
  Vault::TableHeader header = raw().header();
  header.recordCount = 5;
  raw().headerIs(header, false);  // the count is not covered by the header checksum
  WalkResult<TestRecord> result = read();
  EXPECT_TRUE(result.records.empty());
  EXPECT_EQ(result.corruption, message("record count 5 past the capacity 4"));
}

// The records of slots 2 and 3 swapped: each copy is intact but sealed for
// its own slot.
TEST_F(CorruptionTest, RecordMovedToAnotherSlot) {
  std::vector<unsigned char> two(kSlotSize), three(kSlotSize);
  raw().read(slotOffset(2), two.data(), two.size());
  raw().read(slotOffset(3), three.data(), three.size());
  raw().write(slotOffset(2), three.data(), three.size());
  raw().write(slotOffset(3), two.data(), two.size());
  WalkResult<TestRecord> result = read();
  EXPECT_EQ(result.records, firstOf(2));
  EXPECT_EQ(result.corruption, message("slot 2: checksum mismatch (torn or damaged record)"));
}

// A record whose own key is not the key its slot was sealed with.
TEST_F(CorruptionTest, RecordKeyDiffersFromTheSlotKey) {
  ScratchName other;
  Vault::VaultTable<TestRecord> table(other.str(), 2);
  table.writer().write(5, &kFour[0], Vault::SlotState::InUse);
  Reader reader(other.str());
  WalkResult<TestRecord> result = walk<TestRecord>(reader);
  EXPECT_TRUE(result.records.empty());
  EXPECT_EQ(result.corruption, "Vault table " + other.str() +
                                   ": slot 0: slot key 0x0000000000000005, record key "
                                   "0x000000000000000a");
}

TEST_F(CorruptionTest, HostileSlotOfRandomBytes) {
  std::mt19937 random(7);
  std::vector<unsigned char> junk(kSlotSize);
  for (unsigned char& byte : junk) {
    byte = static_cast<unsigned char>(random());
  }
  raw().write(slotOffset(2), junk.data(), junk.size());
  std::uint32_t control;
  std::memcpy(&control, junk.data(), sizeof control);
  WalkResult<TestRecord> result = read();
  EXPECT_EQ(result.records, firstOf(2));
  EXPECT_EQ(result.corruption, message(Vel::format("slot 2: bad control word 0x%08x", control)));
}

TEST_F(CorruptionTest, HostileSegmentOfRandomBytes) {
  std::mt19937_64 random(11);
  std::vector<std::uint64_t> junk(480 / 8);
  for (std::uint64_t& word : junk) {
    word = random();
  }
  raw().write(0, junk.data(), 480);
  WalkResult<TestRecord> result = read();
  EXPECT_TRUE(result.records.empty());
  EXPECT_EQ(result.corruption,
            message(Vel::format("bad magic 0x%016llx", static_cast<unsigned long long>(junk[0]))));
}

// Random bytes behind a header a hostile writer sealed, with control words
// that are valid more often than chance: every walk ends, with records or with
// the corruption exception, and reads nothing outside the segment.
TEST_F(CorruptionTest, HostileSlotsBehindAValidHeaderNeverBreakTheReader) {
  std::mt19937 random(3);
  for (int round = 0; round < 300; ++round) {
    std::vector<unsigned char> junk(4 * kSlotSize);
    for (unsigned char& byte : junk) {
      byte = static_cast<unsigned char>(random());
    }
    for (std::uint32_t slot = 0; slot < 4; ++slot) {
      std::uint32_t control = random() % 3 | (random() % 2) << 8;
      std::memcpy(&junk[slot * kSlotSize], &control, sizeof control);
    }
    raw().write(slotOffset(0), junk.data(), junk.size());
    WalkResult<TestRecord> result = read();
    EXPECT_LE(result.records.size(), 4u);
  }
}

// A writer that changes a live record in place (not through the table) and is
// killed halfway leaves a torn record: the reader reports it by its checksum.
TEST_F(CorruptionTest, WriterKilledHalfwayThroughAnInPlaceWriteLeavesATornRecord) {
  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const std::uint32_t half = 0xdeadbeef;
    RawSegment(name_.str()).write(recordOffset(2) + 8, &half, sizeof half);
    raise(SIGKILL);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGKILL);
  WalkResult<TestRecord> result = read();
  EXPECT_EQ(result.records, firstOf(2));
  EXPECT_EQ(result.corruption, message("slot 2: checksum mismatch (torn or damaged record)"));
}

}  // namespace
