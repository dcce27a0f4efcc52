#include <gtest/gtest.h>

#include <functional>
#include <utility>

#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Allocate.h"
#include "Vel/Ptr.h"

namespace {

class Counted : public Vel::PtrInterface {
 public:
  int value = 0;
};

class Base : public Vel::PtrInterface {};
class Derived : public Base {};
class Other : public Base {};

template <class T>
std::size_t live() {
  return Vel::AllocTrackTypeInfo::of<T>().liveObjects();
}

// Every test leaves no object of its types alive.
class PtrTest : public testing::Test {
 protected:
  void TearDown() override {
    EXPECT_EQ(live<Counted>(), 0u);
    EXPECT_EQ(live<Derived>(), 0u);
  }
};

TEST_F(PtrTest, CopyAddsAndReleaseDropsOneReference) {
  Vel::Ptr<Counted> a = Vel::allocate<Counted>();
  EXPECT_EQ(a->references(), 1u);
  {
    Vel::Ptr<Counted> b = a;
    EXPECT_EQ(a->references(), 2u);
  }
  EXPECT_EQ(a->references(), 1u);
}

TEST_F(PtrTest, EmptyPointerHoldsNothing) {
  Vel::Ptr<Counted> empty;
  Vel::Ptr<Counted> null = nullptr;
  EXPECT_EQ(empty.get(), nullptr);
  EXPECT_FALSE(empty);
  EXPECT_TRUE(!null);
  EXPECT_TRUE(empty == nullptr);
  EXPECT_TRUE(empty == null);
  Vel::Ptr<Counted> copy = empty;
  EXPECT_EQ(copy.get(), nullptr);
}

TEST_F(PtrTest, ObjectDiesWithItsLastReference) {
  Vel::Ptr<Counted> a = Vel::allocate<Counted>();
  Vel::Ptr<Counted> b = a;
  EXPECT_EQ(live<Counted>(), 1u);
  a = nullptr;
  EXPECT_EQ(live<Counted>(), 1u);
  EXPECT_EQ(b->references(), 1u);
  b = nullptr;
  EXPECT_EQ(live<Counted>(), 0u);
}

TEST_F(PtrTest, MoveHandsTheReferenceOver) {
  Vel::Ptr<Counted> a = Vel::allocate<Counted>();
  Counted* raw = a.get();
  Vel::Ptr<Counted> b = std::move(a);
  EXPECT_EQ(a.get(), nullptr);
  EXPECT_EQ(b.get(), raw);
  EXPECT_EQ(raw->references(), 1u);

  Vel::Ptr<Counted> c;
  c = std::move(b);
  EXPECT_EQ(b.get(), nullptr);
  EXPECT_EQ(c.get(), raw);
  EXPECT_EQ(raw->references(), 1u);
}

TEST_F(PtrTest, AssignmentReleasesTheOldObjectAndTakesTheNew) {
  Vel::Ptr<Counted> a = Vel::allocate<Counted>();
  Vel::Ptr<Counted> b = Vel::allocate<Counted>();
  EXPECT_EQ(live<Counted>(), 2u);
  b = a;
  EXPECT_EQ(live<Counted>(), 1u);
  EXPECT_EQ(b.get(), a.get());
  EXPECT_EQ(a->references(), 2u);

  Vel::Ptr<Counted> c = Vel::allocate<Counted>();
  b = std::move(c);
  EXPECT_EQ(live<Counted>(), 2u);
  EXPECT_EQ(a->references(), 1u);
  EXPECT_EQ(b->references(), 1u);
  EXPECT_EQ(c.get(), nullptr);
}

TEST_F(PtrTest, AssigningAPointerToItselfKeepsTheCount) {
  Vel::Ptr<Counted> a = Vel::allocate<Counted>();
  Vel::Ptr<Counted>& alias = a;
  a = alias;
  EXPECT_EQ(a->references(), 1u);
  a = std::move(alias);
  ASSERT_NE(a.get(), nullptr);
  EXPECT_EQ(a->references(), 1u);
  EXPECT_EQ(live<Counted>(), 1u);
}

TEST_F(PtrTest, ConvertsToABaseAndToConst) {
  Vel::Ptr<Derived> derived = Vel::allocate<Derived>();
  Vel::Ptr<Base> base = derived;
  EXPECT_EQ(base.get(), derived.get());
  EXPECT_EQ(derived->references(), 2u);
  Vel::Ptr<const Derived> constant = derived;
  EXPECT_EQ(derived->references(), 3u);

  Vel::Ptr<Base> moved = std::move(derived);
  EXPECT_EQ(derived.get(), nullptr);
  EXPECT_EQ(moved->references(), 3u);
}

TEST_F(PtrTest, PtrCastNarrowsOrGivesNull) {
  Vel::Ptr<Base> base = Vel::allocate<Derived>();
  Vel::Ptr<Derived> derived = Vel::ptr_cast<Derived>(base);
  ASSERT_NE(derived.get(), nullptr);
  EXPECT_EQ(derived.get(), base.get());
  EXPECT_EQ(base->references(), 2u);

  Vel::Ptr<Other> other = Vel::ptr_cast<Other>(base);
  EXPECT_EQ(other.get(), nullptr);
  EXPECT_EQ(base->references(), 2u);

  EXPECT_EQ(Vel::ptr_cast<Derived>(Vel::Ptr<Base>()).get(), nullptr);
}

TEST_F(PtrTest, StaticAndConstCastsShareTheObject) {
  Vel::Ptr<Base> base = Vel::allocate<Derived>();
  Vel::Ptr<Derived> derived = Vel::static_ptr_cast<Derived>(base);
  EXPECT_EQ(derived.get(), base.get());
  Vel::Ptr<const Base> constant = base;
  Vel::Ptr<Base> mutableAgain = Vel::const_ptr_cast<Base>(constant);
  EXPECT_EQ(mutableAgain.get(), base.get());
  EXPECT_EQ(base->references(), 4u);
}

TEST_F(PtrTest, ConstPointerStillCountsAndReachesTheObject) {
  Vel::Ptr<Counted> a = Vel::allocate<Counted>();
  {
    const Vel::Ptr<Counted> fixed = a;
    EXPECT_EQ(a->references(), 2u);
    fixed->value = 5;  // constness of the pointer, not of the object
    Vel::Ptr<Counted> copy = fixed;
    EXPECT_EQ(a->references(), 3u);
    EXPECT_EQ((*fixed).value, 5);
  }
  EXPECT_EQ(a->references(), 1u);
  EXPECT_EQ(a->value, 5);
}

TEST_F(PtrTest, ComparesAndHashesByObject) {
  Vel::Ptr<Counted> a = Vel::allocate<Counted>();
  Vel::Ptr<Counted> sameAsA = a;
  Vel::Ptr<Counted> b = Vel::allocate<Counted>();
  EXPECT_TRUE(a == sameAsA);
  EXPECT_FALSE(a == b);
  EXPECT_TRUE(a != b);
  EXPECT_NE(a < b, b < a);
  EXPECT_FALSE(a < sameAsA);
  EXPECT_EQ(std::hash<Vel::Ptr<Counted>>()(a), std::hash<Counted*>()(a.get()));
}

TEST_F(PtrTest, ReleaseGivesUpTheReferenceWithoutDroppingIt) {
  Vel::Ptr<Counted> a = Vel::allocate<Counted>();
  Counted* raw = a.release();
  EXPECT_EQ(a.get(), nullptr);
  EXPECT_EQ(raw->references(), 1u);
  EXPECT_EQ(live<Counted>(), 1u);
  raw->deleteRef();
  EXPECT_EQ(live<Counted>(), 0u);
}

TEST_F(PtrTest, SwapExchangesObjectsAndKeepsCounts) {
  Vel::Ptr<Counted> a = Vel::allocate<Counted>();
  Vel::Ptr<Counted> b;
  Counted* raw = a.get();
  a.swap(b);
  EXPECT_EQ(a.get(), nullptr);
  EXPECT_EQ(b.get(), raw);
  EXPECT_EQ(raw->references(), 1u);
}

}  // namespace
