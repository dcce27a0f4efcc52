#include <gtest/gtest.h>

#include <string>

#include "BfIngressMirrorLagGroup/hw/TableSourcePath.h"
#include "TableFixture.h"
#include "support/AssertionReport.h"

namespace BfIngressMirrorLagGroup {
namespace {

// The operations' signatures as the compiler writes them in an assertion
// report: clang keeps the parameter types as written and spaces the reference.
#if defined(__clang__)
const std::string kEntryIs =
    "void BfIngressMirrorLagGroup::IngressMirrorLagGroupTable::entryIs(const "
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry &)";
const std::string kEntryDel =
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry "
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTable::entryDel(const Vel::Ptr<const "
    "IngressMirrorLagGroupMatchSpec> &)";
#else
const std::string kEntryIs =
    "void BfIngressMirrorLagGroup::IngressMirrorLagGroupTable::entryIs(const "
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry&)";
const std::string kEntryDel =
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry "
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTable::entryDel(const Vel::Ptr<const "
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec>&)";
#endif

// The report of a failed assertion at a line of the table description.
std::string report(unsigned line, const std::string& function, const std::string& text) {
  return test_support::assertionReport(tableSourcePath, line, function, text);
}

class IngressMirrorLagGroupTableDeathTest : public TableFixture {
 protected:
  void SetUp() override {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    TableFixture::SetUp();
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

TEST_F(IngressMirrorLagGroupTableDeathTest, AddOfAnUnknownMemberStops) {
  EXPECT_DEATH(table->entryIs(memberEntry(matchOf(5), 11)), report(247, kEntryIs, "mbr_hdl"));
}

TEST_F(IngressMirrorLagGroupTableDeathTest, ModifyToAnUnknownGroupStops) {
  memberIs(11, 500);
  const auto match = matchOf(5);
  table->entryIs(memberEntry(match, 11));
  EXPECT_DEATH(table->entryIs(groupEntry(match, 4)), report(264, kEntryIs, "grp_hdl"));
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
