#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "ActionProfileFixture.h"
#include "BfIngressMirrorLagGroup/hw/PluginTrace.h"
#include "Vel/TraceCapture.h"

namespace Vel {

void PrintTo(const TraceRecord& record, std::ostream* out) {
  *out << TraceSink::line(record);
}

}  // namespace Vel

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kSource =
    "bf_kestro_switch/vel/BfIngressMirrorLagGroup/BfIngressMirrorLagGroup";
constexpr const char* kHandle = "BfIngressMirrorLagGroup";
const std::string kSm = "void BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::";

Vel::TraceRecord record(unsigned line, const char* handler, const std::string& signature) {
  return Vel::TraceRecord{kHandle, 9, kSource, line, handler, signature};
}

// Every handler traces its signature at level 9, at its line of the table
// description, under its own name.
class HandlerTraceTest : public ActionProfileFixture {
 protected:
  void SetUp() override {
    ActionProfileFixture::SetUp();
    makeSm();
  }
  void TearDown() override {
    pluginTrace().levelIs(Vel::TraceHandle::off);
    ActionProfileFixture::TearDown();
  }

  Vel::TraceCapture capture;
};

TEST_F(HandlerTraceTest, MemberAddAndDeleteTraceTheirSignatures) {
  pluginTrace().levelIs(9);
  const auto entry = memberIs(5, 500);
  entry->actionIs(selectorAction(501));
  profile->entryDel(BfnTable::BfnMemberId(5));
  const auto add =
      record(329, "handleActionProfileAdd", kSm + "VelActionProfile::handleActionProfileAdd()");
  EXPECT_THAT(capture.records(),
              ElementsAre(add, add,
                          record(388, "handleActionProfileDel",
                                 kSm + "VelActionProfile::handleActionProfileDel()")));
}

TEST_F(HandlerTraceTest, GroupAndGroupMemberHandlersTraceTheirSignatures) {
  memberIs(1, 100);
  memberIs(2, 200);
  pluginTrace().levelIs(9);
  const auto group = groupIs(10, 4, 1);
  group->memberIs(BfnTable::BfnMemberId(2));
  group->member(BfnTable::BfnMemberId(2))->activeIs(false);
  group->memberDel(BfnTable::BfnMemberId(2));
  const auto memberAdd =
      record(451, "handleMemberAdd", kSm + "VelGroup::VelGroupMember::handleMemberAdd()");
  EXPECT_THAT(
      capture.records(),
      ElementsAre(
          record(404, "handleGroupAdd", kSm + "VelGroup::handleGroupAdd()"), memberAdd, memberAdd,
          record(492, "handleActive", kSm + "VelGroup::VelGroupMember::handleActive()"),
          record(471, "handleMemberDel", kSm + "VelGroup::VelGroupMember::handleMemberDel()")));
  capture.clear();
  profile->groupDel(BfnTable::BfnGroupId(10));
  EXPECT_THAT(capture.records(),
              ElementsAre(record(433, "handleGroupDel", kSm + "VelGroup::handleGroupDel()"),
                          record(471, "handleMemberDel",
                                 kSm + "VelGroup::VelGroupMember::handleMemberDel()")));
}

TEST_F(HandlerTraceTest, LowerLevelsTraceNothing) {
  pluginTrace().levelIs(8);
  memberIs(1, 100);
  groupIs(10, 4, 1);
  profile->groupDel(BfnTable::BfnGroupId(10));
  EXPECT_THAT(capture.records(), IsEmpty());
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
