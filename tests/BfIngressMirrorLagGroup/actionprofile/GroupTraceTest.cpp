#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "ActionProfileFixture.h"
#include "BfIngressMirrorLagGroup/hw/PluginTrace.h"
#include "Vel/Allocate.h"
#include "Vel/BulkChange.h"
#include "Vel/TraceCapture.h"

namespace Vel {

// How a failed expectation shows a record; local to this file.
static void PrintTo(const TraceRecord& record, std::ostream* out) {
  *out << TraceSink::line(record);
}

}  // namespace Vel

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

BfnTable::BfnGroupId gid(std::uint32_t id) {
  return BfnTable::BfnGroupId(id);
}
BfnTable::BfnMemberId mid(std::uint32_t id) {
  return BfnTable::BfnMemberId(id);
}

constexpr const char* kSource =
    "bf_kestro_switch/vel/BfIngressMirrorLagGroup/BfIngressMirrorLagGroup";
constexpr const char* kHandle = "BfIngressMirrorLagGroup";
const std::string kSm = "void BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::";

// The level-9 record of a handler: its line, its name as tag, its signature.
Vel::TraceRecord record(unsigned line, const char* handler, const std::string& signature) {
  return Vel::TraceRecord{kHandle, 9, kSource, line, handler, signature};
}

const Vel::TraceRecord kGroupAdd =
    record(404, "handleGroupAdd", kSm + "VelGroup::handleGroupAdd()");
const Vel::TraceRecord kGroupDel =
    record(433, "handleGroupDel", kSm + "VelGroup::handleGroupDel()");
const Vel::TraceRecord kMemberAdd =
    record(451, "handleMemberAdd", kSm + "VelGroup::VelGroupMember::handleMemberAdd()");
const Vel::TraceRecord kMemberDel =
    record(471, "handleMemberDel", kSm + "VelGroup::VelGroupMember::handleMemberDel()");
const Vel::TraceRecord kActive =
    record(492, "handleActive", kSm + "VelGroup::VelGroupMember::handleActive()");

// The group and group-member handlers trace their signatures at level 9 on
// the plug-in's handle, at their lines of the table description.
class GroupTraceTest : public ActionProfileFixture {
 protected:
  void SetUp() override {
    ActionProfileFixture::SetUp();
    makeSm();
    memberIs(1, 100);
    memberIs(2, 200);
    memberIs(3, 300);
  }
  void TearDown() override {
    pluginTrace().levelIs(Vel::TraceHandle::off);
    ActionProfileFixture::TearDown();
  }

  Vel::TraceCapture capture;
};

TEST_F(GroupTraceTest, CreatingAGroupTracesTheGroupAddThenTheInitialMembersAdd) {
  pluginTrace().levelIs(9);
  groupIs(10, 4, 1);
  EXPECT_THAT(capture.records(), ElementsAre(kGroupAdd, kMemberAdd));
}

TEST_F(GroupTraceTest, AMemberJoiningTracesHandleMemberAdd) {
  const auto group = groupIs(10, 4, 1);
  pluginTrace().levelIs(9);
  group->memberIs(mid(2));
  EXPECT_THAT(capture.records(), ElementsAre(kMemberAdd));
}

TEST_F(GroupTraceTest, AMemberJoiningInactiveTracesOnlyHandleMemberAdd) {
  const auto group = groupIs(10, 4, 1);
  pluginTrace().levelIs(9);
  {
    Vel::BulkChange bulk(group, IngressMirrorLagGroupGroup::memberAttribute);
    group->memberIs(mid(2))->activeIs(false);
  }
  EXPECT_THAT(capture.records(), ElementsAre(kMemberAdd));
}

TEST_F(GroupTraceTest, AMemberLeavingTracesHandleMemberDel) {
  const auto group = groupIs(10, 4, 1);
  group->memberIs(mid(2));
  pluginTrace().levelIs(9);
  group->memberDel(mid(2));
  EXPECT_THAT(capture.records(), ElementsAre(kMemberDel));
}

TEST_F(GroupTraceTest, EveryChangeOfActiveAndEveryRePointingTracesHandleActive) {
  const auto group = groupIs(10, 4, 1);
  group->memberIs(mid(2));
  pluginTrace().levelIs(9);
  group->member(mid(2))->activeIs(false);
  group->member(mid(2))->activeIs(true);
  sm->group(gid(10))->groupMemberIs(Vel::allocate<IngressMirrorLagGroupMember>(mid(2)));
  EXPECT_THAT(capture.records(), ElementsAre(kActive, kActive, kActive));
  sm->group(gid(10))->groupMemberIs(group->member(mid(2)));
}

TEST_F(GroupTraceTest, DeletingAGroupTracesHandleGroupDelThenEachMembersDel) {
  const auto group = groupIs(10, 4, 1);
  group->memberIs(mid(2));
  group->memberIs(mid(3));
  pluginTrace().levelIs(9);
  profile->groupDel(gid(10));
  EXPECT_THAT(capture.records(), ElementsAre(kGroupDel, kMemberDel, kMemberDel, kMemberDel));
}

TEST_F(GroupTraceTest, BelowLevelNineNothingIsTraced) {
  pluginTrace().levelIs(8);
  const auto group = groupIs(10, 4, 1);
  group->memberIs(mid(2));
  group->member(mid(2))->activeIs(false);
  group->memberDel(mid(2));
  profile->groupDel(gid(10));
  EXPECT_THAT(capture.records(), IsEmpty());
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
