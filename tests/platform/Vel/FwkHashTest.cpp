#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <vector>

#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Allocate.h"
#include "Vel/BitReverse.h"
#include "Vel/FwkHash.h"
#include "Vel/Ptr.h"

namespace FwkHashTestIds {

// An id class of the kind the configuration uses: a wrapped 32-bit number
// with its own hash, found by argument-dependent lookup.
class MemberId {
 public:
  explicit MemberId(std::uint32_t value) : value_(value) {}
  std::uint32_t value() const { return value_; }
  friend bool operator==(MemberId a, MemberId b) { return a.value_ == b.value_; }
  friend bool operator<(MemberId a, MemberId b) { return a.value_ < b.value_; }

 private:
  std::uint32_t value_;
};

std::uint32_t fwkHash(const MemberId& id) {
  return id.value() * 3;
}

enum class Colour : std::uint16_t { red = 7, blue = 0xffff };

}  // namespace FwkHashTestIds

namespace {

class Spec : public Vel::PtrInterface {};

TEST(FwkHashTest, NarrowIntegersAreTheirOwnHash) {
  EXPECT_EQ(Vel::fwkHash(std::uint32_t{0x12345678u}), 0x12345678u);
  EXPECT_EQ(Vel::fwkHash(std::uint16_t{0xbeef}), 0xbeefu);
  EXPECT_EQ(Vel::fwkHash(std::uint8_t{0x7f}), 0x7fu);
  EXPECT_EQ(Vel::fwkHash(42), 42u);
  EXPECT_EQ(Vel::fwkHash(-1), 0xffffffffu);
  EXPECT_EQ(Vel::fwkHash(true), 1u);
}

TEST(FwkHashTest, WideIntegersFoldTheirHalves) {
  EXPECT_EQ(Vel::fwkHash(std::uint64_t{0x0000000100000002ull}), 3u);
  EXPECT_EQ(Vel::fwkHash(std::uint64_t{0xffffffff00000000ull}), 0xffffffffu);
  EXPECT_EQ(Vel::fwkHash(std::int64_t{-1}), 0u);
  EXPECT_EQ(Vel::fwkHash(std::uint64_t{0x12345678ull}), 0x12345678u);
}

TEST(FwkHashTest, EnumerationsHashAsTheirValue) {
  EXPECT_EQ(Vel::fwkHash(FwkHashTestIds::Colour::red), 7u);
  EXPECT_EQ(Vel::fwkHash(FwkHashTestIds::Colour::blue), 0xffffu);
}

TEST(FwkHashTest, UserKeysUseTheirOwnHash) {
  EXPECT_EQ(Vel::fwkHashOfKey(FwkHashTestIds::MemberId(5)), 15u);
  EXPECT_EQ(Vel::fwkHashOfKey(std::uint16_t{9}), 9u);
  static_assert(Vel::FwkKey<FwkHashTestIds::MemberId>);
  static_assert(Vel::FwkKey<std::uint32_t>);
  static_assert(Vel::FwkKey<Vel::Ptr<const Spec>>);
  static_assert(!Vel::FwkKey<std::vector<int>>);
}

TEST(FwkHashTest, ReferencesHashByIdentity) {
  const Vel::Ptr<Spec> a = Vel::allocate<Spec>();
  const Vel::Ptr<Spec> b = Vel::allocate<Spec>();
  const Vel::Ptr<const Spec> alsoA = a;
  EXPECT_EQ(Vel::fwkHash(a), Vel::fwkHash(alsoA));
  EXPECT_NE(Vel::fwkHash(a), Vel::fwkHash(b));
  EXPECT_EQ(Vel::fwkHash(Vel::Ptr<Spec>()), Vel::fwkHashOfAddress(0));
}

// The maps order by the reversed hash; a key type that makes it directly must
// give what reversing its hash gives.
TEST(FwkHashTest, TheReversedHashIsTheHashReversed) {
  const Vel::Ptr<Spec> a = Vel::allocate<Spec>();
  EXPECT_EQ(Vel::fwkReversedHashOfKey(a), Vel::bitReverse(Vel::fwkHash(a)));
  EXPECT_EQ(Vel::fwkReversedHashOfKey(Vel::Ptr<Spec>()), Vel::bitReverse(Vel::fwkHashOfAddress(0)));
  EXPECT_EQ(Vel::fwkReversedHashOfKey(std::uint32_t{6}), Vel::bitReverse(6u));
  EXPECT_EQ(Vel::fwkReversedHashOfKey(FwkHashTestIds::MemberId(5)), Vel::bitReverse(15u));
  for (std::uintptr_t address = 0; address < 0x100000; address += 0x1010) {
    ASSERT_EQ(Vel::bitReverse(Vel::fwkHashOfAddress(address)),
              Vel::fwkReversedHashOfAddress(address));
  }
}

// Aligned, neighbouring addresses must still spread over the buckets that the
// low bits of the hash choose.
TEST(FwkHashTest, NeighbouringAddressesSpreadOverBuckets) {
  std::set<std::uint32_t> buckets;
  for (std::uintptr_t address = 0x7f0000001000u; address < 0x7f0000001000u + 64 * 64;
       address += 64) {
    buckets.insert(Vel::bitReverse(Vel::fwkHashOfAddress(address)) >> 26);
  }
  EXPECT_GE(buckets.size(), 32u);
}

}  // namespace
