#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <functional>
#include <string>

#include "ChipFixture.h"
#include "DamagedChip.h"
#include "NamedChip.h"
#include "Pd/PipeStatus.h"
#include "Processes.h"
#include "ToolRun.h"

namespace chipsim_test {
namespace {

// A status a PD call of a damaged chip gives.
constexpr int kUnexpected = 15;

// One way a chip's memory can be damaged from outside, and the fault the
// chip then names.
struct Damage {
  const char* name;
  std::function<void(DamagedChip&)> damage;
  std::string fault;
};

void PrintTo(const Damage& damage, std::ostream* out) {
  *out << damage.name;
}

// A chip of the small make-up (4 entries, 4 members, 2 groups of at most 3)
// holding member 1 (selector 7) and member 2, group 1 holding member 1,
// entry 1 of session 5 on member 1 and entry 2 of session 6 on group 1.
class DamageTest : public ChipFixture {
 protected:
  void SetUp() override {
    ChipFixture::SetUp();
    ASSERT_EQ(pd.attach(chip.c_str()), 0);
    addMembersAGroupAndEntries();
  }
  void TearDown() override {
    // The damaged chip is left alone; the fixture's check looks at a new one.
    pd.attach(nullptr);
    ChipFixture::TearDown();
  }

  ToolRun tool(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), {"--chip", chip.name()});
    return ToolRun::of(arguments);
  }

  std::string damagedText(const std::string& fault) const {
    return "chipsim: chip '" + chip.name() + "' is damaged: " + fault + "\n";
  }

  // Every command of the tool that reads the chip refuses it with `fault`.
  void expectToolRefuses(const std::string& fault) const {
    for (const std::vector<std::string>& command :
         std::vector<std::vector<std::string>>{{"dump"},
                                               {"log"},
                                               {"forward", "5", "0"},
                                               {"fault", kAddEntry, "3"},
                                               {"traffic", "--seconds", "1"}}) {
      SCOPED_TRACE(command.front());
      const ToolRun run = tool(command);
      EXPECT_EQ(run.exitStatus, 1);
      EXPECT_EQ(run.out, "");
      EXPECT_EQ(run.err, damagedText(fault));
    }
  }

  NamedChip chip{"damage"};
};

// Damage to the header and counts: every call sees it, in constant time.
class HeaderDamageTest : public DamageTest, public testing::WithParamInterface<Damage> {};

TEST_P(HeaderDamageTest, EveryCallAndTheToolRefuseTheChipNamingTheFault) {
  {
    DamagedChip memory(chip.name());
    GetParam().damage(memory);
  }
  expectToolRefuses(GetParam().fault);
  const char* fault = nullptr;
  EXPECT_EQ(pd.examine(&fault), EUCLEAN);
  EXPECT_STREQ(fault, GetParam().fault.c_str());
  ActionSpec spec{9};
  uint32_t handle = 0;
  EXPECT_EQ(pd.addMember(1, kAllPipes, &spec, &handle), kUnexpected);
  EXPECT_STREQ(pd.lastFault(), GetParam().fault.c_str());
  uint16_t selector = 0;
  EXPECT_EQ(pd.lookup(5, 0, &selector), EUCLEAN);
}

const uint64_t kHugeCount = uint64_t{1} << 63;

INSTANTIATE_TEST_SUITE_P(
    Damages, HeaderDamageTest,
    testing::Values(Damage{"EntriesUsedAboveHandedOut",
                           [](DamagedChip& chip) { chip.header().entries.used = 3; },
                           "entries: 3 used of 2 handed out, 4 slots"},
                    Damage{"MembersHandedOutAboveTheirSlots",
                           [](DamagedChip& chip) { chip.header().members.watermark = 5; },
                           "members: 2 used of 5 handed out, 4 slots"},
                    Damage{"GroupFreeListOutOfRange",
                           [](DamagedChip& chip) { chip.header().groups.freeHead = 9; },
                           "groups: free list from slot 9 to 0 of 1"},
                    Damage{"LogCountAboveTheLogsSize",
                           [](DamagedChip& chip) {
                             chip.header().logHead = 0;
                             chip.header().logCount = 65;
                           },
                           "the call log holds 65 lines from line 0, of 64"},
                    Damage{"LogHeadFarOutside",
                           [](DamagedChip& chip) {
                             chip.header().logHead = 1u << 31;
                             chip.header().logCount = 0;
                           },
                           "the call log holds 0 lines from line 2147483648, of 64"},
                    Damage{"JournalLeftFull",
                           [](DamagedChip& chip) { chip.header().journalCount = 1000; },
                           "a call left 1000 changes unfinished"},
                    Damage{"BadEntryScope", [](DamagedChip& chip) { chip.header().entryScope = 7; },
                           "bad entry scope 7"},
                    Damage{"CallCountAtTwoToThe63",
                           [](DamagedChip& chip) { chip.header().functions[0].calls = kHugeCount; },
                           kAddEntry + " counted 9223372036854775808 calls"},
                    Damage{"FaultsOfStatusZero",
                           [](DamagedChip& chip) {
                             chip.header().functions[0].faultsLeft = 3;
                             chip.header().functions[0].faultStatus = 0;
                           },
                           kAddEntry + " has 3 faults of status 0"}),
    [](const testing::TestParamInfo<Damage>& info) { return std::string(info.param.name); });

TEST_F(DamageTest, AChangedMakeUpIsRefusedByTheProcessesAttachedAndAtAttach) {
  {
    DamagedChip memory(chip.name());
    memory.header().config.pipes = 0;
  }
  ActionSpec spec{9};
  uint32_t handle = 0;
  EXPECT_EQ(pd.addMember(1, kAllPipes, &spec, &handle), kUnexpected);
  EXPECT_STREQ(pd.lastFault(), "its make-up changed since it was made");
  const ToolRun run = tool({"dump"});
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_EQ(run.err, damagedText("its header holds a make-up out of range"));
}

TEST_F(DamageTest, ATruncatedSegmentIsRefusedAtAttach) {
  ASSERT_EQ(pd.attach(nullptr), 0);  // this process must not touch the cut memory
  const uint64_t size = [&] {
    DamagedChip memory(chip.name());
    return memory.header().segmentSize;
  }();
  DamagedChip(chip.name()).truncateTo(size / 2);
  const std::string fault = "the segment holds " + std::to_string(size / 2) +
                            " bytes, its header says " + std::to_string(size) +
                            " and its make-up " + std::to_string(size);
  expectToolRefuses(fault);
  EXPECT_EQ(pd.attachExisting(chip.c_str()), EUCLEAN);
  EXPECT_STREQ(pd.lastFault(), fault.c_str());
}

// A process attached to the chip before another cut its segment short is told
// so when it starts a walk of the members or groups, instead of reading past
// the end of the segment (which would kill it with SIGBUS).
TEST_F(DamageTest, AWalkOfASegmentCutShortSinceItWasOpenedIsRefused) {
  ASSERT_EQ(pd.attach(nullptr), 0);  // this process must not touch the cut memory
  const uint64_t size = [&] {
    DamagedChip memory(chip.name());
    return memory.header().segmentSize;
  }();
  const std::string fault = "its segment was cut short to " + std::to_string(size / 2) + " of " +
                            std::to_string(size) + " bytes";
  const int status = waitChild(runChild([&] {
    if (pd.attachExisting(chip.c_str()) != 0)
      return 2;
    DamagedChip(chip.name()).truncateTo(size / 2);
    uint32_t member = 0;
    uint32_t group = 0;
    if (pd.getFirstMember(1, 0, &member) != kUnexpected || std::string(pd.lastFault()) != fault)
      return 3;
    if (pd.getFirstGroup(1, 0, &group) != kUnexpected || std::string(pd.lastFault()) != fault)
      return 4;
    return member == 0 && group == 0 ? 0 : 5;
  }));
  EXPECT_EQ(status, 0);
}

TEST_F(DamageTest, AKeyChainInACircleIsNeverFollowedForever) {
  {
    // Entry 1 (session 5), of pipe 1 in a table scoped per pipe, links to
    // itself: a look for session 5 on another pipe would go round for ever.
    DamagedChip memory(chip.name());
    memory.header().entryScope = P4_PD_ENTRY_SCOPE_SINGLE_PIPE;
    memory.entry(0).pipe = 1;
    memory.entry(0).nextSameKey = 1;
  }
  expectToolRefuses("key 5 twice in one pipe scope");
  uint32_t handle = 0;
  const MatchSpec match{5};
  EXPECT_EQ(pd.addEntry(1, {0, 2}, &match, 1, &handle), kUnexpected);
  EXPECT_STREQ(pd.lastFault(), "the key chain of mirror session 5 runs in a circle");
  // Sessions with a sound chain are served.
  uint16_t selector = 0;
  EXPECT_EQ(pd.lookup(6, 0, &selector), 0);
}

TEST_F(DamageTest, AKeyChainLinkOutsideTheTableIsNeverFollowed) {
  {
    DamagedChip memory(chip.name());
    memory.keyChain(9) = 1000000;
  }
  expectToolRefuses("broken key chain of 9");
  uint32_t handle = 0;
  const MatchSpec match{9};
  EXPECT_EQ(pd.addEntry(1, kAllPipes, &match, 1, &handle), kUnexpected);
  EXPECT_STREQ(pd.lastFault(), "the key chain of mirror session 9 links to slot 1000000");
  uint16_t selector = 0;
  EXPECT_EQ(pd.lookup(9, 0, &selector), EUCLEAN);
  // The refused call changed nothing: the chip still holds its two entries.
  EXPECT_EQ(pd.entries(), 2u);
}

TEST_F(DamageTest, AKeyChainThatLeadsToAnotherSessionsEntryIsRefused) {
  {
    DamagedChip memory(chip.name());
    memory.keyChain(9) = 1;  // entry 1 is of session 5
  }
  expectToolRefuses("key chain of 9 holds a stranger");
  uint16_t selector = 0;
  EXPECT_EQ(pd.lookup(9, 0, &selector), EUCLEAN);
  EXPECT_STREQ(pd.lastFault(),
               "the key chain of mirror session 9 holds an entry that is not of it");
}

TEST_F(DamageTest, AWalkOfTheMembersNeverGoesRound) {
  {
    DamagedChip memory(chip.name());
    memory.member(1).handle = 1;  // member 2's slot claims member 1's handle
  }
  expectToolRefuses("members: slot 1 has handle 1");
  uint32_t handle = 0;
  EXPECT_EQ(pd.getFirstMember(1, 0, &handle), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(handle, 1u);
  EXPECT_EQ(pd.getNextMember(1, 0, handle, &handle), kUnexpected);
}

TEST_F(DamageTest, AGroupLargerThanItsSizeIsRefusedByTheTool) {
  {
    DamagedChip memory(chip.name());
    memory.group(0).size = 300;
  }
  expectToolRefuses("group 1: size 300 of 3");
}

// Runs `body` in a child that holds the chip's lock (under a change the
// chip journals) and tells the parent through `ready` once it holds it.
pid_t childHoldingTheLock(unsigned ms, int ready) {
  const pid_t child = fork();
  if (child == 0) {
    chipsim().holdLockForTest(
        ms, [](void* fd) { (void)!write(*static_cast<int*>(fd), "x", 1); }, &ready);
    _exit(0);
  }
  return child;
}

TEST_F(DamageTest, AJournalRecordBeyondTheChipIsNeverWrittenBack) {
  int ready[2];
  ASSERT_EQ(pipe(ready), 0);
  const pid_t child = childHoldingTheLock(10000, ready[1]);
  char byte = 0;
  ASSERT_EQ(read(ready[0], &byte, 1), 1);
  {
    DamagedChip memory(chip.name());
    memory.journal(0).offset = ~uint64_t{0} - 3;
  }
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  // The change the dead holder journalled cannot be taken back; nothing is
  // written outside the chip, and the chip names what it holds.
  expectToolRefuses("entries: 1002 used of 2 handed out, 4 slots");
  close(ready[0]);
  close(ready[1]);
}

TEST_F(DamageTest, ALockHeldTooLongEndsTheWaitNamingItsHolder) {
  int ready[2];
  ASSERT_EQ(pipe(ready), 0);
  const pid_t child = childHoldingTheLock(3000, ready[1]);
  char byte = 0;
  ASSERT_EQ(read(ready[0], &byte, 1), 1);
  setenv("CHIPSIM_LOCK_WAIT_MS", "200", 1);
  const ToolRun run = tool({"dump"});
  unsetenv("CHIPSIM_LOCK_WAIT_MS");
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_EQ(run.err, "chipsim: chip '" + chip.name() + "': the chip's lock is held by process " +
                         std::to_string(child) + ": waited 200 ms\n");
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  close(ready[0]);
  close(ready[1]);
}

TEST_F(DamageTest, ASegmentLockedTooLongEndsTheAttachNamingItsHolder) {
  const int fd = shm_open(chip.c_str(), O_RDWR, 0);
  ASSERT_GE(fd, 0);
  ASSERT_EQ(flock(fd, LOCK_EX), 0);
  setenv("CHIPSIM_LOCK_WAIT_MS", "200", 1);
  const ToolRun run = tool({"dump"});
  unsetenv("CHIPSIM_LOCK_WAIT_MS");
  close(fd);
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_EQ(run.err, "chipsim: chip '" + chip.name() + "': its segment is locked by process " +
                         std::to_string(getpid()) + ": waited 200 ms\n");
}

TEST_F(DamageTest, StatusZeroIsNoFault) {
  const ToolRun run = tool({"fault", kAddEntry, "0"});
  EXPECT_EQ(run.exitStatus, 2);
  EXPECT_EQ(run.err, "chipsim: status 0 is not a fault (see chipsim --help)\n");
  EXPECT_EQ(pd.failNext(kAddEntry.c_str(), 0, 1), EINVAL);
  EXPECT_EQ(pd.failNext(kAddEntry.c_str(), 0, 0), 0);  // a cancel
}

}  // namespace
}  // namespace chipsim_test
