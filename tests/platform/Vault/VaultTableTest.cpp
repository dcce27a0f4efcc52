#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>

#include "RawSegment.h"
#include "ScratchName.h"
#include "TestRecord.h"
#include "Vault/ReadOnlyVaultTable.h"
#include "Vault/TableInUseException.h"
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
  Table(name.str(), 4).write({5, 50, 500});
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

// Runs `body` in a child process, which exits with what it returns (3 when it throws).
template <class Body>
int inChild(Body body) {
  const pid_t child = fork();
  if (child == 0) {
    int status = 3;
    try {
      status = body();
    } catch (...) {
    }
    _exit(status);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// A second process attaches to the table by name once the first writer is
// gone, reads what it wrote and adds its own record; a reader of the first
// process then sees it.
TEST(VaultTableTest, SecondProcessReattachesReadsAndWrites) {
  ScratchName name;
  {
    Table table(name.str(), 4);
    table.write({5, 50, 500});
    table.write({9, 90, 900});
  }
  Reader reader(name.str());
  EXPECT_EQ(
      inChild([&] {
        Table again(name.str(), 4);
        const bool same = walk<TestRecord>(again).records == records({{5, 50, 500}, {9, 90, 900}});
        again.write({7, 70, 700});
        return same && again.recordCount() == 3 ? 0 : 2;
      }),
      0);
  EXPECT_EQ(walk<TestRecord>(reader).records, records({{5, 50, 500}, {9, 90, 900}, {7, 70, 700}}));
}

// A table has one writer at a time, for the writer's whole life: another
// process is refused at once, told which process holds the table, and
// writes nothing; once the writer is gone, the table can be written again.
TEST(VaultTableTest, ASecondWriterIsRefusedAtOnceWithTheHoldersProcess) {
  ScratchName name;
  auto table = std::make_unique<Table>(name.str(), 4);
  table->write({5, 50, 500});
  const std::string expected =
      "Vault table " + name.str() + " is in use by process " + std::to_string(getpid());
  EXPECT_EQ(inChild([&] {
              try {
                Table again(name.str(), 4);
              } catch (const Vault::TableInUseException& e) {
                return e.message() == expected && e.holder() == getppid() ? 0 : 2;
              }
              return 1;
            }),
            0);
  EXPECT_EQ(walk<TestRecord>(*table).records, records({{5, 50, 500}}));
  table.reset();
  EXPECT_EQ(inChild([&] {
              Table(name.str(), 4).write({7, 70, 700});
              return 0;
            }),
            0);
}

// Only a regular file of this user with mode 0600 is adopted as a table.
TEST(VaultTableTest, ASegmentOfAnotherModeOrUserOrALinkIsRefused) {
  ScratchName name;
  Table(name.str(), 4).write({5, 50, 500});
  const std::string file = "/dev/shm" + name.str();
  ASSERT_EQ(chmod(file.c_str(), 0644), 0);
  try {
    Table again(name.str(), 4);
    ADD_FAILURE() << "a segment of mode 0644 was adopted";
  } catch (const Vel::RangeException& e) {
    EXPECT_EQ(e.message(), "Vault table " + name.str() +
                               " is not a segment of this user with mode 0600 (owner " +
                               std::to_string(geteuid()) + ", mode 0644): refused");
  }
  // Readers too.
  Reader reader(name.str());
  EXPECT_THROW(walk<TestRecord>(reader), Vel::RangeException);
  ASSERT_EQ(chmod(file.c_str(), 0600), 0);
  if (geteuid() == 0) {
    constexpr uid_t kOtherUser = 1;
    ASSERT_EQ(chown(file.c_str(), kOtherUser, kOtherUser), 0);
    try {
      Table again(name.str(), 4);
      ADD_FAILURE() << "a segment of another user was adopted";
    } catch (const Vel::RangeException& e) {
      EXPECT_EQ(e.message(), "Vault table " + name.str() +
                                 " is not a segment of this user with mode 0600 (owner 1, mode "
                                 "0600): refused");
    }
  }
  ScratchName link;
  ASSERT_EQ(symlink(file.c_str(), ("/dev/shm" + link.str()).c_str()), 0);
  try {
    Table again(link.str(), 4);
    ADD_FAILURE() << "a link was followed";
  } catch (const Vel::RangeException& e) {
    EXPECT_EQ(e.message(), "cannot open Vault table " + link.str() + ": " + std::strerror(ELOOP));
  }
}

// A table that a process of another user made is not adopted, by a writer or
// a reader: it could hold anything. Needs root, to run a process as another
// user.
TEST(VaultTableTest, ATableMadeByAProcessOfAnotherUserIsRefused) {
  if (geteuid() != 0)
    GTEST_SKIP() << "runs a process as another user, which only root may";
  constexpr uid_t kNobody = 65534;
  ScratchName name;
  ASSERT_EQ(inChild([&] {
              if (setgid(kNobody) != 0 || setuid(kNobody) != 0)
                return 2;
              Table(name.str(), 4).write({5, 50, 500});
              return 0;
            }),
            0);
  const std::string refusal = "Vault table " + name.str() +
                              " is not a segment of this user with mode 0600 (owner " +
                              std::to_string(kNobody) + ", mode 0600): refused";
  try {
    Table again(name.str(), 4);
    ADD_FAILURE() << "a table of another user was adopted";
  } catch (const Vel::RangeException& e) {
    EXPECT_EQ(e.message(), refusal);
  }
  Reader reader(name.str());
  try {
    walk<TestRecord>(reader);
    ADD_FAILURE() << "a table of another user was read";
  } catch (const Vel::RangeException& e) {
    EXPECT_EQ(e.message(), refusal);
  }
}

// Two writers in one process are two writers too.
TEST(VaultTableTest, ASecondWriterInTheSameProcessIsRefused) {
  ScratchName name;
  Table table(name.str(), 4);
  EXPECT_THROW(Table(name.str(), 4), Vault::TableInUseException);
}

}  // namespace
