#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Allocate.h"
#include "Vel/Ptr.h"

// Named (not anonymous) so that the readable type names are known to the tests.
namespace AllocateTestTypes {

class Widget : public Vel::PtrInterface {
 public:
  Widget(int number, std::string label) : number(number), label(std::move(label)) {}
  int number;
  std::string label;
};

template <class T>
class Box : public Vel::PtrInterface {};

class Base : public Vel::PtrInterface {};
class Derived : public Base {};

class Throwing : public Vel::PtrInterface {
 public:
  Throwing() { throw std::runtime_error("no Throwing today"); }
};

class Unused : public Vel::PtrInterface {};

}  // namespace AllocateTestTypes

namespace {

using namespace AllocateTestTypes;
using Vel::AllocTrackTypeInfo;

TEST(AllocateTest, ConstructsWithTheArgumentsAndHandsTheFirstReference) {
  Vel::Ptr<Widget> widget = Vel::allocate<Widget>(7, "seven");
  EXPECT_EQ(widget->number, 7);
  EXPECT_EQ(widget->label, "seven");
  EXPECT_EQ(widget->references(), 1u);
  EXPECT_EQ(widget->velAllocTrack(), &AllocTrackTypeInfo::of<Widget>());
}

TEST(AllocateTest, CountsLiveObjectsUpAndDownAndAllocationsInAll) {
  AllocTrackTypeInfo& record = AllocTrackTypeInfo::of<Widget>();
  const std::size_t totalBefore = record.totalAllocated();
  ASSERT_EQ(record.liveObjects(), 0u);
  {
    Vel::Ptr<Widget> first = Vel::allocate<Widget>(1, "one");
    EXPECT_EQ(record.liveObjects(), 1u);
    {
      Vel::Ptr<Widget> second = Vel::allocate<Widget>(2, "two");
      Vel::Ptr<Widget> copy = second;
      EXPECT_EQ(record.liveObjects(), 2u);
    }
    EXPECT_EQ(record.liveObjects(), 1u);
    EXPECT_EQ(record.totalAllocated(), totalBefore + 2);
  }
  EXPECT_EQ(record.liveObjects(), 0u);
  EXPECT_EQ(record.totalAllocated(), totalBefore + 2);
}

TEST(AllocateTest, RecordsAreFoundByReadableTypeName) {
  AllocTrackTypeInfo& widgets = AllocTrackTypeInfo::of<Widget>();
  AllocTrackTypeInfo& boxes = AllocTrackTypeInfo::of<Box<int>>();
  EXPECT_EQ(widgets.typeName(), "AllocateTestTypes::Widget");
  EXPECT_EQ(boxes.typeName(), "AllocateTestTypes::Box<int>");
  EXPECT_EQ(AllocTrackTypeInfo::find("AllocateTestTypes::Widget"), &widgets);
  EXPECT_EQ(AllocTrackTypeInfo::find("AllocateTestTypes::Box<int>"), &boxes);
  EXPECT_EQ(AllocTrackTypeInfo::find("AllocateTestTypes::NoSuchType"), nullptr);
  EXPECT_EQ(AllocTrackTypeInfo::find("Widget"), nullptr);

  const std::vector<const AllocTrackTypeInfo*> all = AllocTrackTypeInfo::all();
  EXPECT_NE(std::find(all.begin(), all.end(), &widgets), all.end());
  EXPECT_NE(std::find(all.begin(), all.end(), &boxes), all.end());
}

TEST(AllocateTest, LiveObjectsOfAllTypesGoBackToWhereTheyWere) {
  const std::size_t before = AllocTrackTypeInfo::liveObjectsOfAllTypes();
  {
    Vel::Ptr<Widget> widget = Vel::allocate<Widget>(1, "one");
    Vel::Ptr<Box<int>> box = Vel::allocate<Box<int>>();
    Vel::Ptr<Box<char>> otherBox = Vel::allocate<Box<char>>();
    EXPECT_EQ(AllocTrackTypeInfo::liveObjectsOfAllTypes(), before + 3);
    EXPECT_EQ(AllocTrackTypeInfo::of<Box<char>>().liveObjects(), 1u);
  }
  EXPECT_EQ(AllocTrackTypeInfo::liveObjectsOfAllTypes(), before);
  EXPECT_EQ(AllocTrackTypeInfo::of<Widget>().liveObjects(), 0u);
  EXPECT_EQ(AllocTrackTypeInfo::of<Box<int>>().liveObjects(), 0u);
  EXPECT_EQ(AllocTrackTypeInfo::of<Box<char>>().liveObjects(), 0u);
}

TEST(AllocateTest, ThrowingConstructorLeavesNothingCounted) {
  EXPECT_THROW(Vel::allocate<Throwing>(), std::runtime_error);
  EXPECT_EQ(AllocTrackTypeInfo::of<Throwing>().liveObjects(), 0u);
  EXPECT_EQ(AllocTrackTypeInfo::of<Throwing>().totalAllocated(), 0u);
}

TEST(AllocateTest, ReleaseThroughABaseCreditsTheAllocatedType) {
  Vel::Ptr<Base> base = Vel::allocate<Derived>();
  EXPECT_EQ(AllocTrackTypeInfo::of<Derived>().liveObjects(), 1u);
  EXPECT_EQ(AllocTrackTypeInfo::of<Base>().liveObjects(), 0u);
  base = nullptr;
  EXPECT_EQ(AllocTrackTypeInfo::of<Derived>().liveObjects(), 0u);
  EXPECT_EQ(AllocTrackTypeInfo::of<Derived>().totalAllocated(), 1u);
}

TEST(AllocateTest, ObjectsMadeOtherwiseAreNotTracked) {
  Widget onTheStack(3, "stack");
  EXPECT_EQ(onTheStack.velAllocTrack(), nullptr);
  EXPECT_EQ(AllocTrackTypeInfo::of<Widget>().liveObjects(), 0u);
}

TEST(AllocateTest, RecordOfATypeNeverAllocatedCountsNothing) {
  const AllocTrackTypeInfo& record = AllocTrackTypeInfo::of<Unused>();
  EXPECT_EQ(record.liveObjects(), 0u);
  EXPECT_EQ(record.totalAllocated(), 0u);
  EXPECT_EQ(AllocTrackTypeInfo::find("AllocateTestTypes::Unused"), &record);
}

TEST(AllocateTest, CountsStayExactWhenThreadsAllocate) {
  constexpr int threads = 4;
  constexpr int perThread = 5000;
  AllocTrackTypeInfo& record = AllocTrackTypeInfo::of<Box<long>>();
  const std::size_t totalBefore = record.totalAllocated();
  std::vector<std::thread> workers;
  for (int t = 0; t < threads; ++t) {
    workers.emplace_back([] {
      for (int i = 0; i < perThread; ++i)
        Vel::allocate<Box<long>>();
    });
  }
  for (std::thread& worker : workers)
    worker.join();
  EXPECT_EQ(record.totalAllocated(), totalBefore + threads * perThread);
  EXPECT_EQ(record.liveObjects(), 0u);
}

}  // namespace
