#include <gtest/gtest.h>

#include "Quill/Assert.h"
#include "Quill/CorruptionDetectedException.h"
#include "Quill/InvalidSizeException.h"

namespace {

int failIfZero(int value) {
  QUILL_ASSERT(value != 0);
  return value;
}

TEST(AssertDeathTest, ReportsExpressionFileLineAndFunctionThenAborts) {
  const std::string expected =
      std::string("^") + __FILE__ +
      ":10: int (\\{anonymous\\}|\\(anonymous namespace\\))::failIfZero\\(int\\): " +
      "Assertion 'value != 0' failed\\.\n$";
  EXPECT_DEATH(failIfZero(0), expected);
}

TEST(AssertDeathTest, ReportsTheTextAndPositionGivenByTheCaller) {
  auto check = [](const void* p) {
    QUILL_ASSERT_AT(p != nullptr, "entry.match() != __null",
                    "bf_kestro_switch/vel/BfIngressMirrorLagGroup/BfIngressMirrorLagGroup", 180);
  };
  EXPECT_DEATH(check(nullptr),
               "^bf_kestro_switch/vel/BfIngressMirrorLagGroup/BfIngressMirrorLagGroup:180: .*"
               "Assertion 'entry\\.match\\(\\) != __null' failed\\.\n$");
}

TEST(AssertTest, PassingAssertionReturnsNormally) {
  EXPECT_EQ(failIfZero(3), 3);
}

TEST(QuillExceptionTest, MessagesAreKeptWhole) {
  try {
    throw Quill::InvalidSizeException("PodArray::set expected size <= 17, instead got 18");
  } catch (const Quill::Exception& e) {
    EXPECT_EQ(e.msg(), "PodArray::set expected size <= 17, instead got 18");
  }
  Quill::CorruptionDetectedException corrupt("record 3: bad checksum");
  EXPECT_EQ(corrupt.msg(), "record 3: bad checksum");
  EXPECT_STREQ(corrupt.what(), "record 3: bad checksum");
}

}  // namespace
