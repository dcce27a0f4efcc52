#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

#include "MbbVaultKey/VaultKeyManager.h"
#include "Vault/MbbPostcodef/ShadowOp.h"
#include "Vel/Allocate.h"
#include "support/ScratchShadowBase.h"
#include "support/ShadowWalk.h"

namespace MbbVaultKey {
namespace {

using BfnMbbShared::AdtEntryConfig;
using BfnMbbShared::SelGrpEntryConfig;
using Vault::MbbPostcodef::EntryConfig;
using Vault::MbbPostcodef::EntryKey;
using Vault::MbbPostcodef::OpId;
using Vault::MbbPostcodef::opIdOf;
using Vault::MbbPostcodef::ShadowOp;

TEST(ShadowRecordTest, EntryConfigKeepsEveryField) {
  const EntryConfig record(EntryKey(1, 2), OpId(3), 0x44444444u, 0x5555, 0x66666666u);
  EXPECT_EQ(record.key(), EntryKey(1, 2));
  EXPECT_EQ(record.opId(), OpId(3));
  EXPECT_EQ(record.entryHandle(), 0x44444444u);
  EXPECT_EQ(record.handle(), 0x44444444u);
  EXPECT_EQ(record.ingMirrorMdMirrorSession(), 0x5555);
  EXPECT_EQ(record.devPipeId(), 0x66666666u);
  EXPECT_EQ(record.vaultKey(), 0x0000000100000002u);
}

TEST(ShadowRecordTest, AdtEntryConfigKeepsEveryField) {
  const AdtEntryConfig record(EntryKey(0x80000000u, 7), OpId(5), 0x12345678u);
  EXPECT_EQ(record.key(), EntryKey(0x80000000u, 7));
  EXPECT_EQ(record.opId(), OpId(5));
  EXPECT_EQ(record.memberHandle(), 0x12345678u);
  EXPECT_EQ(record.handle(), 0x12345678u);
  EXPECT_EQ(record.vaultKey(), 0x8000000000000007u);
}

TEST(ShadowRecordTest, SelGrpEntryConfigKeepsEveryField) {
  const SelGrpEntryConfig record(EntryKey(0x80000000u, 3), OpId(7), 11, 120, 0xffff, 9);
  EXPECT_EQ(record.key(), EntryKey(0x80000000u, 3));
  EXPECT_EQ(record.opId(), OpId(7));
  EXPECT_EQ(record.groupHandle(), 11u);
  EXPECT_EQ(record.handle(), 11u);
  EXPECT_EQ(record.maxGroupSize(), 120u);
  EXPECT_EQ(record.devPipeId(), 0xffffu);
  EXPECT_EQ(record.replacedHandle(), 9u);
}

TEST(ShadowRecordTest, HandleAndOpCanBeChanged) {
  EntryConfig record(EntryKey(0, 1), opIdOf(ShadowOp::entryAdd), 0, 5, 0xffff);
  record.handleIs(17);
  record.opIdIs(opIdOf(ShadowOp::entryDelete));
  EXPECT_EQ(record, EntryConfig(EntryKey(0, 1), OpId(3), 17, 5, 0xffff));
}

// A search record (zero key, zero OpId, all numbers 0) is all zero bytes, as
// is a default-made record: no padding byte is left undefined.
template <class R>
bool allZero(const R& record) {
  unsigned char bytes[sizeof(R)];
  std::memcpy(bytes, &record, sizeof(R));
  for (unsigned char byte : bytes) {
    if (byte != 0) {
      return false;
    }
  }
  return true;
}

TEST(ShadowRecordTest, SearchRecordsAreAllZero) {
  EXPECT_TRUE(allZero(EntryConfig(EntryKey(), OpId(), 0, 0, 0)));
  EXPECT_TRUE(allZero(AdtEntryConfig(EntryKey(), OpId(), 0)));
  EXPECT_TRUE(allZero(SelGrpEntryConfig(EntryKey(), OpId(), 0, 0, 0, 0)));
  EXPECT_EQ(EntryConfig(EntryKey(), OpId(), 0, 0, 0), EntryConfig());
  EXPECT_EQ(AdtEntryConfig(EntryKey(), OpId(), 0), AdtEntryConfig());
  EXPECT_EQ(SelGrpEntryConfig(EntryKey(), OpId(), 0, 0, 0, 0), SelGrpEntryConfig());
}

TEST(ShadowRecordTest, RecordsArePlainFixedSizeData) {
  EXPECT_TRUE(std::is_trivially_copyable_v<EntryConfig>);
  EXPECT_TRUE(std::is_trivially_copyable_v<AdtEntryConfig>);
  EXPECT_TRUE(std::is_trivially_copyable_v<SelGrpEntryConfig>);
  EXPECT_TRUE(std::has_unique_object_representations_v<EntryConfig>);
  EXPECT_TRUE(std::has_unique_object_representations_v<AdtEntryConfig>);
  EXPECT_TRUE(std::has_unique_object_representations_v<SelGrpEntryConfig>);
  EXPECT_EQ(sizeof(EntryConfig), 24u);
  EXPECT_EQ(sizeof(AdtEntryConfig), 16u);
  EXPECT_EQ(sizeof(SelGrpEntryConfig), 28u);
}

TEST(ShadowRecordTest, EveryOpHasItsOwnOpId) {
  for (std::uint32_t value = 0; value <= 8; ++value) {
    EXPECT_EQ(opIdOf(Vault::MbbPostcodef::shadowOpOf(OpId(value))), OpId(value));
  }
  EXPECT_EQ(Vault::MbbPostcodef::shadowOpOf(OpId(9)), ShadowOp::none);
  EXPECT_EQ(Vault::MbbPostcodef::createOpOf(ShadowOp::groupDelete), ShadowOp::groupCreate);
  EXPECT_EQ(Vault::MbbPostcodef::createOpOf(ShadowOp::entryAdd), ShadowOp::none);
}

// Every kind of record goes through its shadow table unchanged: written by
// one manager, read by the read-only adapter and by a manager attached anew.
template <class R>
struct RecordKind;

template <>
struct RecordKind<EntryConfig> {
  static constexpr const char* name = "entry";
  static std::vector<EntryConfig> samples() {
    return {
        EntryConfig(EntryKey(0, 1), opIdOf(ShadowOp::entryAdd), 17, 5, 0xffff),
        EntryConfig(EntryKey(0, 2), opIdOf(ShadowOp::defaultEntrySet), 0xfffffffeu, 0, 3),
        EntryConfig(EntryKey(0x7fffffffu, 0xffffffffu), opIdOf(ShadowOp::entryAdd), 1, 0xffff, 0)};
  }
  static ShadowTable<EntryConfig>& table(VaultKeyManager& manager) {
    return *manager.entryShadow();
  }
  static Vel::Ptr<Vault::VaultBase<EntryConfig>> config(VaultKeyManager& manager) {
    return manager.mbbVaultTableConfig();
  }
};

template <>
struct RecordKind<AdtEntryConfig> {
  static constexpr const char* name = "member";
  static std::vector<AdtEntryConfig> samples() {
    return {AdtEntryConfig(EntryKey(0x80000000u, 0), opIdOf(ShadowOp::memberAdd), 3),
            AdtEntryConfig(EntryKey(0x80000000u, 0xffffffffu), opIdOf(ShadowOp::memberAdd),
                           0xffffffffu)};
  }
  static ShadowTable<AdtEntryConfig>& table(VaultKeyManager& manager) {
    return *manager.memberShadow();
  }
  static Vel::Ptr<Vault::VaultBase<AdtEntryConfig>> config(VaultKeyManager& manager) {
    return manager.adtVaultTableConfig();
  }
};

template <>
struct RecordKind<SelGrpEntryConfig> {
  static constexpr const char* name = "group";
  static std::vector<SelGrpEntryConfig> samples() {
    return {SelGrpEntryConfig(EntryKey(0x80000000u, 3), opIdOf(ShadowOp::groupCreate), 4, 120,
                              0xffff, 0),
            SelGrpEntryConfig(EntryKey(0x80000000u, 4), opIdOf(ShadowOp::groupCreate), 9, 1, 2, 4)};
  }
  static ShadowTable<SelGrpEntryConfig>& table(VaultKeyManager& manager) {
    return *manager.groupShadow();
  }
  static Vel::Ptr<Vault::VaultBase<SelGrpEntryConfig>> config(VaultKeyManager& manager) {
    return manager.selGrpVaultTableConfig();
  }
};

template <class R>
class ShadowRecordRoundTripTest : public testing::Test {
 protected:
  shadow_test::ScratchShadowBase base{"roundtrip"};
  ShadowCapacity capacity{8, 8, 8};
};

using RecordKinds = testing::Types<EntryConfig, AdtEntryConfig, SelGrpEntryConfig>;

class RecordKindNames {
 public:
  template <class R>
  static std::string GetName(int) {
    return RecordKind<R>::name;
  }
};

TYPED_TEST_SUITE(ShadowRecordRoundTripTest, RecordKinds, RecordKindNames);

TYPED_TEST(ShadowRecordRoundTripTest, ReadersGetTheRecordsAsWritten) {
  using Kind = RecordKind<TypeParam>;
  auto writer = Vel::allocate<VaultKeyManager>(this->base.str(), this->capacity);
  for (const TypeParam& record : Kind::samples()) {
    Kind::table(*writer).recordIs(record);
  }
  shadow_test::ShadowWalk<TypeParam> read = shadow_test::walkShadow(Kind::config(*writer));
  EXPECT_EQ(read.records, Kind::samples());
  EXPECT_EQ(read.corruption, "");

  writer = nullptr;
  auto attached = Vel::allocate<VaultKeyManager>(this->base.str(), this->capacity);
  EXPECT_EQ(shadow_test::walkShadow(Kind::config(*attached)).records, Kind::samples());
  EXPECT_EQ(Kind::table(*attached).records(), Kind::samples());
  for (const TypeParam& record : Kind::samples()) {
    EXPECT_EQ(Kind::table(*attached).record(record.key()), record);
    EXPECT_EQ(Kind::table(*attached).keyOfHandle(record.handle()), record.key());
  }
}

TYPED_TEST(ShadowRecordRoundTripTest, IntentsAreKeptButNotRead) {
  using Kind = RecordKind<TypeParam>;
  auto writer = Vel::allocate<VaultKeyManager>(this->base.str(), this->capacity);
  const std::vector<TypeParam> samples = Kind::samples();
  Kind::table(*writer).recordIs(samples[0]);
  Kind::table(*writer).intentIs(samples[1]);
  EXPECT_EQ(shadow_test::walkShadow(Kind::config(*writer)).records,
            std::vector<TypeParam>{samples[0]});
  EXPECT_EQ(Kind::table(*writer).intent(samples[1].key()), samples[1]);
  EXPECT_EQ(Kind::table(*writer).record(samples[1].key()), std::nullopt);
  EXPECT_EQ(Kind::table(*writer).keyOfHandle(samples[1].handle()), std::nullopt);

  writer = nullptr;
  auto attached = Vel::allocate<VaultKeyManager>(this->base.str(), this->capacity);
  EXPECT_EQ(Kind::table(*attached).intents(), std::vector<TypeParam>{samples[1]});
  EXPECT_EQ(Kind::table(*attached).records(), std::vector<TypeParam>{samples[0]});
}

TYPED_TEST(ShadowRecordRoundTripTest, RemovedRecordsAreGoneForReaders) {
  using Kind = RecordKind<TypeParam>;
  auto writer = Vel::allocate<VaultKeyManager>(this->base.str(), this->capacity);
  const std::vector<TypeParam> samples = Kind::samples();
  Kind::table(*writer).recordIs(samples[0]);
  Kind::table(*writer).recordIs(samples[1]);
  EXPECT_TRUE(Kind::table(*writer).recordDel(samples[0].key()));
  EXPECT_FALSE(Kind::table(*writer).recordDel(samples[0].key()));
  EXPECT_EQ(shadow_test::walkShadow(Kind::config(*writer)).records,
            std::vector<TypeParam>{samples[1]});
  EXPECT_EQ(Kind::table(*writer).keyOfHandle(samples[0].handle()), std::nullopt);
}

}  // namespace
}  // namespace MbbVaultKey
