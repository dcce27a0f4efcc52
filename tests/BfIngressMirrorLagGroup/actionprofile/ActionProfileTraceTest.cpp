#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "ActionProfileFixture.h"
#include "BfIngressMirrorLagGroup/hw/PluginTrace.h"
#include "Vel/TraceCapture.h"

namespace Vel {

// Kept to this file: other test files of the executable print records too.
static void PrintTo(const TraceRecord& record, std::ostream* out) {
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
const std::string kAddSignature =
    "void BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::VelActionProfile::"
    "handleActionProfileAdd()";
const std::string kDelSignature =
    "void BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::VelActionProfile::"
    "handleActionProfileDel()";

const Vel::TraceRecord kAdd{kHandle, 9, kSource, 329, "handleActionProfileAdd", kAddSignature};
const Vel::TraceRecord kDel{kHandle, 9, kSource, 388, "handleActionProfileDel", kDelSignature};

// The member handlers trace their signatures at level 9 on the plug-in's
// handle; the test captures them and switches the traces off at its end.
class ActionProfileTraceTest : public ActionProfileFixture {
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

TEST_F(ActionProfileTraceTest, AddModifyAndDeleteTraceTheirHandlers) {
  pluginTrace().levelIs(9);
  const auto entry = memberIs(5, 500);
  entry->actionIs(selectorAction(501));
  profile->entryDel(BfnTable::BfnMemberId(5));
  EXPECT_THAT(capture.records(), ElementsAre(kAdd, kAdd, kDel));
}

TEST_F(ActionProfileTraceTest, TheTraceIsWrittenAsOneLine) {
  pluginTrace().levelIs(9);
  memberIs(5, 500);
  EXPECT_THAT(capture.lines(), ElementsAre(std::string(kHandle) + "[9] " + kSource +
                                           ":329 handleActionProfileAdd: " + kAddSignature));
}

TEST_F(ActionProfileTraceTest, AMemberThatIsNotProgrammedStillTracesTheAddHandler) {
  pluginTrace().levelIs(9);
  profile->entryIs(
      Vel::allocate<IngressMirrorLagGroupActionProfileEntry>(BfnTable::BfnMemberId(5), nullptr));
  EXPECT_THAT(capture.records(), ElementsAre(kAdd));
  sm->actionProfile(BfnTable::BfnMemberId(5))->ingressMirrorLagGroupActionProfileSmIs(nullptr);
}

TEST_F(ActionProfileTraceTest, AZombieStateMachineTracesTheDeleteHandler) {
  memberIs(5, 500);
  pluginTrace().levelIs(9);
  sm->velDoZombieReactors(true);
  EXPECT_THAT(capture.records(), ElementsAre(kDel));
}

TEST_F(ActionProfileTraceTest, LowerLevelsTraceNothing) {
  pluginTrace().levelIs(8);
  const auto entry = memberIs(5, 500);
  entry->actionIs(selectorAction(501));
  profile->entryDel(BfnTable::BfnMemberId(5));
  EXPECT_THAT(capture.records(), IsEmpty());
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
