#include "ChipFixture.h"
#include "NamedChip.h"
#include "Pd/PipeStatus.h"
#include "ToolRun.h"
#include "chipsim/cli/HelpText.h"

#include <sys/wait.h>

#include <chrono>
#include <cstdio>
#include <thread>

namespace chipsim_test {
namespace {

class ToolTest : public ChipFixture {
 protected:
  void SetUp() override {
    ChipFixture::SetUp();
    ASSERT_EQ(pd.attach(chip.c_str()), 0);
  }
  void TearDown() override {
    ChipFixture::TearDown();
    pd.attach(nullptr);
  }

  // Two members (selectors 7 and 8) in a group where the second is inactive,
  // an entry for each, scoped per pipe, and a default entry.
  void makeTables() {
    ASSERT_EQ(pd.setProperty(1, 0, 1, 1), PIPE_STATUS_SUCCESS);
    uint32_t first = addMember(7);
    uint32_t second = addMember(8);
    uint32_t group = createGroup(3);
    addToGroup(group, first);
    addToGroup(group, second);
    ASSERT_EQ(pd.groupMemberStateSet(1, 0, group, second, 1), PIPE_STATUS_SUCCESS);
    addEntry(5, first, 1);
    addGroupEntry(6, group);
    uint32_t entry = 0;
    ASSERT_EQ(pd.setDefaultEntry(1, kAllPipes, second, &entry), PIPE_STATUS_SUCCESS);
  }

  ToolRun tool(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--chip", chip.name()});
    return ToolRun::of(arguments);
  }

  static void expectUsageError(const ToolRun& run, const std::string& message) {
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "chipsim: " + message + " (see chipsim --help)\n");
  }

  NamedChip chip{"tool"};
};

TEST_F(ToolTest, HelpTellsHowToUseTheTool) {
  ToolRun run = ToolRun::of({"--help"});
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(run.out, kChipsimHelp);
  EXPECT_EQ(ToolRun::of({"-h"}).out, run.out);
  // Every command the tool takes is in it, with its arguments.
  for (const char* usage :
       {"  dump ", "  log ", "  fault FUNCTION STATUS [COUNT] ", "  forward SESSION HASH [PIPE] ",
        "  reset ", "  traffic [--sessions A-B] [--seconds S]\n",
        "Exit status: 0 done, 1 failed, 2 bad command line.\n"})
    EXPECT_NE(run.out.find(usage), std::string::npos) << usage;
}

TEST_F(ToolTest, DumpShowsTheTables) {
  makeTables();
  ToolRun run = tool({"dump"});
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(run.out, "chip " + chip.name() +
                         ": device 0, 4 pipes, entry scope per pipe\n"
                         "entries: 2 of 4\n"
                         "  entry 1: mirror_session=5 pipe=0x1 mbr=1\n"
                         "  entry 2: mirror_session=6 pipe=0xffff grp=1\n"
                         "default entry 5: mbr=2 pipe=0xffff\n"
                         "members: 2 of 4\n"
                         "  mbr 1: selector=7 entries=1 groups=1\n"
                         "  mbr 2: selector=8 entries=1 groups=1\n"
                         "groups: 1 of 2\n"
                         "  grp 1: max_size=3 entries=1 members=[1 active, 2 inactive]\n");
}

TEST_F(ToolTest, DumpShowsAnEmptyChip) {
  ToolRun run = tool({"dump"});
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_EQ(run.out, "chip " + chip.name() +
                         ": device 0, 4 pipes, entry scope all pipes\n"
                         "entries: 0 of 4\n"
                         "default entry 5: not set\n"
                         "members: 0 of 4\n"
                         "groups: 0 of 2\n");
}

TEST_F(ToolTest, FaultFailsTheNextCallsOfAFunction) {
  uint32_t member = addMember(7);
  ToolRun run = tool({"fault", kAddEntry, "9", "2"});
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "");
  MatchSpec match{5};
  uint32_t entry = 0;
  EXPECT_EQ(pd.addEntry(1, kAllPipes, &match, member, &entry), PIPE_STATUS_NO_SPACE);
  EXPECT_EQ(lastLine(),
            kAddEntry + "(sess=1, dev=0, pipe=0xffff, mirror_session=5, mbr=1) = 9 (injected)");
  EXPECT_EQ(pd.addEntry(1, kAllPipes, &match, member, &entry), PIPE_STATUS_NO_SPACE);
  EXPECT_EQ(pd.addEntry(1, kAllPipes, &match, member, &entry), PIPE_STATUS_SUCCESS);
}

TEST_F(ToolTest, FaultCountsOneCallUnlessTold) {
  ASSERT_EQ(tool({"fault", kDelGroup, "0x10"}).exitStatus, 0);
  EXPECT_EQ(pd.delGroup(1, 0, 1), PIPE_STATUS_IN_USE);
  EXPECT_EQ(pd.delGroup(1, 0, 1), PIPE_STATUS_NOT_FOUND);
}

TEST_F(ToolTest, ForwardPrintsTheSelectorAPacketGets) {
  makeTables();
  EXPECT_EQ(tool({"forward", "5", "0"}).out, "selector 7\n");
  EXPECT_EQ(tool({"forward", "6", "1"}).out, "selector 7\n");  // the only active member
  EXPECT_EQ(tool({"forward", "9", "0"}).out, "selector 8 (default entry)\n");
  EXPECT_EQ(tool({"forward", "5", "0", "0"}).out, "selector 8 (default entry)\n");
  ToolRun run = tool({"forward", "5", "0", "1"});
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_EQ(run.out, "selector 7\n");
  EXPECT_EQ(run.err, "");
}

TEST_F(ToolTest, ForwardPrintsAMiss) {
  ToolRun run = tool({"forward", "5", "4294967295"});
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_EQ(run.out, "miss\n");
}

TEST_F(ToolTest, LogPrintsTheCallLog) {
  addMember(7);
  pd.delGroup(1, 0, 3);
  ToolRun run = tool({"log"});
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_EQ(run.out, kAddMember + "(sess=1, dev=0, pipe=0xffff, selector=7) = 0 mbr=1\n" +
                         kDelGroup + "(sess=1, dev=0, grp=3) = 6\n");
}

TEST_F(ToolTest, ResetEmptiesTheChip) {
  makeTables();
  ToolRun run = tool({"reset"});
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(pd.members(), 0u);
  EXPECT_EQ(pd.entries(), 0u);
}

TEST_F(ToolTest, AMissingChipIsAFailure) {
  NamedChip missing("missing");
  ToolRun run = ToolRun::of({"--chip=" + missing.name(), "dump"});
  EXPECT_EQ(run.exitStatus, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err,
            "chipsim: cannot attach to chip '" + missing.name() + "': No such file or directory\n");
}

TEST_F(ToolTest, BadCommandLinesAreRefused) {
  expectUsageError(ToolRun::of({}), "no command");
  expectUsageError(ToolRun::of({"dump"}), "no chip: give --chip NAME");
  expectUsageError(ToolRun::of({"--chip"}), "--chip needs a NAME");
  expectUsageError(ToolRun::of({"--verbose", "dump"}), "unknown option '--verbose'");
  expectUsageError(tool({"frobnicate"}), "unknown command 'frobnicate'");
  expectUsageError(tool({"dump", "all"}), "dump takes no arguments");
  expectUsageError(tool({"fault", kAddEntry}), "fault needs FUNCTION STATUS [COUNT]");
  expectUsageError(tool({"fault", kAddEntry, "nine"}), "bad status 'nine'");
  expectUsageError(tool({"fault", kAddEntry, "9", "-1"}), "bad count '-1'");
  expectUsageError(tool({"fault", "add_entry", "9"}), "unknown PD function 'add_entry'");
  expectUsageError(tool({"forward", "5"}), "forward needs SESSION HASH [PIPE]");
  expectUsageError(tool({"forward", "65536", "0"}), "bad session '65536'");
  expectUsageError(tool({"forward", "5", "0", "4"}), "no pipe 4 on this chip");
  EXPECT_EQ(pd.calls(kAddEntry.c_str()), 0);
}

// The last line of a tool's output.
std::string lastLineOf(const std::string& out) {
  const std::size_t end = out.find_last_not_of('\n');
  const std::size_t start = out.rfind('\n', end);
  return out.substr(start == std::string::npos ? 0 : start + 1, end - start);
}

TEST_F(ToolTest, TrafficCountsTheMissesOfEachSession) {
  const uint32_t member = addMember(7);
  for (uint16_t session = 0; session < 4; ++session)
    addEntry(session, member);
  ToolRun run = tool({"traffic", "--sessions", "0-4", "--seconds", "1"});
  EXPECT_EQ(run.exitStatus, 1);
  const std::string summary = lastLineOf(run.out);
  EXPECT_EQ(summary.rfind("traffic: ", 0), 0u) << summary;
  EXPECT_NE(summary.find(" misses, sessions missed: 4 ("), std::string::npos) << summary;
  EXPECT_NE(run.out.find(" lookups/s, "), std::string::npos) << run.out;
}

TEST_F(ToolTest, TrafficWithoutMissesEndsWell) {
  const uint32_t member = addMember(7);
  for (uint16_t session = 0; session < 4; ++session)
    addEntry(session, member);
  ToolRun run = tool({"traffic", "--sessions", "0-3", "--seconds", "1"});
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_NE(lastLineOf(run.out).find(", 0 misses"), std::string::npos) << run.out;
}

TEST_F(ToolTest, TrafficPrintsItsCountsSoFarOnSigusr1) {
  const uint32_t member = addMember(7);
  addEntry(0, member);
  const std::string script = std::string(CHIPSIM_TOOL) + " --chip " + chip.name() +
                             " traffic --sessions 0-1 --seconds 2 & pid=$!; sleep 0.5;"
                             " kill -USR1 $pid; wait $pid";
  FILE* pipe = popen(script.c_str(), "r");
  ASSERT_NE(pipe, nullptr);
  std::string out;
  char buffer[4096];
  for (std::size_t got; (got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
    out.append(buffer, got);
  EXPECT_EQ(WEXITSTATUS(pclose(pipe)), 1);  // session 1 has no entry
  const std::size_t mark = out.find("traffic: mark: ");
  ASSERT_NE(mark, std::string::npos) << out;
  unsigned long long lookups = 0;
  unsigned long long misses = 0;
  ASSERT_EQ(std::sscanf(out.c_str() + mark, "traffic: mark: %llu lookups, %llu misses", &lookups,
                        &misses),
            2);
  // Sessions 0 and 1 in turn, counted after each round: session 1 missed
  // every other lookup.
  EXPECT_GT(lookups, 0u);
  EXPECT_EQ(misses * 2, lookups);
}

TEST_F(ToolTest, AnEntryRemovedMidRunIsMissedByItsSessionOnly) {
  const uint32_t member = addMember(7);
  std::vector<uint32_t> entries;
  for (uint16_t session = 0; session < 4; ++session)
    entries.push_back(addEntry(session, member));
  std::thread remover([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    EXPECT_EQ(pd.tableDelete(1, 0, entries[2]), PIPE_STATUS_SUCCESS);
  });
  ToolRun run = tool({"traffic", "--sessions", "0-3", "--seconds", "2"});
  remover.join();
  EXPECT_EQ(run.exitStatus, 1);
  const std::string summary = lastLineOf(run.out);
  const std::size_t missed = summary.find("sessions missed: ");
  ASSERT_NE(missed, std::string::npos) << summary;
  const std::string sessions = summary.substr(missed + 17);
  EXPECT_EQ(sessions.rfind("2 (", 0), 0u) << summary;
  EXPECT_EQ(sessions.find(") "), std::string::npos) << "more than one session missed: " << summary;
}

TEST_F(ToolTest, TrafficRefusesBadOptions) {
  expectUsageError(tool({"traffic", "--sessions", "9-3"}), "bad sessions '9-3'");
  expectUsageError(tool({"traffic", "--rate", "3"}),
                   "traffic takes --sessions A-B and --seconds S");
}

}  // namespace
}  // namespace chipsim_test
