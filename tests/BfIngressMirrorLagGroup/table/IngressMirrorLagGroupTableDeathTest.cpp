#include <gtest/gtest.h>

#include <string>

#include "BfIngressMirrorLagGroup/hw/TableSourcePath.h"
#include "TableTest.h"

namespace BfIngressMirrorLagGroup {
namespace {

// How the compiler writes a reference parameter in a function's signature.
#if defined(__clang__)
constexpr const char* kRef = " &";
#else
constexpr const char* kRef = "&";
#endif

const std::string kEntryIs =
    std::string(
        "void BfIngressMirrorLagGroup::IngressMirrorLagGroupTable::entryIs(const "
        "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry") +
    kRef + ")";
// clang writes a template argument as the declaration spells it, g++ fully
// qualified.
#if defined(__clang__)
constexpr const char* kMatchSpecArg = "Vel::Ptr<const IngressMirrorLagGroupMatchSpec>";
#else
constexpr const char* kMatchSpecArg =
    "Vel::Ptr<const BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec>";
#endif

const std::string kEntryDel =
    std::string(
        "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry "
        "BfIngressMirrorLagGroup::IngressMirrorLagGroupTable::entryDel(const ") +
    kMatchSpecArg + kRef + ")";

// A pattern that matches exactly `text` and nothing else.
std::string exactly(const std::string& text) {
  std::string pattern = "^";
  for (char c : text) {
    if (std::string("\\^$.|?*+()[]{}").find(c) != std::string::npos)
      pattern += '\\';
    pattern += c;
  }
  return pattern + "$";
}

// The report of a failed assertion at a line of the table description.
std::string report(unsigned line, const std::string& function, const std::string& text) {
  return exactly(std::string(tableSourcePath) + ":" + std::to_string(line) + ": " + function +
                 ": Assertion '" + text + "' failed.\n");
}

class IngressMirrorLagGroupTableDeathTest : public TableTest {
 protected:
  void SetUp() override {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    TableTest::SetUp();
  }
};

TEST_F(IngressMirrorLagGroupTableDeathTest, NullMatchStops) {
  EXPECT_DEATH(table->entryIs(memberEntry(nullptr, 11)),
               report(180, kEntryIs, "entry.match() != __null"));
}

TEST_F(IngressMirrorLagGroupTableDeathTest, DefaultEntryOfAnUnknownMemberStops) {
  const auto defaultMatch = table->defaultMatchSpecIs();
  EXPECT_DEATH(table->entryIs(memberEntry(defaultMatch, 11)), report(194, kEntryIs, "mbr_hdl"));
}

TEST_F(IngressMirrorLagGroupTableDeathTest, DefaultEntryOfAnUnknownGroupStops) {
  const auto defaultMatch = table->defaultMatchSpecIs();
  EXPECT_DEATH(table->entryIs(groupEntry(defaultMatch, 4)), report(212, kEntryIs, "grp_hdl"));
}

TEST_F(IngressMirrorLagGroupTableDeathTest, ModifyToAnUnknownMemberStops) {
  memberIs(11, 500);
  const auto match = matchOf(5);
  table->entryIs(memberEntry(match, 11));
  EXPECT_DEATH(table->entryIs(memberEntry(match, 12)), report(228, kEntryIs, "mbr_hdl"));
}

TEST_F(IngressMirrorLagGroupTableDeathTest, ModifyToAMemberOfAnEntryWithoutHandleStops) {
  memberIs(11, 500);
  const auto match = matchOf(5);
  registry().entryIs(match, 0);
  EXPECT_DEATH(table->entryIs(memberEntry(match, 11)), report(231, kEntryIs, "entry_hdl"));
}

TEST_F(IngressMirrorLagGroupTableDeathTest, AddOfAnUnknownMemberStops) {
  EXPECT_DEATH(table->entryIs(memberEntry(matchOf(5), 11)), report(247, kEntryIs, "mbr_hdl"));
}

TEST_F(IngressMirrorLagGroupTableDeathTest, ModifyToAnUnknownGroupStops) {
  memberIs(11, 500);
  const auto match = matchOf(5);
  table->entryIs(memberEntry(match, 11));
  EXPECT_DEATH(table->entryIs(groupEntry(match, 4)), report(264, kEntryIs, "grp_hdl"));
}

TEST_F(IngressMirrorLagGroupTableDeathTest, ModifyToAGroupOfAnEntryWithoutHandleStops) {
  groupIs(4);
  const auto match = matchOf(5);
  registry().entryIs(match, 0);
  EXPECT_DEATH(table->entryIs(groupEntry(match, 4)), report(267, kEntryIs, "entry_hdl"));
}

TEST_F(IngressMirrorLagGroupTableDeathTest, AddOfAnUnknownGroupStops) {
  EXPECT_DEATH(table->entryIs(groupEntry(matchOf(5), 4)), report(283, kEntryIs, "grp_hdl"));
}

TEST_F(IngressMirrorLagGroupTableDeathTest, NoneIsTakenForGroupZeroAndStops) {
  const IngressMirrorLagGroupTableEntry none(matchOf(5),
                                             IngressMirrorLagGroupMemberOrGroupOrNone());
  EXPECT_DEATH(table->entryIs(none), report(283, kEntryIs, "grp_hdl"));
}

TEST_F(IngressMirrorLagGroupTableDeathTest, DeleteOfAnUnprogrammedEntryStops) {
  EXPECT_DEATH(table->entryDel(matchOf(5)),
               report(303, kEntryDel, "helper()->sdkHandles()->entry( match )"));
}

TEST_F(IngressMirrorLagGroupTableDeathTest, DeleteOfADeletedEntryStops) {
  memberIs(11, 500);
  const auto match = matchOf(5);
  table->entryIs(memberEntry(match, 11));
  table->entryDel(match);
  EXPECT_DEATH(table->entryDel(match),
               report(303, kEntryDel, "helper()->sdkHandles()->entry( match )"));
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
