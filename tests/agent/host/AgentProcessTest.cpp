#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <nlohmann/json.hpp>

#include "AgentFixture.h"
#include "config/AgentConfig.h"
#include "protocol/ControlCommands.h"

namespace mirrorlag_agent {
namespace {

// Start-up, edits, attributes, restart and the shell, on the fixture's agent.
using AgentProcessTest = AgentFixture;

TEST_F(AgentProcessTest, ShowsTheConfigurationItApplied) {
  startAgent();
  const Outcome shown = ctl("show config");
  ASSERT_EQ(shown.status, 0) << shown.output;
  EXPECT_EQ(AgentConfig::fromText(shown.output), AgentConfig::fromText(kConfig));
}

TEST_F(AgentProcessTest, EditsAreAppliedAndBadOnesRefused) {
  startAgent();
  EXPECT_EQ(ctl("entry 7 member 2").output, "entry 7 member 2\n");
  const Outcome refused = ctl("entry 9 group 555");
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.output, "refused: /entries/3/group: group 555 is not configured\n");
  EXPECT_EQ(ctl("group 100 member 3 active").output, "group 100 member 3 active\n");
  EXPECT_EQ(ctl("check").status, 0);
  EXPECT_EQ(ctl("frobnicate").status, 2);
  EXPECT_EQ(run(std::string(MIRRORLAGCTL) + " --socket " + socketPath).status, 2);
}

// The chip's log lines from `from` on.
std::vector<std::string> linesFrom(const std::vector<std::string>& log, std::size_t from) {
  return std::vector<std::string>(log.begin() + static_cast<std::ptrdiff_t>(from), log.end());
}

TEST_F(AgentProcessTest, EachEditCommandMakesItsPdCalls) {
  startAgent();
  const std::string ap = "p4_pd_kestro_switch_mirrorLagPortActionProfile_";
  const std::string table = "p4_pd_kestro_switch_ingressMirrorLagGroup_";
  // The PD calls of an edit, which the agent answers with the change it made.
  const auto calls = [&](const std::string& command, const std::string& change) {
    const std::size_t before = chipLog().size();
    const Outcome edited = ctl(command);
    EXPECT_EQ(edited.status, 0) << edited.output;
    EXPECT_EQ(edited.output, change + "\n");
    return linesFrom(chipLog(), before);
  };
  EXPECT_THAT(calls("member 4 selector 13", "member 4 add"),
              testing::ElementsAre(ap + "add_member_with_setLagMemberSelector(sess=1, dev=0, "
                                        "pipe=0xffff, selector=13) = 0 mbr=4"));
  EXPECT_THAT(calls("member 4 selector 14", "member 4 selector 14"),
              testing::ElementsAre(ap + "modify_member_with_setLagMemberSelector(sess=1, dev=0, "
                                        "mbr=4, selector=14) = 0"));
  EXPECT_THAT(calls("group 100 member 4 add", "group 100 member 4 add"),
              testing::ElementsAre(ap + "add_member_to_group(sess=1, dev=0, grp=1, mbr=4) = 0"));
  EXPECT_THAT(calls("group 100 member 4 inactive", "group 100 member 4 inactive"),
              testing::ElementsAre(ap + "group_member_state_set(sess=1, dev=0, grp=1, mbr=4, "
                                        "state=1) = 0"));
  EXPECT_THAT(calls("group 100 member 4 active", "group 100 member 4 active"),
              testing::ElementsAre(ap + "group_member_state_set(sess=1, dev=0, grp=1, mbr=4, "
                                        "state=0) = 0"));
  EXPECT_THAT(calls("entry 8 group 100", "entry 8 group 100"),
              testing::ElementsAre(table + "add_entry_with_selector(sess=1, dev=0, pipe=0xffff, "
                                           "mirror_session=8, grp=1) = 0 entry=3"));
  EXPECT_THAT(calls("entry 8 member 4", "entry 8 member 4"),
              testing::ElementsAre(table + "modify_entry(sess=1, dev=0, entry=3, mbr=4) = 0"));
  EXPECT_THAT(calls("entry 8 del", "entry 8 del"),
              testing::ElementsAre(table + "table_delete(sess=1, dev=0, entry=3) = 0"));
  EXPECT_THAT(calls("group 100 member 4 del", "group 100 member 4 del"),
              testing::ElementsAre(ap + "del_member_from_group(sess=1, dev=0, grp=1, mbr=4) = 0"));
  EXPECT_THAT(calls("member 4 del", "member 4 del"),
              testing::ElementsAre(ap + "del_member(sess=1, dev=0, mbr=4) = 0"));
  EXPECT_EQ(AgentConfig::fromText(ctl("show config").output), AgentConfig::fromText(kConfig));
}

TEST_F(AgentProcessTest, AttributesAreReadAndSetByName) {
  startAgent();
  EXPECT_EQ(ctl("get sm/sessionHandle").output, "1\n");
  EXPECT_EQ(ctl("set sm/sessionHandle 4").status, 0);
  EXPECT_EQ(ctl("get sm/sessionHandle").output, "4\n");
  EXPECT_EQ(ctl("get profile/entry[2]/action/lagMemberSelector").output, "11\n");
  const Outcome unknown = ctl("get sm/sessionHandel");
  EXPECT_EQ(unknown.status, 1);
  EXPECT_THAT(unknown.output, testing::HasSubstr("has no attribute 'sessionHandel'"));
}

TEST_F(AgentProcessTest, AfterSigkillTheNextAgentKeepsItsChangesAndAddsNothingAgain) {
  startAgent();
  ASSERT_EQ(ctl("entry 7 member 2").status, 0);
  stopAgent(SIGKILL);
  const std::size_t before = chipLog().size();
  startAgent();
  const std::vector<std::string> log = chipLog();
  for (std::size_t i = before; i < log.size(); ++i) {
    EXPECT_EQ(log[i].find("add_member_with"), std::string::npos) << log[i];
    EXPECT_EQ(log[i].find("_add_entry("), std::string::npos) << log[i];
    EXPECT_EQ(log[i].find("_add_entry_with_selector("), std::string::npos) << log[i];
  }
  const AgentConfig running = AgentConfig::fromText(ctl("show config").output);
  EXPECT_EQ(running.entries.count(7), 1u);
  EXPECT_EQ(ctl("check").status, 0);
  // The group was created anew; the old one, used by no entry any more, is gone.
  const std::string dump = chipDump();
  EXPECT_THAT(dump, testing::HasSubstr("groups: 1 of"));
  EXPECT_THAT(dump, testing::HasSubstr("members: 3 of"));
  EXPECT_THAT(dump, testing::HasSubstr("entries: 3 of"));
}

TEST_F(AgentProcessTest, TheClientsHelpListsEveryCommandWithItsUsage) {
  const Outcome help = run(std::string(MIRRORLAGCTL) + " --help");
  EXPECT_EQ(help.status, 0);
  for (const ControlCommand& command : kControlCommands)
    EXPECT_THAT(help.output, testing::HasSubstr("  " + std::string(command.usage)));
}

// Reads what the terminal shows until `wanted` appears (or a few seconds pass).
std::string readUntil(int terminal, const std::string& wanted) {
  std::string seen;
  for (int tries = 0; tries < 200 && seen.find(wanted) == std::string::npos; ++tries) {
    char buffer[4096];
    pollfd ready{terminal, POLLIN, 0};
    if (poll(&ready, 1, 20) > 0) {
      const ssize_t got = read(terminal, buffer, sizeof buffer);
      if (got <= 0)
        break;
      seen.append(buffer, static_cast<std::size_t>(got));
    }
  }
  return seen;
}

TEST_F(AgentProcessTest, TheShellRunsCommandsCompletesAndKeepsItsHistory) {
  startAgent();
  const std::string home = "/tmp/" + chipName + "-home";
  mkdir(home.c_str(), 0700);
  int terminal = -1;
  const pid_t shell = forkpty(&terminal, nullptr, nullptr, nullptr);
  if (shell == 0) {
    setenv("HOME", home.c_str(), 1);
    setenv("TERM", "dumb", 1);
    execl(MIRRORLAGCTL, MIRRORLAGCTL, "--socket", socketPath.c_str(), "shell",
          static_cast<char*>(nullptr));
    _exit(127);
  }
  ASSERT_GT(shell, 0);
  EXPECT_THAT(readUntil(terminal, "mirrorlag> "), testing::HasSubstr("mirrorlag> "));
  const std::string line = "get sm/sessionHandle\n";
  ASSERT_EQ(write(terminal, line.data(), line.size()), static_cast<ssize_t>(line.size()));
  EXPECT_THAT(readUntil(terminal, "1\r\nmirrorlag> "), testing::HasSubstr("1\r\nmirrorlag> "));
  // Tab completes a command, then a group id of the running configuration.
  const std::string partial = "gr\t10\t";
  ASSERT_EQ(write(terminal, partial.data(), partial.size()), static_cast<ssize_t>(partial.size()));
  EXPECT_THAT(readUntil(terminal, "group 100 "), testing::HasSubstr("group 100 "));
  const std::string rest = "member 3 active\nquit\n";
  ASSERT_EQ(write(terminal, rest.data(), rest.size()), static_cast<ssize_t>(rest.size()));
  readUntil(terminal, "never");
  int status = 0;
  waitpid(shell, &status, 0);
  close(terminal);
  EXPECT_EQ(AgentConfig::fromText(ctl("show config").output).groups.at(100).members[2].active,
            true);
  std::ifstream history(home + "/.mirrorlagctl_history");
  std::stringstream kept;
  kept << history.rdbuf();
  EXPECT_THAT(kept.str(), testing::HasSubstr("get sm/sessionHandle"));
  EXPECT_THAT(kept.str(), testing::HasSubstr("group 100 member 3 active"));
  std::remove((home + "/.mirrorlagctl_history").c_str());
  rmdir(home.c_str());
}

}  // namespace
}  // namespace mirrorlag_agent
