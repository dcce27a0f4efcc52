#include "core/ConfigApplier.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "RollbackCase.h"
#include "config/ConfigError.h"
#include "core/ApplyError.h"
#include "support/ChipsimLibrary.h"

namespace mirrorlag_agent {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint8_t kDevice = 0;
constexpr std::uint16_t kPipe = P4_PD_ALL_PIPES;
constexpr std::uint32_t kSession = 1;

const char* const kExample = R"({
  "members": [ {"id": 1, "selector": 10}, {"id": 2, "selector": 11}, {"id": 3, "selector": 12} ],
  "groups":  [ {"id": 100, "size": 8,
                "members": [ {"id": 1}, {"id": 2, "active": false} ]} ],
  "entries": [ {"session": 5, "group": 100}, {"session": 6, "member": 3} ],
  "default": {"member": 1}
})";

// The plug-in on a fresh private chip, made by its two factories as the agent
// makes it, with the agent's hold on it and the configuration it runs.
class ConfigApplierTest : public testing::Test {
 protected:
  void SetUp() override {
    chipsim_config config{};
    chip.configDefault(&config);
    ASSERT_EQ(chip.configure(&config), 0);
    ASSERT_EQ(chip.attach(nullptr), 0);
    chipHandle = dlopen(CHIPSIM_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(chipHandle, nullptr) << dlerror();
    auto table = ingressMirrorLagGroupTableFactory(nullptr, nullptr, chipHandle, kSession, kDevice,
                                                   kPipe, CHIPSIM_LIBRARY);
    auto profile = ingressMirrorLagGroupActionProfileFactory(table);
    agentTable = std::make_unique<AgentTable>(table, profile);
    applier = std::make_unique<ConfigApplier>(*agentTable);
  }
  void TearDown() override {
    EXPECT_EQ(chipFault(), "");
    if (chipHandle != nullptr)
      dlclose(chipHandle);
  }

  // Applies `text` over the running configuration, which it then is.
  void apply(const std::string& text) {
    const AgentConfig wanted = AgentConfig::fromText(text);
    applier->apply(running, wanted);
    running = wanted;
  }

  // The selectors the chip picks for `session` over many packet hashes; empty
  // when the session misses.
  std::set<std::uint16_t> picks(std::uint16_t session) const {
    std::set<std::uint16_t> selectors;
    for (std::uint32_t hash = 0; hash < 512; ++hash) {
      std::uint16_t selector = 0;
      if (chip.lookupOnPipe(0, session, hash * 2654435761u, &selector) == 0)
        selectors.insert(selector);
    }
    return selectors;
  }

  std::vector<std::string> logLines() const {
    std::vector<std::string> lines;
    for (std::uint32_t i = 0; i < chip.logCount(); ++i)
      lines.emplace_back(chip.logLine(i));
    return lines;
  }

  std::string chipFault() const {
    const char* fault = chip.check();
    return fault != nullptr ? fault : "";
  }

  // The chip's counts and forwarding, for comparing before and after.
  struct ChipState {
    std::uint32_t entries, members, groups;
    std::set<std::uint16_t> session5, session6, session7;
    bool operator==(const ChipState&) const = default;
  };
  ChipState chipState() const {
    return {chip.entries(), chip.members(), chip.groups(), picks(5), picks(6), picks(7)};
  }

  const chipsim_test::ChipsimLibrary& chip = chipsim_test::chipsim();
  void* chipHandle = nullptr;
  std::unique_ptr<AgentTable> agentTable;
  std::unique_ptr<ConfigApplier> applier;
  AgentConfig running;
};

TEST_F(ConfigApplierTest, AppliesAConfigurationToAnEmptyChip) {
  apply(kExample);
  EXPECT_EQ(chip.members(), 3u);
  EXPECT_EQ(chip.groups(), 1u);
  EXPECT_EQ(chip.entries(), 2u);
  // Member 2 is inactive: the group forwards to member 1 alone.
  EXPECT_EQ(picks(5), (std::set<std::uint16_t>{10}));
  EXPECT_EQ(picks(6), (std::set<std::uint16_t>{12}));
  EXPECT_THAT(applier->changes(),
              ElementsAre("member 1 add", "member 2 add", "member 3 add", "group 100 add",
                          "entry 5 group 100", "entry 6 member 3", "default member 1"));
}

TEST_F(ConfigApplierTest, ApplyingTheRunningConfigurationAgainMakesNoPdCall) {
  apply(kExample);
  chip.logClear();
  apply(kExample);
  EXPECT_THAT(logLines(), IsEmpty());
  EXPECT_THAT(applier->changes(), IsEmpty());
}

TEST_F(ConfigApplierTest, AppliesOnlyTheDifference) {
  apply(kExample);
  chip.logClear();
  apply(R"({
    "members": [ {"id": 1, "selector": 10}, {"id": 2, "selector": 21}, {"id": 3, "selector": 12} ],
    "groups":  [ {"id": 100, "size": 8,
                  "members": [ {"id": 1}, {"id": 2}, {"id": 3} ]} ],
    "entries": [ {"session": 5, "group": 100}, {"session": 7, "member": 3} ]
  })");
  EXPECT_THAT(applier->changes(), ElementsAre("member 2 selector 21", "group 100 member 2 active",
                                              "group 100 member 3 add", "entry 7 member 3",
                                              "default del", "entry 6 del"));
  EXPECT_EQ(picks(5), (std::set<std::uint16_t>{10, 21, 12}));
  EXPECT_TRUE(picks(6).empty());
  EXPECT_EQ(picks(7), (std::set<std::uint16_t>{12}));
}

TEST_F(ConfigApplierTest, AFullGroupChangesMembersByLettingOneLeaveFirst) {
  const std::string members =
      R"("members": [{"id": 1, "selector": 10}, {"id": 2, "selector": 11},
                     {"id": 3, "selector": 12}], "entries": [{"session": 5, "group": 100}])";
  apply("{" + members + R"(, "groups": [{"id": 100, "size": 2,
                                         "members": [{"id": 1}, {"id": 2}]}]})");
  apply("{" + members + R"(, "groups": [{"id": 100, "size": 2,
                                         "members": [{"id": 1}, {"id": 3}]}]})");
  EXPECT_THAT(applier->changes(), ElementsAre("group 100 member 2 del", "group 100 member 3 add"));
  EXPECT_EQ(picks(5), (std::set<std::uint16_t>{10, 12}));
}

TEST_F(ConfigApplierTest, AnEmptyConfigurationEmptiesTheChip) {
  apply(kExample);
  apply("{}");
  EXPECT_EQ(chip.entries(), 0u);
  EXPECT_EQ(chip.members(), 0u);
  EXPECT_EQ(chip.groups(), 0u);
  EXPECT_THAT(applier->changes(),
              ElementsAre("default del", "entry 5 del", "entry 6 del", "group 100 del",
                          "member 1 del", "member 2 del", "member 3 del"));
}

TEST_F(ConfigApplierTest, AGroupCannotChangeItsShapeInPlace) {
  apply(kExample);
  chip.logClear();
  const AgentConfig wanted = AgentConfig::fromText(R"({
    "members": [ {"id": 1, "selector": 10}, {"id": 2, "selector": 11}, {"id": 3, "selector": 12} ],
    "groups":  [ {"id": 100, "size": 4, "members": [ {"id": 1} ]} ]})");
  try {
    applier->apply(running, wanted);
    ADD_FAILURE() << "applied";
  } catch (const ConfigError& e) {
    EXPECT_EQ(std::string(e.what()),
              "/groups: group 100: its size and first member cannot change while it exists; "
              "remove it first");
  }
  EXPECT_THAT(logLines(), IsEmpty());
}

// Each PD function of an apply that changes every kind of object, refused
// once: the changes already made are undone, and the chip forwards as before.
class ConfigApplierRollbackTest : public ConfigApplierTest,
                                  public testing::WithParamInterface<std::string> {};

TEST_P(ConfigApplierRollbackTest, ARefusedChangeUndoesTheApply) {
  apply(kRollbackBefore);
  const ChipState before = chipState();
  const AgentConfig wanted = AgentConfig::fromText(kRollbackWanted);
  ASSERT_EQ(chip.failNext(GetParam().c_str(), 9, 1), 0);
  EXPECT_THROW(applier->apply(running, wanted), ApplyError);
  EXPECT_EQ(chipState(), before);
  EXPECT_EQ(chipFault(), "");
  // The running configuration still applies cleanly, and the new one too.
  chip.logClear();
  applier->apply(running, running);
  EXPECT_THAT(logLines(), IsEmpty());
  applier->apply(running, wanted);
  EXPECT_EQ(picks(5), (std::set<std::uint16_t>{12}));
}

INSTANTIATE_TEST_SUITE_P(EveryCallOfTheApply, ConfigApplierRollbackTest,
                         testing::ValuesIn(kRollbackCalls), rollbackCaseName);

}  // namespace
}  // namespace mirrorlag_agent
