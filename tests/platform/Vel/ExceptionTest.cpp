#include <gtest/gtest.h>

#include <exception>
#include <sstream>
#include <typeinfo>

#include "Vel/Exception.h"
#include "Vel/Expect.h"
#include "Vel/Format.h"
#include "Vel/InternalException.h"
#include "Vel/NameInUseException.h"
#include "Vel/OperationNotSupportedException.h"
#include "Vel/ParseException.h"
#include "Vel/RangeException.h"
#include "Vel/UnhashableTypeException.h"

namespace {

template <class E>
class ExceptionKindTest : public testing::Test {};

using ExceptionKinds =
    testing::Types<Vel::RangeException, Vel::ParseException, Vel::NameInUseException,
                   Vel::OperationNotSupportedException, Vel::UnhashableTypeException>;
TYPED_TEST_SUITE(ExceptionKindTest, ExceptionKinds);

TYPED_TEST(ExceptionKindTest, CarriesItsMessageWholeAndItsType) {
  const Vel::String message =
      "null _entry parameter to mutator for "
      "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfile::entry not allowed\"";
  try {
    throw TypeParam(message);
  } catch (const Vel::Exception& e) {
    EXPECT_EQ(typeid(e), typeid(TypeParam));
    EXPECT_EQ(e.message(), message);
    EXPECT_STREQ(e.what(), message.c_str());
    std::ostringstream out;
    out << e;
    EXPECT_EQ(out.str(), message);
  }
}

TYPED_TEST(ExceptionKindTest, IsCaughtAsAStandardException) {
  try {
    throw TypeParam("whole message");
  } catch (const std::exception& e) {
    EXPECT_NE(dynamic_cast<const TypeParam*>(&e), nullptr);
    EXPECT_STREQ(e.what(), "whole message");
  }
}

TEST(ExceptionTest, KindsAreDistinct) {
  EXPECT_THROW(
      {
        try {
          throw Vel::ParseException("text");
        } catch (const Vel::RangeException&) {
          ADD_FAILURE() << "a parse exception was caught as a range exception";
        }
      },
      Vel::ParseException);
  EXPECT_THROW(
      {
        try {
          throw Vel::RangeException("text");
        } catch (const Vel::NameInUseException&) {
          ADD_FAILURE() << "a range exception was caught as a name-in-use exception";
        }
      },
      Vel::RangeException);
}

TEST(ExceptionTest, ThrowRangeExceptionRaisesARangeExceptionWithTheMessage) {
  try {
    Vel::throwRangeException(Vel::format("value %d not in %s", 70000, "0..65535"));
    ADD_FAILURE() << "nothing thrown";
  } catch (const Vel::RangeException& e) {
    EXPECT_EQ(typeid(e), typeid(Vel::RangeException));
    EXPECT_EQ(e.message(), "value 70000 not in 0..65535");
  }
}

TEST(ExceptionTest, EmptyAndLongMessagesAreKept) {
  EXPECT_EQ(Vel::Exception("").message(), "");
  const Vel::String longMessage(100000, 'm');
  EXPECT_EQ(Vel::RangeException(longMessage).message(), longMessage);
}

TEST(InternalExceptionTest, CarriesMessageAndIds) {
  const Vel::ExceptionIdSet ids = (Vel::ExceptionIdSet{1} << 1) | (Vel::ExceptionIdSet{1} << 63);
  Vel::InternalException e("p4_pd_kestro_switch_x() failed: Object not found", ids);
  EXPECT_EQ(e.message(), "p4_pd_kestro_switch_x() failed: Object not found");
  EXPECT_STREQ(e.what(), "p4_pd_kestro_switch_x() failed: Object not found");
  EXPECT_EQ(e.ids(), ids);
  EXPECT_NE(dynamic_cast<const Vel::Exception*>(&e), nullptr);
}

TEST(InternalExceptionTest, NotExpectedOutsideAnExpectScope) {
  ASSERT_EQ(Vel::Expect::depth(), 0u);
  EXPECT_FALSE(Vel::InternalException("m", 1u << 1).wasExpected());
}

TEST(InternalExceptionTest, ExpectedWhenOneOfItsIdsIsExpected) {
  Vel::Expect expect(1);
  EXPECT_TRUE(Vel::InternalException("m", 1u << 1).wasExpected());
  EXPECT_TRUE(Vel::InternalException("m", (1u << 1) | (1u << 4)).wasExpected());
  EXPECT_FALSE(Vel::InternalException("m", 1u << 2).wasExpected());
  EXPECT_FALSE(Vel::InternalException("m", 0).wasExpected());
}

TEST(InternalExceptionTest, ExpectationIsFixedWhenTheExceptionIsMade) {
  std::exception_ptr thrown;
  {
    Vel::Expect expect(1);
    try {
      throw Vel::InternalException("inside", 1u << 1);
    } catch (...) {
      thrown = std::current_exception();
    }
  }
  try {
    std::rethrow_exception(thrown);
  } catch (const Vel::InternalException& e) {
    EXPECT_TRUE(e.wasExpected());
  }
  EXPECT_FALSE(Vel::InternalException("outside", 1u << 1).wasExpected());
}

}  // namespace
