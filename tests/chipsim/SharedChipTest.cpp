#include <signal.h>
#include <unistd.h>

#include <random>

#include "ChipFixture.h"
#include "NamedChip.h"
#include "Processes.h"
#include "RandomCaller.h"

namespace chipsim_test {
namespace {

class SharedChipTest : public ChipFixture {
 protected:
  void TearDown() override {
    ChipFixture::TearDown();
    pd.attach(nullptr);
  }

  // A pipe that a child writes one byte to when it is ready.
  struct Signal {
    Signal() { EXPECT_EQ(pipe(fds), 0); }
    ~Signal() {
      close(fds[0]);
      close(fds[1]);
    }
    void raise() const {
      char byte = 1;
      (void)!write(fds[1], &byte, 1);
    }
    bool wait() const {
      char byte = 0;
      return read(fds[0], &byte, 1) == 1;
    }
    int fds[2] = {-1, -1};
  };

  static void raiseSignal(void* signal) { static_cast<Signal*>(signal)->raise(); }
};

TEST_F(SharedChipTest, TwoProcessesShareOneNamedChip) {
  NamedChip chip("shared");
  ASSERT_EQ(pd.attach(chip.c_str()), 0);
  uint32_t member = addMember(7);
  pid_t child = runChild([&] {
    // A mapping of its own, not the one inherited from the parent.
    if (pd.attach(nullptr) != 0 || pd.attach(chip.c_str()) != 0) {
      return 1;
    }
    if (pd.members() != 1) {
      return 2;
    }
    MatchSpec match{5};
    uint32_t entry = 0;
    return pd.addEntry(9, kAllPipes, &match, member, &entry) == 0 ? 0 : 3;
  });
  ASSERT_EQ(waitChild(child), 0);
  EXPECT_EQ(pd.entries(), 1u);
  EXPECT_EQ(lastLine(),
            kAddEntry + "(sess=9, dev=0, pipe=0xffff, mirror_session=5, mbr=1) = 0 entry=1");
  uint16_t selector = 0;
  EXPECT_EQ(pd.lookup(5, 0, &selector), 0);
  EXPECT_EQ(selector, 7);
}

TEST_F(SharedChipTest, ProcessesAttachingAtOnceMakeOneChip) {
  NamedChip chip("together");
  std::vector<pid_t> children;
  for (int i = 0; i < 4; ++i) {
    children.push_back(runChild([&] {
      ActionSpec spec{static_cast<uint16_t>(i)};
      uint32_t member = 0;
      return pd.attach(chip.c_str()) == 0 && pd.addMember(1, kAllPipes, &spec, &member) == 0 ? 0
                                                                                             : 1;
    }));
  }
  for (pid_t child : children) {
    EXPECT_EQ(waitChild(child), 0);
  }
  ASSERT_EQ(pd.attachExisting(chip.c_str()), 0);
  EXPECT_EQ(pd.members(), 4u);
  EXPECT_EQ(pd.calls(kAddMember.c_str()), 4);
}

TEST_F(SharedChipTest, AProcessKilledHoldingTheLockLeavesTheChipUsable) {
  NamedChip chip("killed");
  ASSERT_EQ(pd.attach(chip.c_str()), 0);
  addMember(7);
  Signal locked;
  pid_t holder = runChild([&] {
    pd.holdLockForTest(600000, raiseSignal, &locked);
    return 0;
  });
  ASSERT_TRUE(locked.wait());
  ASSERT_EQ(kill(holder, SIGKILL), 0);
  ASSERT_EQ(waitChild(holder), -SIGKILL);
  pid_t next = runChild([&] {
    alarm(60);  // a chip left locked would hang here: fail instead
    if (pd.attach(nullptr) != 0 || pd.attach(chip.c_str()) != 0) {
      return 1;
    }
    ActionSpec spec{8};
    uint32_t member = 0;
    return pd.addMember(1, kAllPipes, &spec, &member) == 0 ? 0 : 2;
  });
  ASSERT_EQ(waitChild(next), 0);
  EXPECT_EQ(pd.members(), 2u);
  EXPECT_EQ(pd.entries(), 0u);  // the holder's half-done change was taken back
}

TEST_F(SharedChipTest, ProcessesKilledInTheMiddleOfCallsLeaveACoherentChip) {
  NamedChip chip("midcall");
  ASSERT_EQ(pd.attach(chip.c_str()), 0);
  std::mt19937 random(7);
  for (uint32_t round = 0; round < 20; ++round) {
    Signal started;
    pid_t worker = runChild([&] {
      RandomCaller caller(round);
      started.raise();
      for (;;) {
        caller.callOne();
      }
      return 0;
    });
    ASSERT_TRUE(started.wait());
    usleep(std::uniform_int_distribution<useconds_t>(0, 3000)(random));
    ASSERT_EQ(kill(worker, SIGKILL), 0);
    ASSERT_EQ(waitChild(worker), -SIGKILL);
    ASSERT_EQ(fault(), "") << "round " << round;
  }
  EXPECT_GT(pd.calls(kAddMember.c_str()), 0);
}

}  // namespace
}  // namespace chipsim_test
