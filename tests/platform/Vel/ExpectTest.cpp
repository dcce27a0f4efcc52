#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "Vel/Expect.h"
#include "Vel/RangeException.h"

namespace {

using Vel::ExceptionIdSet;
using Vel::Expect;

constexpr ExceptionIdSet bit(unsigned id) {
  return ExceptionIdSet{1} << id;
}

// Every test starts and ends with no scope open on its thread.
class ExpectTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(Expect::depth(), 0u); }
  void TearDown() override {
    EXPECT_EQ(Expect::depth(), 0u);
    EXPECT_EQ(Expect::expected(), 0u);
  }
};

TEST_F(ExpectTest, NothingIsExpectedOutsideAScope) {
  EXPECT_EQ(Expect::expected(), 0u);
  EXPECT_FALSE(Expect::isExpected(0));
  EXPECT_FALSE(Expect::isExpected(1));
  EXPECT_FALSE(Expect::isExpected(63));
}

TEST_F(ExpectTest, OneScopeExpectsItsId) {
  Expect expect(1);
  EXPECT_EQ(expect.exceptionId(), 1u);
  EXPECT_EQ(Expect::depth(), 1u);
  EXPECT_TRUE(Expect::isExpected(1));
  EXPECT_FALSE(Expect::isExpected(0));
  EXPECT_FALSE(Expect::isExpected(2));
  EXPECT_EQ(Expect::expected(), bit(1));
}

TEST_F(ExpectTest, ClosingAScopeEndsItsExpectation) {
  { Expect expect(1); }
  EXPECT_FALSE(Expect::isExpected(1));
}

TEST_F(ExpectTest, SameIdNestedStaysExpectedUntilTheOuterScopeCloses) {
  Expect outer(1);
  {
    Expect inner(1);
    EXPECT_EQ(Expect::depth(), 2u);
    EXPECT_EQ(Expect::expected(), bit(1));
  }
  EXPECT_EQ(Expect::depth(), 1u);
  EXPECT_TRUE(Expect::isExpected(1));
  EXPECT_EQ(Expect::expected(), bit(1));
}

TEST_F(ExpectTest, DifferentIdsNestedMakeTheUnion) {
  Expect first(1);
  {
    Expect second(5);
    {
      Expect third(63);
      EXPECT_EQ(Expect::depth(), 3u);
      EXPECT_EQ(Expect::expected(), bit(1) | bit(5) | bit(63));
    }
    EXPECT_EQ(Expect::expected(), bit(1) | bit(5));
    {
      Expect zero(0);
      EXPECT_EQ(Expect::expected(), bit(0) | bit(1) | bit(5));
    }
  }
  EXPECT_EQ(Expect::depth(), 1u);
  EXPECT_EQ(Expect::expected(), bit(1));
}

TEST_F(ExpectTest, IdsAboveSixtyThreeAreRefused) {
  EXPECT_EQ(Expect::maxId, 63u);
  for (unsigned id : {64u, 1000u}) {
    try {
      Expect expect(id);
      ADD_FAILURE() << "id " << id << " accepted";
    } catch (const Vel::RangeException& e) {
      EXPECT_EQ(e.message(), "exception id " + std::to_string(id) + " is not in 0..63");
    }
  }
  EXPECT_EQ(Expect::depth(), 0u);
  EXPECT_FALSE(Expect::isExpected(64));
}

TEST_F(ExpectTest, ScopesOfEachThreadAreItsOwn) {
  Expect mine(3);
  std::promise<void> opened;
  std::promise<void> checked;
  ExceptionIdSet seenByThread = ~ExceptionIdSet{0};
  unsigned depthOfThread = 99;
  std::thread other([&] {
    seenByThread = Expect::expected();
    Expect theirs(4);
    depthOfThread = Expect::depth();
    opened.set_value();
    checked.get_future().wait();
  });
  opened.get_future().wait();
  EXPECT_EQ(Expect::expected(), bit(3));
  EXPECT_EQ(Expect::depth(), 1u);
  EXPECT_FALSE(Expect::isExpected(4));
  EXPECT_FALSE(Vel::InternalException("m", bit(4)).wasExpected());
  checked.set_value();
  other.join();
  EXPECT_EQ(seenByThread, 0u);
  EXPECT_EQ(depthOfThread, 1u);
}

}  // namespace
