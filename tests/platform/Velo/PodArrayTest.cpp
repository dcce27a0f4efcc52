#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "BfnMbbShared/AdtAddrKey.h"
#include "BfnMbbShared/AdtDataKey.h"
#include "Quill/InvalidSizeException.h"
#include "Vault/MbbPostcodef/DataKey.h"
#include "Vault/MbbPostcodef/TableKey.h"

namespace {

// Elements numbered 1, 2, 3, ... so that every byte of the dump is known.
template <class Array>
std::vector<typename Array::value_type> numbered(std::uint32_t count) {
  std::vector<typename Array::value_type> elements(count);
  auto* bytes = reinterpret_cast<unsigned char*>(elements.data());
  for (std::size_t i = 0; i < count * sizeof(typename Array::value_type); ++i) {
    bytes[i] = static_cast<unsigned char>(i * 7 + 1);
  }
  return elements;
}

std::string expectedMessage(std::uint32_t capacity, std::uint32_t count, const void* source,
                            std::size_t size) {
  char head[160];
  std::snprintf(head, sizeof head,
                "PodArray::set expected size <= %u, instead got %u. Buffer is at address: %p "
                "with contents: ",
                capacity, count, source);
  std::string text = head;
  const auto* bytes = static_cast<const unsigned char*>(source);
  for (std::size_t i = 0; i < size; ++i) {
    char byte[4];
    std::snprintf(byte, sizeof byte, i == 0 ? "%02x" : " %02x", bytes[i]);
    text += byte;
  }
  return text;
}

template <class Array>
class PodArrayTest : public ::testing::Test {};

using Arrays = ::testing::Types<Vault::MbbPostcodef::TableKey, Vault::MbbPostcodef::DataKey,
                                BfnMbbShared::AdtAddrKey, BfnMbbShared::AdtDataKey>;
TYPED_TEST_SUITE(PodArrayTest, Arrays);

TYPED_TEST(PodArrayTest, TakesAsManyElementsAsItsCapacity) {
  const std::uint32_t capacity = TypeParam::capacity();
  auto source = numbered<TypeParam>(capacity);
  TypeParam array;
  array.set(capacity, source.data());
  EXPECT_EQ(array.size(), capacity);
  EXPECT_TRUE(std::equal(array.begin(), array.end(), source.begin(), source.end()));
}

TYPED_TEST(PodArrayTest, RefusesOneMoreThanItsCapacityWithTheSourceBytes) {
  const std::uint32_t count = TypeParam::capacity() + 1;
  auto source = numbered<TypeParam>(count);
  TypeParam array;
  array.set(1, source.data());
  try {
    array.set(count, source.data());
    FAIL() << "no exception";
  } catch (const Quill::InvalidSizeException& e) {
    EXPECT_EQ(e.msg(), expectedMessage(TypeParam::capacity(), count, source.data(),
                                       count * sizeof(typename TypeParam::value_type)));
  }
  EXPECT_EQ(array.size(), 1u);
}

TEST(PodArrayLayoutTest, CountThenRoomForTheCapacity) {
  EXPECT_EQ(sizeof(Vault::MbbPostcodef::TableKey), 4u + 17u * 4u);
  EXPECT_EQ(sizeof(Vault::MbbPostcodef::DataKey), 8u + 64u * 8u);
  EXPECT_EQ(sizeof(BfnMbbShared::AdtAddrKey), 4u + 3u * 8u);
  EXPECT_EQ(sizeof(BfnMbbShared::AdtDataKey), 4u + 72u);
  EXPECT_TRUE(std::is_trivially_copyable_v<Vault::MbbPostcodef::DataKey>);
}

TEST(PodArrayMessageTest, TableKeyOfEighteenWordsNamesItsCapacity) {
  std::vector<std::uint32_t> words(18, 0x01020304u);
  Vault::MbbPostcodef::TableKey key;
  try {
    key.set(18, words.data());
    FAIL() << "no exception";
  } catch (const Quill::InvalidSizeException& e) {
    EXPECT_EQ(e.msg().rfind("PodArray::set expected size <= 17, instead got 18. ", 0), 0u);
    EXPECT_EQ(e.msg(), expectedMessage(17, 18, words.data(), 72));
    EXPECT_EQ(e.msg().substr(e.msg().size() - 11), "04 03 02 01");
  }
}

TEST(PodArraySetTest, SettingFewerElementsClearsTheRest) {
  std::uint8_t bytes[3] = {1, 2, 3};
  BfnMbbShared::AdtDataKey a, b;
  a.set(3, bytes);
  a.set(1, bytes);
  b.set(1, bytes);
  EXPECT_EQ(a, b);
  EXPECT_EQ(0, std::memcmp(&a, &b, sizeof a));
}

}  // namespace
