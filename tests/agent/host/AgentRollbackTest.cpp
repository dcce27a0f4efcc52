#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <signal.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <set>
#include <string>

#include <nlohmann/json.hpp>

#include "AgentFixture.h"
#include "agent/core/RollbackCase.h"
#include "config/AgentConfig.h"

namespace mirrorlag_agent {
namespace {

// A status the chip answers an injected fault with.
constexpr int kFaultStatus = 9;

// Each PD function of an apply refused once by the chip, in a running agent:
// the apply fails with the function's name, and the running configuration,
// the chip and the shadow tables end as before it (the shadow tables hold a
// record for each object the plug-in holds, and none else).
class AgentRollbackTest : public AgentFixture, public testing::WithParamInterface<std::string> {
 protected:
  void SetUp() override {
    AgentFixture::SetUp();
    writeConfig(kRollbackBefore);
    wantedPath = configPath + ".wanted";
    std::ofstream(wantedPath) << kRollbackWanted;
  }
  void TearDown() override {
    std::remove(wantedPath.c_str());
    AgentFixture::TearDown();
  }

  nlohmann::json shown(const std::string& subject) const {
    return nlohmann::json::parse(ctl("show " + subject + " --json").output);
  }

  // The handles of the shadow records by table, and those the plug-in holds
  // by the table that records them.
  std::map<std::string, std::multiset<std::uint32_t>> shadowHandles() const {
    std::map<std::string, std::multiset<std::uint32_t>> handles;
    for (const auto& record : shown("shadow"))
      handles[record["table"].get<std::string>()].insert(record["handle"].get<std::uint32_t>());
    return handles;
  }
  std::map<std::string, std::multiset<std::uint32_t>> heldHandles() const {
    const std::map<std::string, std::string> tableOf = {{"entry", shadowName + "-mbb"},
                                                        {"default", shadowName + "-mbb"},
                                                        {"member", shadowName + "-adt"},
                                                        {"group", shadowName + "-selgrp"}};
    std::map<std::string, std::multiset<std::uint32_t>> handles;
    for (const auto& held : shown("handles")) {
      handles[tableOf.at(held["kind"].get<std::string>())].insert(
          held["handle"].get<std::uint32_t>());
    }
    return handles;
  }

  std::string wantedPath;
};

TEST_P(AgentRollbackTest, ARefusedCallUndoesTheApplyInChipShadowAndConfiguration) {
  startAgent();
  const std::string configBefore = ctl("show config").output;
  ASSERT_EQ(chipTool("fault " + GetParam() + " " + std::to_string(kFaultStatus)).status, 0);
  const Outcome failed = ctl("apply " + wantedPath);
  EXPECT_EQ(failed.status, 1);
  EXPECT_THAT(failed.output, testing::StartsWith("failed, nothing changed: "));
  EXPECT_THAT(failed.output, testing::HasSubstr(GetParam() + "() failed"));
  EXPECT_EQ(ctl("show config").output, configBefore);
  const Outcome checked = ctl("check");
  EXPECT_EQ(checked.status, 0) << checked.output;
  EXPECT_EQ(shadowHandles(), heldHandles());
  // The kept state is the one before: a restart runs it.
  stopAgent(SIGKILL);
  startAgent();
  EXPECT_EQ(ctl("show config").output, configBefore);
  // And the wanted configuration applies cleanly after all.
  EXPECT_EQ(ctl("apply " + wantedPath).status, 0);
  EXPECT_EQ(ctl("check").status, 0);
  EXPECT_EQ(shadowHandles(), heldHandles());
}

INSTANTIATE_TEST_SUITE_P(EveryCallOfTheApply, AgentRollbackTest, testing::ValuesIn(kRollbackCalls),
                         rollbackCaseName);

}  // namespace
}  // namespace mirrorlag_agent
