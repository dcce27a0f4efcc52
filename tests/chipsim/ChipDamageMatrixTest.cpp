// A chip's memory damaged at random places, from one byte to a page of them,
// as a stray writer could, under every way into it: attaching it, every PD
// call, the control API's checks, and the tool's dump, log and forward. Each
// case runs in a child process with a deadline and must end with each call
// answered (a status, the tool's output or its refusal), never with a signal
// or a hang.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "ChipFixture.h"
#include "NamedChip.h"
#include "ToolRun.h"

namespace chipsim_test {
namespace {

// How long one case may take before it counts as a hang.
constexpr unsigned kDeadlineSeconds = 20;

// `bytes` random bytes written at random places of the chip's memory.
struct RandomDamage {
  std::size_t bytes;
  unsigned seed;
};

void PrintTo(const RandomDamage& damage, std::ostream* out) {
  *out << damage.bytes << " bytes, seed " << damage.seed;
}

// Runs `operation` with a deadline and exits 0 once it returns; a signal or
// the deadline ends the process otherwise, which EXPECT_EXIT reports.
[[noreturn]] void runToEnd(const std::function<void()>& operation) {
  alarm(kDeadlineSeconds);
  operation();
  std::fflush(nullptr);
  _exit(0);
}

class ChipDamageMatrixTest : public ChipFixture, public testing::WithParamInterface<RandomDamage> {
 protected:
  // A chip of the small make-up holding members, a group with a member and
  // entries on both, then damaged from outside.
  void SetUp() override {
    ChipFixture::SetUp();
    ASSERT_EQ(pd.attach(chip.name().c_str()), 0);
    addMembersAGroupAndEntries();
    ASSERT_EQ(pd.attach(nullptr), 0);
    damage();
  }
  void TearDown() override {
    pd.attach(nullptr);
    ChipFixture::TearDown();
  }

  void damage() const {
    const std::string file = "/dev/shm/" + chip.name().substr(chip.name().find_first_not_of('/'));
    const int fd = open(file.c_str(), O_RDWR);
    ASSERT_GE(fd, 0) << file;
    struct stat status {};
    ASSERT_EQ(fstat(fd, &status), 0);
    std::mt19937 random(GetParam().seed);
    std::uniform_int_distribution<off_t> place(0, status.st_size - 1);
    for (std::size_t i = 0; i < GetParam().bytes; ++i) {
      const auto byte = static_cast<unsigned char>(random());
      ASSERT_EQ(pwrite(fd, &byte, 1, place(random)), 1);
    }
    close(fd);
  }

  // Every PD function once, on handles a chip of this make-up gives out.
  void callEveryPdFunction() const {
    MatchSpec match{5};
    ActionSpec action{9};
    uint32_t handle = 0;
    bool isGroup = false;
    pd.addEntry(1, kAllPipes, &match, 1, &handle);
    pd.addEntryWithSelector(1, kAllPipes, &match, 1, &handle);
    pd.modifyEntry(1, 0, 1, 2);
    pd.modifyEntryWithSelector(1, 0, 2, 1);
    pd.setDefaultEntry(1, kAllPipes, 1, &handle);
    pd.setDefaultEntryWithSelector(1, kAllPipes, 1, &handle);
    pd.tableDelete(1, 0, 1);
    pd.tableResetDefaultEntry(1, kAllPipes);
    pd.setProperty(1, 0, P4_PD_TABLE_PROPERTY_ENTRY_SCOPE, P4_PD_ENTRY_SCOPE_SINGLE_PIPE);
    pd.getEntry(1, 0, 2, false, &match, &handle, &isGroup);
    pd.matchSpecToEntryHdl(1, kAllPipes, &match, &handle);
    pd.addMember(1, kAllPipes, &action, &handle);
    pd.modifyMember(1, 0, 1, &action);
    pd.delMember(1, 0, 2);
    pd.createGroup(1, kAllPipes, 2, &handle);
    pd.addMemberToGroup(1, 0, 1, 2);
    pd.groupMemberStateSet(1, 0, 1, 1, P4_PD_GROUP_MEMBER_INACTIVE);
    pd.delMemberFromGroup(1, 0, 1, 1);
    pd.delGroup(1, 0, 2);
    for (pipe_status status = pd.getFirstMember(1, 0, &handle); status == 0;
         status = pd.getNextMember(1, 0, handle, &handle)) {
    }
    for (pipe_status status = pd.getFirstGroup(1, 0, &handle); status == 0;
         status = pd.getNextGroup(1, 0, handle, &handle)) {
    }
  }

  void callTheControlApi() const {
    const char* fault = nullptr;
    pd.examine(&fault);
    pd.check();
    uint16_t selector = 0;
    pd.lookup(5, 0, &selector);
    pd.lookup(6, 1, &selector);
    pd.entries();
    pd.members();
    pd.groups();
    for (uint32_t line = 0; line < pd.logCount(); ++line)
      pd.logLine(line);
    if (FILE* nowhere = std::fopen("/dev/null", "w")) {
      pd.dump(nowhere);
      std::fclose(nowhere);
    }
  }

  NamedChip chip{"damage-matrix"};
};

TEST_P(ChipDamageMatrixTest, EveryCallOfAnAttachedProcessIsAnswered) {
  EXPECT_EXIT(runToEnd([this] {
                if (pd.attachExisting(chip.name().c_str()) != 0)
                  return;
                callEveryPdFunction();
                callTheControlApi();
              }),
              testing::ExitedWithCode(0), "");
}

TEST_P(ChipDamageMatrixTest, TheToolAnswersOrRefusesTheChipWithAMessage) {
  for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{
           {"dump"}, {"log"}, {"forward", "5", "0"}, {"forward", "6", "1"}}) {
    SCOPED_TRACE(command.front());
    EXPECT_EXIT(runToEnd([&] {
                  std::vector<std::string> arguments{"--chip", chip.name()};
                  arguments.insert(arguments.end(), command.begin(), command.end());
                  const ToolRun run = ToolRun::of(arguments);
                  // A signal gives a negative status; a refusal says why.
                  if (run.exitStatus < 0 || (run.exitStatus != 0 && run.err.empty()))
                    std::abort();
                }),
                testing::ExitedWithCode(0), "");
  }
}

std::vector<RandomDamage> everyDamage() {
  std::vector<RandomDamage> damages;
  for (const std::size_t bytes : {1, 8, 64, 512, 4096}) {
    for (unsigned seed = 1; seed <= 6; ++seed)
      damages.push_back({bytes, seed});
  }
  return damages;
}

INSTANTIATE_TEST_SUITE_P(RandomBytes, ChipDamageMatrixTest, testing::ValuesIn(everyDamage()),
                         [](const testing::TestParamInfo<RandomDamage>& info) {
                           return std::to_string(info.param.bytes) + "BytesSeed" +
                                  std::to_string(info.param.seed);
                         });

}  // namespace
}  // namespace chipsim_test
