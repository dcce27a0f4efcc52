#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <functional>
#include <string>

#include "Quill/CorruptionDetectedException.h"
#include "ScratchName.h"
#include "TestRecord.h"
#include "Vault/ReadOnlyVaultTable.h"
#include "Vault/VaultBaseDummy.h"
#include "Vault/VaultTable.h"
#include "Vel/Allocate.h"
#include "Vel/OperationNotSupportedException.h"
#include "WalkResult.h"

namespace {

using Reader = Vault::ReadOnlyVaultTable<TestRecord>;

// The message an operation is refused with; empty when it is not refused.
std::string refusal(const std::function<void()>& operation) {
  try {
    operation();
  } catch (const Vel::OperationNotSupportedException& e) {
    return e.message();
  }
  return "";
}

TEST(ReadOnlyVaultTableTest, RefusesEveryWritingAndHousekeepingOperation) {
  ScratchName name;
  Vault::VaultTable<TestRecord> table(name.str(), 4);
  table.write({1, 2, 3});
  Vel::Ptr<Vault::VaultBase<TestRecord>> reader = Vel::allocate<Reader>(name.str());
  const TestRecord record{1, 2, 3};
  EXPECT_EQ(refusal([&] { reader->write(record); }), "write to read-only Vault table");
  EXPECT_EQ(refusal([&] { reader->remove(record); }), "remove to read-only Vault table");
  EXPECT_EQ(refusal([&] { reader->cleanup(); }), "cleanup to read-only Vault table");
  EXPECT_EQ(refusal([&] { reader->validateFiles(); }), "validateFiles to read-only Vault table");
  EXPECT_EQ(refusal([&] { reader->validate(); }), "validate to read-only Vault table");
  EXPECT_EQ(refusal([&] { reader->getCacheVersionAnchor(); }),
            "getCacheVersionAnchor() not implemented");
  EXPECT_EQ(refusal([&] { reader->clientQuiesced(); }), "clientQuiesced() not implemented");
  EXPECT_EQ(refusal([&] { reader->writerCounters(); }), "writerCounters() not implemented");
  EXPECT_EQ(refusal([&] { reader->readerCounters(); }), "readerCounters() not implemented");
  // Nothing was changed by the refused operations.
  EXPECT_EQ(walk<TestRecord>(*reader).records, std::vector<TestRecord>({{1, 2, 3}}));
}

TEST(ReadOnlyVaultTableTest, MapsTheSegmentReadOnly) {
  ScratchName name;
  Vault::VaultTable<TestRecord> table(name.str(), 4);
  table.write({1, 2, 3});
  std::unique_ptr<Vault::SharedSegment> segment = Vault::SharedSegment::openReadOnly(name.str());
  ASSERT_NE(segment, nullptr);
  EXPECT_EQ(segment->writableBytes(), nullptr);
  volatile std::byte* first = const_cast<std::byte*>(segment->bytes());
  EXPECT_DEATH(first[0] = std::byte{0}, "");
}

TEST(ReadOnlyVaultTableTest, TableThatDoesNotExistIsEmpty) {
  ScratchName name;
  Reader reader(name.str());
  TestRecord record{};
  Vault::IterHint hint;
  EXPECT_FALSE(reader.first(record, hint));
  EXPECT_FALSE(reader.next(record, hint));
}

TEST(ReadOnlyVaultTableTest, SeesTheWritersChangesAtTheNextFirst) {
  ScratchName name;
  Vault::VaultTable<TestRecord> table(name.str(), 4);
  Reader reader(name.str());
  table.write({1, 0, 0});
  EXPECT_EQ(walk<TestRecord>(reader).records, std::vector<TestRecord>({{1, 0, 0}}));
  table.write({1, 5, 0});
  table.write({2, 0, 0});
  EXPECT_EQ(walk<TestRecord>(reader).records, std::vector<TestRecord>({{1, 5, 0}, {2, 0, 0}}));
}

TEST(ReadOnlyVaultTableTest, CorruptionHandlerKeepsCountAndLastMessage) {
  ScratchName name;
  Reader reader(name.str());
  EXPECT_EQ(reader.corruption().count(), 0u);
  reader.corruptionDetected("first damage");
  reader.corruptionDetected("second damage");
  EXPECT_EQ(reader.corruption().count(), 2u);
  EXPECT_EQ(reader.corruption().last(), "second damage");
}

TEST(VaultBaseDummyTest, EveryOperationOfATableThatIsNotConfiguredFails) {
  Vel::Ptr<Vault::VaultBase<TestRecord>> dummy = Vel::allocate<Vault::VaultBaseDummy<TestRecord>>();
  TestRecord record{};
  Vault::IterHint hint;
  EXPECT_EQ(refusal([&] { dummy->first(record, hint); }), "VaultBaseDummy::first()");
  EXPECT_EQ(refusal([&] { dummy->next(record, hint); }), "VaultBaseDummy::next()");
  EXPECT_EQ(refusal([&] { dummy->write(record); }), "VaultBaseDummy::write()");
  EXPECT_EQ(refusal([&] { dummy->validate(); }), "VaultBaseDummy::validate()");
}

}  // namespace

namespace {

// Cuts the segment `name` down to `size` bytes, as another process could.
void cutShort(const std::string& name, off_t size) {
  const int fd = shm_open(Vault::SharedSegment::fullName(name).c_str(), O_RDWR, 0);
  ASSERT_GE(fd, 0);
  ASSERT_EQ(ftruncate(fd, size), 0);
  close(fd);
}

constexpr std::uint32_t kManyRecords = 4096;

TEST(ReadOnlyVaultTableTest, ASegmentCutShortDuringAWalkEndsTheWalkWithoutASignal) {
  ScratchName name;
  {
    Vault::VaultTable<TestRecord> table(name.str(), kManyRecords);
    for (std::uint32_t key = 1; key <= kManyRecords; ++key)
      table.write({key, key, key});
  }
  Reader reader(name.str());
  TestRecord record{};
  Vault::IterHint hint;
  ASSERT_TRUE(reader.first(record, hint));
  // Cut down to its first page while the walk goes on: the walk reads what
  // its first() read, and no page of it is gone.
  cutShort(name.str(), getpagesize());
  std::uint32_t seen = 1;
  while (reader.next(record, hint))
    ++seen;
  EXPECT_EQ(seen, kManyRecords);
  // The next walk finds the table shorter than its header says, at the first
  // slot that is gone.
  try {
    for (bool more = reader.first(record, hint); more; more = reader.next(record, hint)) {
    }
    ADD_FAILURE() << "the walk of a table cut short ended without a word";
  } catch (const Quill::CorruptionDetectedException& e) {
    EXPECT_NE(std::string(e.what()).find("lies past the end of the segment"), std::string::npos)
        << e.what();
  }
}

}  // namespace
