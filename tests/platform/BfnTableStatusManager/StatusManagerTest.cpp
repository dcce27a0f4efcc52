#include "BfnTableStatusManager/StatusManager.h"

#include <gtest/gtest.h>

#include "Vel/Allocate.h"

namespace BfnTableStatusManager {
namespace {

class StatusManagerTest : public testing::Test {
 protected:
  void TearDown() override {
    manager = nullptr;
    match = nullptr;
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<StatusManager>().liveObjects(), 0u);
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<BfnTable::MatchSpecBase>().liveObjects(), 0u);
  }

  Vel::Ptr<StatusManager> manager = Vel::allocate<StatusManager>();
  Vel::Ptr<const BfnTable::MatchSpecBase> match = Vel::allocate<BfnTable::MatchSpecBase>();
};

TEST_F(StatusManagerTest, StartsWithNoCalls) {
  EXPECT_TRUE(manager->calls().empty());
}

TEST_F(StatusManagerTest, RecordsEveryOperationInOrderWithItsArgument) {
  manager->initStatus(match);
  manager->initAdtStatus(7);
  manager->initSelGroupStatus(3);
  manager->resyncStatus();
  manager->resyncSelAdtStatus();
  manager->initAdtStatus(0);
  const std::vector<StatusManagerCall> expected = {
      {"initStatus", match, 0},           {"initAdtStatus", nullptr, 7},
      {"initSelGroupStatus", nullptr, 3}, {"resyncStatus", nullptr, 0},
      {"resyncSelAdtStatus", nullptr, 0}, {"initAdtStatus", nullptr, 0}};
  EXPECT_EQ(manager->calls(), expected);
}

TEST_F(StatusManagerTest, CallsReadAsTextLines) {
  manager->initStatus(match);
  manager->initAdtStatus(7);
  manager->initSelGroupStatus(3);
  manager->resyncStatus();
  manager->resyncSelAdtStatus();
  std::vector<Vel::String> lines;
  for (const auto& call : manager->calls())
    lines.push_back(call.text());
  EXPECT_EQ(lines,
            (std::vector<Vel::String>{"initStatus", "initAdtStatus 7", "initSelGroupStatus 3",
                                      "resyncStatus", "resyncSelAdtStatus"}));
}

TEST_F(StatusManagerTest, InitStatusKeepsTheVeryMatchObject) {
  manager->initStatus(match);
  ASSERT_EQ(manager->calls().size(), 1u);
  EXPECT_EQ(manager->calls()[0].match.get(), match.get());
  EXPECT_EQ(match->references(), 2u);
}

TEST_F(StatusManagerTest, ClearForgetsTheCallsAndTheirMatches) {
  manager->initStatus(match);
  manager->resyncStatus();
  manager->clear();
  EXPECT_TRUE(manager->calls().empty());
  EXPECT_EQ(match->references(), 1u);
  manager->initAdtStatus(2);
  EXPECT_EQ(manager->calls(), (std::vector<StatusManagerCall>{{"initAdtStatus", nullptr, 2}}));
}

// A host's status service sees the calls through the virtual operations.
class CountingStatusManager : public StatusManager {
 public:
  void initStatus(const Vel::Ptr<const BfnTable::MatchSpecBase>& match) override {
    ++initStatusCalls;
    StatusManager::initStatus(match);
  }
  int initStatusCalls = 0;
};

TEST_F(StatusManagerTest, OperationsAreVirtual) {
  auto counting = Vel::allocate<CountingStatusManager>();
  Vel::Ptr<StatusManager> base = counting;
  base->initStatus(match);
  EXPECT_EQ(counting->initStatusCalls, 1);
  EXPECT_EQ(base->calls().size(), 1u);
}

}  // namespace
}  // namespace BfnTableStatusManager
