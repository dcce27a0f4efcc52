#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include <nlohmann/json.hpp>

#include "AgentFixture.h"
#include "Pd/PipeStatus.h"
#include "support/ChipsimLibrary.h"

namespace mirrorlag_agent {
namespace {

using testing::HasSubstr;

// The show, trace and check commands and the agent's log, on the fixture's
// agent over a fresh chip (whose handles count from 1; the default entry's
// handle is the chip's first above the match entries').
class AgentCommandTest : public AgentFixture {
 protected:
  void SetUp() override {
    AgentFixture::SetUp();
    startAgent();
  }

  nlohmann::json shownJson(const std::string& subject) const {
    const Outcome shown = ctl("show " + subject + " --json");
    EXPECT_EQ(shown.status, 0) << shown.output;
    return nlohmann::json::parse(shown.output);
  }
};

TEST_F(AgentCommandTest, ShowsEntriesAsAnAlignedTable) {
  const Outcome shown = ctl("show entries");
  EXPECT_EQ(shown.status, 0);
  EXPECT_EQ(shown.output,
            "SESSION  TARGET  ID   HANDLE\n"
            "5        group   100  1\n"
            "6        member  1    2\n"
            "default  member  1    65537\n");
}

TEST_F(AgentCommandTest, ShowsMembersWithTheirGroups) {
  EXPECT_EQ(ctl("show members").output,
            "ID  SELECTOR  HANDLE  GROUPS\n"
            "1   10        1       100\n"
            "2   11        2       100\n"
            "3   12        3       100\n");
  ASSERT_EQ(ctl("member 4 selector 13").status, 0);
  EXPECT_THAT(ctl("show members").output, HasSubstr("4   13        4       -\n"));
}

TEST_F(AgentCommandTest, ShowsGroupsWithTheirMembersAndTheInactiveOnes) {
  EXPECT_EQ(ctl("show groups").output,
            "ID   SIZE  HANDLE  MEMBERS  INACTIVE\n"
            "100  8     1       1 2 3    3\n");
  EXPECT_EQ(shownJson("groups"), nlohmann::json::parse(R"([{"id": 100, "size": 8, "handle": 1,
                                   "members": [1, 2, 3], "inactive": [3]}])"));
}

TEST_F(AgentCommandTest, ShowsEntriesAsJsonWithColumnsInOrder) {
  const Outcome shown = ctl("show entries --json");
  EXPECT_EQ(nlohmann::json::parse(shown.output), nlohmann::json::parse(R"([
      {"session": 5, "target": "group", "id": 100, "handle": 1},
      {"session": 6, "target": "member", "id": 1, "handle": 2},
      {"session": "default", "target": "member", "id": 1, "handle": 65537}])"));
  EXPECT_LT(shown.output.find("\"session\""), shown.output.find("\"handle\""));
}

TEST_F(AgentCommandTest, ShowsEveryHandleThePlugInHolds) {
  EXPECT_EQ(ctl("show handles").output,
            "KIND     ID   HANDLE\n"
            "entry    5    1\n"
            "entry    6    2\n"
            "default  -    65537\n"
            "member   1    1\n"
            "member   2    2\n"
            "member   3    3\n"
            "group    100  1\n");
}

TEST_F(AgentCommandTest, ShowsTheShadowRecordsOfEachHeldObject) {
  const nlohmann::json records = shownJson("shadow");
  ASSERT_EQ(records.size(), 7u);
  const std::string base = shadowName;
  EXPECT_EQ(records[0], nlohmann::json::parse(R"({"table": ")" + base +
                                              R"(-mbb", "key": "00000000:00000001",
      "handle": 1, "session": 5, "size": null, "replaced": null})"));
  EXPECT_EQ(records[3]["table"], base + "-adt");
  EXPECT_EQ(records[3]["key"], "80000000:00000001");
  EXPECT_EQ(records[6], nlohmann::json::parse(R"({"table": ")" + base +
                                              R"(-selgrp", "key": "80000000:00000064",
      "handle": 1, "session": null, "size": 8, "replaced": null})"));
}

TEST_F(AgentCommandTest, ShowsTheRunningConfigurationInEitherForm) {
  const Outcome plain = ctl("show config");
  EXPECT_EQ(plain.output, ctl("show config --json").output);
  EXPECT_EQ(nlohmann::json::parse(plain.output), nlohmann::json::parse(kConfig));
}

TEST_F(AgentCommandTest, SetsATraceLevelByName) {
  EXPECT_EQ(ctl("trace BfIngressMirrorLagGroupTable=5").status, 0);
  const Outcome refused = ctl("trace BfIngressMirrorLagGroupTable=10");
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.output, "trace level 10 of \"BfIngressMirrorLagGroupTable\" is not in -1..9\n");
  EXPECT_THAT(agentLog(),
              HasSubstr("mirrorlag-agent: trace BfIngressMirrorLagGroupTable=5: done\n"));
}

TEST_F(AgentCommandTest, ChecksTheChipAndTheAgentsViewOfIt) {
  const Outcome checked = ctl("check");
  EXPECT_EQ(checked.status, 0);
  EXPECT_EQ(checked.output,
            "chip coherent; it holds and forwards what is configured (entries 2, members 3, "
            "groups 1)\n");
}

TEST_F(AgentCommandTest, CheckFindsWhatWasChangedBehindTheAgentsBack) {
  const chipsim_test::ChipsimLibrary& chip = chipsim_test::chipsim();
  ASSERT_EQ(chip.attach(chipName.c_str()), 0);
  const p4_pd_device_target_t allPipes{0, P4_PD_ALL_PIPES};
  p4_pd_kestro_switch_setLagMemberSelector_action_spec_t spec{99};
  std::uint32_t orphan = 0;
  ASSERT_EQ(chip.addMember(1, allPipes, &spec, &orphan), PIPE_STATUS_SUCCESS);
  // Member 2 (handle 2) of group 100 (handle 1) no longer selected.
  ASSERT_EQ(chip.groupMemberStateSet(1, 0, 1, 2, P4_PD_GROUP_MEMBER_INACTIVE), PIPE_STATUS_SUCCESS);
  ASSERT_EQ(chip.attach(nullptr), 0);
  const Outcome checked = ctl("check");
  EXPECT_EQ(checked.status, 1);
  EXPECT_EQ(checked.output,
            "the chip holds members 4, the configuration names members 3\n"
            "session 5: the chip forwards to 10, the configuration to 10 11\n");
}

TEST_F(AgentCommandTest, LogsEachChangeWithItsOutcome) {
  ASSERT_EQ(ctl("entry 7 member 2").status, 0);
  ASSERT_EQ(chipTool("fault p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry 3").status, 0);
  EXPECT_EQ(ctl("entry 8 member 2").status, 1);
  const std::string log = agentLog();
  EXPECT_THAT(log, HasSubstr("mirrorlag-agent: member 1 add: done\n"
                             "mirrorlag-agent: member 2 add: done\n"
                             "mirrorlag-agent: member 3 add: done\n"
                             "mirrorlag-agent: group 100 add: done\n"
                             "mirrorlag-agent: entry 5 group 100: done\n"
                             "mirrorlag-agent: entry 6 member 1: done\n"
                             "mirrorlag-agent: default member 1: done\n"));
  EXPECT_THAT(log, HasSubstr("mirrorlag-agent: entry 7 member 2: done\n"));
  EXPECT_THAT(log, HasSubstr("mirrorlag-agent: failed, nothing changed: entry 8 member 2: "));
}

}  // namespace
}  // namespace mirrorlag_agent
