#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "AgentFixture.h"

namespace mirrorlag_agent {
namespace {

// A command the agent refuses (an apply of a bad configuration, a malformed
// or impossible edit, a bad attribute path or value, ...), the exit status of
// the client and what it prints.
struct Refusal {
  std::string command;
  int status;
  std::string output;
};

constexpr int kRefused = 1;
constexpr int kBadCommand = 2;

// Each configuration is written to a file and applied; "@N" in a command
// stands for the file of configuration N.
const std::vector<std::string> kBadConfigs = {
    R"({"members": [)",
    R"({"member": []})",
    R"({"members": [{"id": 1, "selector": 70000}]})",
    R"({"members": [{"id": 1, "selector": 10}],
        "groups": [{"id": 9, "size": 2, "members": []}]})",
    R"({"members": [{"id": 1, "selector": 10}],
        "entries": [{"session": 1, "member": 1, "group": 9}]})",
    R"({"members": [{"id": 1, "selector": 10}], "entries": [{"session": 1, "group": 9}]})",
    R"({"members": [{"id": 1, "selector": 10}], "default": {"member": 7}})",
    R"({"members": [{"id": 1, "selector": 10}, {"id": 2, "selector": 11}],
        "groups": [{"id": 100, "size": 4, "members": [{"id": 1}, {"id": 2}]}]})",
    R"({"members": [{"id": "1", "selector": 10}]})",
    R"({"members": [{"id": 1, "selector": 10}],
        "groups": [{"id": 9, "size": 0, "members": [{"id": 1}]}]})",
};

const std::vector<Refusal> kRefusals = {
    {"apply @0", kRefused, "refused: /: not JSON: "},
    {"apply @1", kRefused, "refused: /member: unknown key\n"},
    {"apply @2", kRefused, "refused: /members/0/selector: 70000 is not in 0 to 65535\n"},
    {"apply @3", kRefused, "refused: /groups/0/members: a group keeps at least one member\n"},
    {"apply @4", kRefused, "refused: /entries/0: name exactly one of \"member\" or \"group\"\n"},
    {"apply @5", kRefused, "refused: /entries/0/group: group 9 is not configured\n"},
    {"apply @6", kRefused, "refused: /default/member: member 7 is not configured\n"},
    {"apply @7", kRefused,
     "refused: /groups: group 100: its size and first member cannot change while it exists; "
     "remove it first\n"},
    {"apply @8", kRefused,
     "refused: /members/0/id: expected a whole number from 0 to 4294967295, found string\n"},
    {"apply @9", kRefused, "refused: /groups/0/size: 0 is not in 1 to 4294967295\n"},
    {"apply /nonexistent.json", kBadCommand, "cannot read /nonexistent.json\n"},
    {"apply", kBadCommand, "usage: apply FILE\n"},
    {"frobnicate", kBadCommand, "unknown command 'frobnicate'\n"},
    {"member 1", kBadCommand, "usage: member ID selector N | member ID del\n"},
    {"member x selector 5", kBadCommand, "member 'x' is not a number\n"},
    {"member 1 selector 70000", kRefused,
     "refused: /members/2/selector: 70000 is not in 0 to 65535\n"},
    {"member 1 del", kRefused, "refused: /groups/0/members/0/id: member 1 is not configured\n"},
    {"group 999 member 1 add", kRefused, "refused: /groups: group 999 is not configured\n"},
    {"group 100 member 9 add", kRefused,
     "refused: /groups/0/members/3/id: member 9 is not configured\n"},
    {"group 100 member 1 frob", kBadCommand, "usage: group ID member M add|del|active|inactive\n"},
    {"group 100 member 1 del", kRefused,
     "refused: /groups: group 100: its size and first member cannot change while it exists; "
     "remove it first\n"},
    {"entry 5 group 555", kRefused, "refused: /entries/1/group: group 555 is not configured\n"},
    {"entry 70000 member 1", kRefused, "refused: /entries/2/session: 70000 is not in 0 to 65535\n"},
    {"entry 5 port 3", kBadCommand, "usage: entry SESSION member|group ID | entry SESSION del\n"},
    {"get sm/sessionHandel", kRefused,
     "Attribute path 'sm/sessionHandel': type "
     "BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm has no attribute "
     "'sessionHandel'\n"},
    {"set sm/sessionHandle x", kRefused,
     "Attribute path 'sm/sessionHandle': 'x' is not a value of uint32_t: expected an unsigned "
     "32-bit number, found 'x'\n"},
    {"set sm/helper 3", kRefused, "Attribute path 'sm/helper': 'helper' cannot be set\n"},
    {"set profile/entry[1]/action/lagMemberSelector 3", kRefused,
     "Attribute path 'profile/entry[1]/action/lagMemberSelector': 'lagMemberSelector' cannot be "
     "set in place: 'action' is shared by its holder, which would not hear of it\n"},
    {"get profile/entry[99]/memberId", kRefused,
     "Attribute path 'profile/entry[99]/memberId': 'entry[99]' is absent\n"},
    {"get nowhere/x", kRefused, "a path starts with sm, table or profile, not 'nowhere'\n"},
    {"show everything", kBadCommand,
     "usage: show entries|members|groups|handles|shadow|config [--json]\n"},
    {"show entries --xml", kBadCommand,
     "usage: show entries|members|groups|handles|shadow|config [--json]\n"},
    {"trace x=30", kRefused, "trace level 30 of \"x\" is not in -1..9\n"},
    {"trace", kBadCommand, "usage: trace NAME=LEVEL\n"},
    {"check now", kBadCommand, "usage: check\n"},
};

// Each refusal gives its message and leaves the chip (its objects and call
// log), the shadow tables and the running configuration as they were.
class AgentRefusalTest : public AgentFixture {
 protected:
  void TearDown() override {
    for (std::size_t i = 0; i < kBadConfigs.size(); ++i)
      std::remove(configFile(i).c_str());
    AgentFixture::TearDown();
  }

  std::string configFile(std::size_t index) const {
    return configPath + "." + std::to_string(index);
  }

  // The command with "@N" replaced by the file of configuration N.
  std::string withFiles(const std::string& command) const {
    const std::size_t at = command.find('@');
    if (at == std::string::npos)
      return command;
    return command.substr(0, at) + configFile(std::stoul(command.substr(at + 1)));
  }

  // What must not change.
  std::string snapshot() const {
    return chipDump() + chipTool("log").output + shadowBytes() + ctl("show config").output;
  }
};

TEST_F(AgentRefusalTest, EachRefusalGivesItsMessageAndChangesNothing) {
  ASSERT_GE(kRefusals.size(), 25u);
  for (std::size_t i = 0; i < kBadConfigs.size(); ++i)
    std::ofstream(configFile(i)) << kBadConfigs[i];
  startAgent();
  const std::string before = snapshot();
  for (const Refusal& refusal : kRefusals) {
    SCOPED_TRACE(refusal.command);
    const Outcome outcome = ctl(withFiles(refusal.command));
    EXPECT_EQ(outcome.status, refusal.status);
    if (refusal.output.back() == '\n')
      EXPECT_EQ(outcome.output, refusal.output);
    else
      EXPECT_EQ(outcome.output.rfind(refusal.output, 0), 0u) << outcome.output;
    EXPECT_EQ(snapshot(), before);
  }
}

}  // namespace
}  // namespace mirrorlag_agent
