#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>

#include "BfnMbbShared/AdtEntryConfig.h"
#include "BfnMbbShared/SelGrpEntryConfig.h"
#include "TestRecord.h"
#include "Vault/MbbPostcodef/EntryConfig.h"
#include "Vault/MbbPostcodef/ShadowRecord.h"
#include "Vault/VaultRecord.h"

namespace {

using BfnMbbShared::AdtEntryConfig;
using BfnMbbShared::SelGrpEntryConfig;
using Vault::RecordType;
using Vault::recordTypeOf;
using Vault::VaultRecord;
using Vault::MbbPostcodef::EntryConfig;
using Vault::MbbPostcodef::ShadowRecord;

// Records that miss one part of what a table needs.
struct WithoutKey {
  static constexpr RecordType vaultRecordType = RecordType{98};
};
struct WithNumberForType {
  static constexpr std::uint32_t vaultRecordType = 97;
  std::uint64_t vaultKey() const noexcept { return 0; }
};
struct NotTriviallyCopyable {
  [[maybe_unused]] static constexpr RecordType vaultRecordType = RecordType{96};
  std::string text;
  std::uint64_t vaultKey() const noexcept { return 0; }
};

static_assert(VaultRecord<TestRecord>);
static_assert(!VaultRecord<WithoutKey>);
static_assert(!VaultRecord<WithNumberForType>);
static_assert(!VaultRecord<NotTriviallyCopyable>);

// Every shadow record of a chip object, and nothing less.
static_assert(ShadowRecord<EntryConfig>);
static_assert(ShadowRecord<AdtEntryConfig>);
static_assert(ShadowRecord<SelGrpEntryConfig>);
static_assert(!ShadowRecord<TestRecord>);

TEST(VaultRecordTest, EachShadowRecordKeepsTheTypeIdItsTablesWereWrittenWith) {
  // Tables written before keep their meaning: the ids are part of the format.
  EXPECT_EQ(recordTypeOf<EntryConfig>(), 1u);
  EXPECT_EQ(recordTypeOf<AdtEntryConfig>(), 2u);
  EXPECT_EQ(recordTypeOf<SelGrpEntryConfig>(), 3u);
}

TEST(VaultRecordTest, NoTwoRecordTypesShareAnId) {
  const std::set<std::uint32_t> ids = {recordTypeOf<EntryConfig>(), recordTypeOf<AdtEntryConfig>(),
                                       recordTypeOf<SelGrpEntryConfig>(),
                                       recordTypeOf<TestRecord>()};
  EXPECT_EQ(ids.size(), 4u);
}

}  // namespace
