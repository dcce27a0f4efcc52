#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "BfIngressMirrorLagGroup/hw/PluginTrace.h"
#include "TableFixture.h"
#include "Vel/TraceCapture.h"

namespace Vel {

void PrintTo(const TraceRecord& record, std::ostream* out) {
  *out << TraceSink::line(record);
}

}  // namespace Vel

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;

constexpr const char* kSource =
    "bf_kestro_switch/vel/BfIngressMirrorLagGroup/BfIngressMirrorLagGroup";
constexpr const char* kHandle = "BfIngressMirrorLagGroup";

const std::string kEntryIsSignature =
    "void BfIngressMirrorLagGroup::IngressMirrorLagGroupTable::entryIs(const "
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry&)";
const std::string kEntryDelSignature =
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry "
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTable::entryDel(const Vel::Ptr<const "
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec>&)";
const std::string kEntrySignature =
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry "
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTable::entry(const Vel::Ptr<const "
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec>&) const";
const std::string kEntryByHandleSignature =
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry "
    "BfIngressMirrorLagGroup::IngressMirrorLagGroupTable::entryByHandle(BfnTable::"
    "BfnSdkEntryHandle) const";

Vel::TraceRecord record(unsigned level, unsigned line, const char* function,
                        const std::string& message) {
  return Vel::TraceRecord{kHandle, level, kSource, line, function, message};
}

// Captures the plug-in's traces at a level for the test's lifetime, then
// switches them off again.
class IngressMirrorLagGroupTableTraceTest : public TableFixture {
 protected:
  void TearDown() override {
    pluginTrace().levelIs(Vel::TraceHandle::off);
    TableFixture::TearDown();
  }

  Vel::TraceCapture capture;
};

TEST_F(IngressMirrorLagGroupTableTraceTest, ThereIsOneHandleNamedAfterThePlugIn) {
  EXPECT_EQ(&pluginTrace(), &pluginTrace());
  EXPECT_EQ(pluginTrace().name(), kHandle);
  // Every handle of that name shares its level.
  Vel::TraceHandle::levelIs(kHandle, 4);
  EXPECT_EQ(pluginTrace().level(), 4);
}

TEST_F(IngressMirrorLagGroupTableTraceTest, EntryIsAndEntryDelTraceTheirSignatureAtLevelNine) {
  memberIs(11, 500);
  const auto match = matchOf(5);
  pluginTrace().levelIs(9);
  table->entryIs(memberEntry(match, 11));
  table->entryDel(match);
  EXPECT_THAT(capture.records(), ElementsAre(record(9, 179, "entryIs", kEntryIsSignature),
                                             record(9, 302, "entryDel", kEntryDelSignature)));
}

TEST_F(IngressMirrorLagGroupTableTraceTest, EntryTracesItselfTheReadAndTheMemberFound) {
  const std::uint32_t mbr = memberIs(11, 500);
  const auto match = matchOf(5);
  table->entryIs(memberEntry(match, 11));
  const std::uint32_t handle = registry().entry(match);
  pluginTrace().levelIs(9);
  table->entry(match);
  EXPECT_THAT(capture.records(),
              ElementsAre(record(9, 169, "entry", kEntrySignature),
                          record(9, 110, "entryByHandle", kEntryByHandleSignature),
                          record(8, 146, "entryByHandle",
                                 "entryByHandle: sdkHandle=" + std::to_string(handle) +
                                     " mbr_hdl=" + std::to_string(mbr) + " memberId=11")));
}

TEST_F(IngressMirrorLagGroupTableTraceTest, EntryByHandleTracesTheGroupFound) {
  const std::uint32_t grp = groupIs(4);
  const auto match = matchOf(5);
  table->entryIs(groupEntry(match, 4));
  const std::uint32_t handle = registry().entry(match);
  pluginTrace().levelIs(8);
  table->entryByHandle(handle);
  EXPECT_THAT(capture.records(),
              ElementsAre(record(8, 161, "entryByHandle",
                                 "entryByHandle: sdkHandle=" + std::to_string(handle) +
                                     " grp_hdl=" + std::to_string(grp) + " groupId=4")));
}

TEST_F(IngressMirrorLagGroupTableTraceTest, AFailedReadTracesNoDetail) {
  pluginTrace().levelIs(9);
  table->entryByHandle(4242);
  EXPECT_THAT(capture.records(),
              ElementsAre(record(9, 110, "entryByHandle", kEntryByHandleSignature)));
}

TEST_F(IngressMirrorLagGroupTableTraceTest, LowerLevelsTraceNothing) {
  memberIs(11, 500);
  const auto match = matchOf(5);
  pluginTrace().levelIs(7);
  table->entryIs(memberEntry(match, 11));
  table->entry(match);
  table->entryDel(match);
  EXPECT_TRUE(capture.records().empty());
}

TEST_F(IngressMirrorLagGroupTableTraceTest, TracesAreWrittenAsOneLineEach) {
  memberIs(11, 500);
  pluginTrace().levelIs(9);
  table->entryIs(memberEntry(matchOf(5), 11));
  EXPECT_THAT(capture.lines(), ElementsAre(std::string(kHandle) + "[9] " + kSource +
                                           ":179 entryIs: " + kEntryIsSignature));
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
