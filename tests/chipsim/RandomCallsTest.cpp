#include <map>
#include <set>
#include <thread>

#include "ChipFixture.h"
#include "RandomCaller.h"

namespace chipsim_test {
namespace {

class RandomCallsTest : public ChipFixture {
 protected:
  void SetUp() override {
    chipsim_config config = smallConfig();
    config.entries = 32;
    config.members = 16;
    config.groups = 6;
    config.max_group_size = 4;
    config.log_lines = 128;
    ASSERT_EQ(pd.configure(&config), 0);
    ASSERT_EQ(pd.attach(nullptr), 0);
  }
};

TEST_F(RandomCallsTest, NoCallBreaksTheChip) {
  constexpr int kCalls = 300000;
  RandomCaller caller(20240601);
  std::map<pipe_status, int> statuses;
  for (int call = 1; call <= kCalls; ++call) {
    ++statuses[caller.callOne()];
    if (call % 25000 == 0) {
      ASSERT_EQ(fault(), "") << "after " << call << " calls";
    }
  }
  std::set<pipe_status> seen;
  for (const auto& [status, count] : statuses) {
    seen.insert(status);
  }
  // Every status the chip gives, and no other.
  EXPECT_EQ(seen, (std::set<pipe_status>{0, 3, 4, 6, 9, 16}));
}

TEST_F(RandomCallsTest, ThreadsCallingAtOnceLeaveACoherentChip) {
  std::vector<RandomCaller> callers;
  for (uint32_t seed = 1; seed <= 4; ++seed) {
    callers.emplace_back(seed);
  }
  std::vector<std::thread> threads;
  for (RandomCaller& caller : callers) {
    threads.emplace_back([&caller] {
      for (int call = 0; call < 20000; ++call) {
        caller.callOne();
      }
    });
  }
  int64_t calls = 0;
  for (std::size_t i = 0; i < threads.size(); ++i) {
    threads[i].join();
    calls += callers[i].pdCalls();
  }
  EXPECT_EQ(totalCalls(), calls);  // not one call lost
}

}  // namespace
}  // namespace chipsim_test
