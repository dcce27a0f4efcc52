#include "config/AgentConfig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "config/ConfigError.h"

namespace mirrorlag_agent {
namespace {

using testing::ElementsAre;

const std::string kExample = R"({
  "members": [ {"id": 1, "selector": 10}, {"id": 2, "selector": 11} ],
  "groups":  [ {"id": 100, "size": 8,
                "members": [ {"id": 1}, {"id": 2, "active": false} ]} ],
  "entries": [ {"session": 5, "group": 100}, {"session": 6, "member": 1} ],
  "default": {"member": 1}
})";

TEST(AgentConfigTest, ReadsEveryPartOfTheExample) {
  const AgentConfig config = AgentConfig::fromText(kExample);
  EXPECT_EQ(config.members, (std::map<std::uint32_t, std::uint16_t>{{1, 10}, {2, 11}}));
  ASSERT_EQ(config.groups.size(), 1u);
  const GroupConfig& group = config.groups.at(100);
  EXPECT_EQ(group.size, 8u);
  EXPECT_THAT(group.members, ElementsAre(GroupMemberConfig{1, true}, GroupMemberConfig{2, false}));
  EXPECT_EQ(config.entries.at(5), (ConfigTarget{false, 100}));
  EXPECT_EQ(config.entries.at(6), (ConfigTarget{true, 1}));
  EXPECT_EQ(config.defaultTarget, (ConfigTarget{true, 1}));
  EXPECT_TRUE(config.notes().empty());
}

TEST(AgentConfigTest, EveryTopLevelKeyIsOptional) {
  const AgentConfig config = AgentConfig::fromText("{}");
  EXPECT_TRUE(config.members.empty());
  EXPECT_TRUE(config.groups.empty());
  EXPECT_TRUE(config.entries.empty());
  EXPECT_FALSE(config.defaultTarget.has_value());
}

TEST(AgentConfigTest, ItsJsonFormReadsBackAsTheSameConfiguration) {
  const AgentConfig config = AgentConfig::fromText(kExample);
  const nlohmann::json written = config.toJson();
  EXPECT_EQ(AgentConfig::fromJson(written), config);
  // Written in id order, an active member without its flag.
  EXPECT_EQ(written["groups"][0]["members"][0], nlohmann::json({{"id", 1}}));
  EXPECT_EQ(written["groups"][0]["members"][1], nlohmann::json({{"id", 2}, {"active", false}}));
  EXPECT_EQ(written["entries"][0], nlohmann::json({{"session", 5}, {"group", 100}}));
}

TEST(AgentConfigTest, SizesAboveTheChipsLimitAreNotedAsCapped) {
  const AgentConfig config = AgentConfig::fromText(
      R"({"members": [{"id": 1, "selector": 1}],
          "groups": [{"id": 7, "size": 500, "members": [{"id": 1}]},
                     {"id": 8, "size": 120, "members": [{"id": 1}]}]})");
  EXPECT_THAT(config.notes(), ElementsAre("group 7: size 500 is capped to 120"));
  EXPECT_EQ(config.groups.at(7).size, 500u);
}

// A configuration and the message it is refused with.
struct BadConfig {
  const char* text;
  const char* message;
};

// A case is named by its message in test listings.
void PrintTo(const BadConfig& bad, std::ostream* out) {
  *out << bad.message;
}

class AgentConfigRefusalTest : public testing::TestWithParam<BadConfig> {};

TEST_P(AgentConfigRefusalTest, IsRefusedWithThePathOfItsFault) {
  try {
    AgentConfig::fromText(GetParam().text);
    ADD_FAILURE() << "accepted";
  } catch (const ConfigError& e) {
    EXPECT_EQ(std::string(e.what()), GetParam().message);
  }
}

constexpr const char* kTwoMembers =
    R"("members": [{"id": 1, "selector": 1}, {"id": 2, "selector": 2}])";

std::string with(const char* rest) {
  return std::string("{") + kTwoMembers + ", " + rest + "}";
}

const std::string kBadGroupMember =
    with(R"("groups": [{"id": 9, "size": 2, "members": [{"id": 3}]}])");
const std::string kEmptyGroup = with(R"("groups": [{"id": 9, "size": 2, "members": []}])");
const std::string kZeroSize = with(R"("groups": [{"id": 9, "size": 0, "members": [{"id": 1}]}])");
const std::string kOverfull =
    with(R"("groups": [{"id": 9, "size": 1, "members": [{"id": 1}, {"id": 2}]}])");
const std::string kTwiceInGroup =
    with(R"("groups": [{"id": 9, "size": 2, "members": [{"id": 1}, {"id": 1}]}])");
const std::string kActiveText =
    with(R"("groups": [{"id": 9, "size": 2, "members": [{"id": 1, "active": "no"}]}])");
const std::string kBothTargets = with(R"("entries": [{"session": 1, "member": 1, "group": 9}])");
const std::string kNoTarget = with(R"("entries": [{"session": 1}])");
const std::string kUnknownGroup = with(R"("entries": [{"session": 1, "group": 9}])");
const std::string kSessionRange = with(R"("entries": [{"session": 65536, "member": 1}])");
const std::string kSessionTwice =
    with(R"("entries": [{"session": 1, "member": 1}, {"session": 1, "member": 2}])");
const std::string kDefaultUnknown = with(R"("default": {"member": 7})");
const std::string kDefaultKey = with(R"("default": {"member": 1, "weight": 2})");

INSTANTIATE_TEST_SUITE_P(
    BadConfigs, AgentConfigRefusalTest,
    testing::Values(
        BadConfig{"[]", "/: expected an object, found array"},
        BadConfig{"{\"member\": []}", "/member: unknown key"},
        BadConfig{"{\"members\": {}}", "/members: expected an array, found object"},
        BadConfig{"{\"members\": [{\"id\": 1}]}", "/members/0/selector: missing"},
        BadConfig{"{\"members\": [{\"id\": -1, \"selector\": 1}]}",
                  "/members/0/id: -1 is not in 0 to 4294967295"},
        BadConfig{"{\"members\": [{\"id\": 4294967296, \"selector\": 1}]}",
                  "/members/0/id: 4294967296 is not in 0 to 4294967295"},
        BadConfig{"{\"members\": [{\"id\": \"1\", \"selector\": 1}]}",
                  "/members/0/id: expected a whole number from 0 to 4294967295, found string"},
        BadConfig{"{\"members\": [{\"id\": 1.5, \"selector\": 1}]}",
                  "/members/0/id: expected a whole number from 0 to 4294967295, found 1.5"},
        BadConfig{"{\"members\": [{\"id\": 1, \"selector\": 70000}]}",
                  "/members/0/selector: 70000 is not in 0 to 65535"},
        BadConfig{"{\"members\": [{\"id\": 1, \"selector\": 1}, {\"id\": 1, \"selector\": 2}]}",
                  "/members/1/id: member 1 is given twice"},
        BadConfig{"{\"members\": [{\"id\": 1, \"selector\": 1, \"port\": 3}]}",
                  "/members/0/port: unknown key"},
        BadConfig{kBadGroupMember.c_str(), "/groups/0/members/0/id: member 3 is not configured"},
        BadConfig{kEmptyGroup.c_str(), "/groups/0/members: a group keeps at least one member"},
        BadConfig{kZeroSize.c_str(), "/groups/0/size: 0 is not in 1 to 4294967295"},
        BadConfig{kOverfull.c_str(),
                  "/groups/0/members/1: group 9 of size 1 holds at most 1 members"},
        BadConfig{kTwiceInGroup.c_str(), "/groups/0/members/1/id: member 1 is given twice"},
        BadConfig{kActiveText.c_str(),
                  "/groups/0/members/0/active: expected true or false, found string"},
        BadConfig{kBothTargets.c_str(), "/entries/0: name exactly one of \"member\" or \"group\""},
        BadConfig{kNoTarget.c_str(), "/entries/0: name exactly one of \"member\" or \"group\""},
        BadConfig{kUnknownGroup.c_str(), "/entries/0/group: group 9 is not configured"},
        BadConfig{kSessionRange.c_str(), "/entries/0/session: 65536 is not in 0 to 65535"},
        BadConfig{kSessionTwice.c_str(), "/entries/1/session: session 1 is given twice"},
        BadConfig{kDefaultUnknown.c_str(), "/default/member: member 7 is not configured"},
        BadConfig{kDefaultKey.c_str(), "/default/weight: unknown key"}));

TEST(AgentConfigTest, ANumberTooLargeForAnyTypeIsRefusedAsNotJson) {
  try {
    AgentConfig::fromText(R"({"members": [{"id": 1e999, "selector": 1}]})");
    ADD_FAILURE() << "accepted";
  } catch (const ConfigError& e) {
    EXPECT_EQ(std::string(e.what()).rfind("/: not JSON: ", 0), 0u) << e.what();
  }
}

TEST(AgentConfigTest, TextThatIsNotJsonIsRefusedAtTheTop) {
  try {
    AgentConfig::fromText("{\"members\": [");
    ADD_FAILURE() << "accepted";
  } catch (const ConfigError& e) {
    EXPECT_EQ(e.path(), "");
    EXPECT_EQ(std::string(e.what()).rfind("/: not JSON: ", 0), 0u) << e.what();
  }
}

}  // namespace
}  // namespace mirrorlag_agent
