#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "RawSegment.h"
#include "ScratchName.h"
#include "TestRecord.h"
#include "Vault/ReadOnlyVaultTable.h"
#include "Vault/VaultTable.h"
#include "Vel/RangeException.h"
#include "WalkResult.h"

namespace {

using Table = Vault::VaultTable<TestRecord>;
using Reader = Vault::ReadOnlyVaultTable<TestRecord>;

std::vector<TestRecord> records(std::initializer_list<TestRecord> list) {
  return std::vector<TestRecord>(list);
}

TEST(VaultTableTest, NewTableIsEmptyAndHasMode0600) {
  ScratchName name;
  Table table(name.str(), 4);
  EXPECT_EQ(table.capacity(), 4u);
  EXPECT_EQ(table.recordCount(), 0u);
  EXPECT_TRUE(walk<TestRecord>(table).records.empty());
  struct stat status;
  ASSERT_EQ(stat(("/dev/shm" + name.str()).c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
  EXPECT_EQ(RawSegment(name.str()).size(), 64u + 4u * 104u);
}

TEST(VaultTableTest, WritesInsertAndReplaceByKeyInSlotOrder) {
  ScratchName name;
  Table table(name.str(), 4);
  table.write({9, 1, 2});
  table.write({5, 3, 4});
  table.write({9, 7, 8});
  EXPECT_EQ(table.recordCount(), 2u);
  EXPECT_EQ(walk<TestRecord>(table).records, records({{9, 7, 8}, {5, 3, 4}}));
}

TEST(VaultTableTest, RemovedSlotIsTakenByTheNextNewKey) {
  ScratchName name;
  Table table(name.str(), 4);
  table.write({1, 0, 0});
  table.write({2, 0, 0});
  table.write({3, 0, 0});
  EXPECT_TRUE(table.remove({1, 0, 0}));
  EXPECT_FALSE(table.remove({1, 0, 0}));
  table.write({4, 0, 0});
  EXPECT_EQ(walk<TestRecord>(table).records, records({{4, 0, 0}, {2, 0, 0}, {3, 0, 0}}));
  EXPECT_EQ(table.recordCount(), 3u);
}

TEST(VaultTableTest, HintRemembersThePositionOfTheLastRecord) {
  ScratchName name;
  Table table(name.str(), 8);
  table.write({30, 0, 0});
  table.write({10, 0, 0});
  table.write({20, 0, 0});
  table.remove({10, 0, 0});
  TestRecord record{};
  Vault::IterHint hint;
  ASSERT_TRUE(table.first(record, hint));
  EXPECT_EQ(hint.slot(), 0u);
  EXPECT_EQ(hint.key(), 30u);
  ASSERT_TRUE(table.next(record, hint));
  EXPECT_EQ(record, (TestRecord{20, 0, 0}));
  EXPECT_EQ(hint.slot(), 2u);
  EXPECT_FALSE(table.next(record, hint));
  // A hint copied earlier continues from where it was taken.
  Vault::IterHint again;
  again.positionIs(0, 30);
  ASSERT_TRUE(table.next(record, again));
  EXPECT_EQ(record, (TestRecord{20, 0, 0}));
}

TEST(VaultTableTest, FullTableRefusesANewKeyButTakesAReplace) {
  ScratchName name;
  Table table(name.str(), 2);
  table.write({1, 0, 0});
  table.write({2, 0, 0});
  try {
    table.write({3, 0, 0});
    FAIL() << "no exception";
  } catch (const Vel::RangeException& e) {
    EXPECT_EQ(e.message(), "Vault table " + name.str() + " is full (2 records)");
  }
  table.write({2, 5, 5});
  EXPECT_EQ(walk<TestRecord>(table).records, records({{1, 0, 0}, {2, 5, 5}}));
}

TEST(VaultTableTest, ReattachingWithOtherDimensionsIsRefused) {
  ScratchName name;
  Table table(name.str(), 4);
  try {
    Table other(name.str(), 8);
    FAIL() << "no exception";
  } catch (const Vel::RangeException& e) {
    EXPECT_EQ(e.message(), "Vault table " + name.str() +
                               " holds 4 records of type 99 and 16 bytes, not 8 of type 99 and "
                               "16 bytes");
  }
}

TEST(VaultTableTest, BadNameIsRefused) {
  try {
    Table table("/a/b", 4);
    FAIL() << "no exception";
  } catch (const Vel::RangeException& e) {
    EXPECT_EQ(e.message(), "bad Vault table name \"/a/b\"");
  }
}

TEST(VaultTableTest, IntentsAreKeptApartFromRecordsUntilCompleted) {
  ScratchName name;
  Table table(name.str(), 4);
  table.write({1, 0, 0});
  table.intentIs({2, 0, 0});
  EXPECT_EQ(walk<TestRecord>(table).records, records({{1, 0, 0}}));
  TestRecord record{};
  Vault::IterHint hint;
  ASSERT_TRUE(table.firstIntent(record, hint));
  EXPECT_EQ(record, (TestRecord{2, 0, 0}));
  EXPECT_FALSE(table.nextIntent(record, hint));
  table.write({2, 77, 0});
  EXPECT_FALSE(table.firstIntent(record, hint));
  EXPECT_EQ(walk<TestRecord>(table).records, records({{1, 0, 0}, {2, 77, 0}}));
}

TEST(VaultTableTest, WriterCountsAndAnchorFollowTheChanges) {
  ScratchName name;
  Table table(name.str(), 4);
  std::uint64_t anchor = table.getCacheVersionAnchor();
  table.write({1, 0, 0});
  table.write({1, 1, 0});
  table.remove({1, 0, 0});
  EXPECT_GT(table.getCacheVersionAnchor(), anchor);
  Vault::Counters counters = table.writerCounters();
  EXPECT_EQ(counters.writes, 2u);
  EXPECT_EQ(counters.removes, 1u);
  table.validateFiles();
  table.validate();
  EXPECT_EQ(table.cleanup(), 0u);
}

// A second process attaches to the table by name, reads what the first wrote
// and adds its own record; the first then sees it.
TEST(VaultTableTest, SecondProcessReattachesReadsAndWrites) {
  ScratchName name;
  Table table(name.str(), 4);
  table.write({5, 50, 500});
  table.write({9, 90, 900});
  pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    int status = 1;
    try {
      Table again(name.str(), 4);
      bool same = walk<TestRecord>(again).records == records({{5, 50, 500}, {9, 90, 900}});
      again.write({7, 70, 700});
      status = same && again.recordCount() == 3 ? 0 : 2;
    } catch (...) {
      status = 3;
    }
    _exit(status);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  Reader reader(name.str());
  EXPECT_EQ(walk<TestRecord>(reader).records, records({{5, 50, 500}, {9, 90, 900}, {7, 70, 700}}));
}

}  // namespace
