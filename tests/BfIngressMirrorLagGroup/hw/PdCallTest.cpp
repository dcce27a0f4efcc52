#include "BfIngressMirrorLagGroup/hw/PdCall.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "BfIngressMirrorLagGroup/hw/BfTableFull.h"
#include "BfIngressMirrorLagGroup/hw/DeviceTarget.h"

namespace BfIngressMirrorLagGroup {
namespace {

using PdLib = IngressMirrorLagGroupTableHelper::PdLib;

class PdCallTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(chipHandle, nullptr) << dlerror();
    helper->pdLibIs("libchipsim.so", chipHandle, 7);
  }
  void TearDown() override {
    helper = nullptr;
    dlclose(chipHandle);
  }

  void* chipHandle = dlopen(CHIPSIM_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  Vel::Ptr<IngressMirrorLagGroupTableHelper> helper = ingressMirrorLagGroupTableHelperFactory(3, 2);
};

TEST_F(PdCallTest, TheCallRunsInAnExpectationOfIdOneWithHelperAndPdObjectHeld) {
  const std::uint32_t helperRefs = helper->references();
  const std::uint32_t pdRefs = helper->pdLib()->references();
  bool called = false;
  pdCall(helper, "p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry", [&](PdLib& pd) {
    called = true;
    EXPECT_EQ(&pd, helper->pdLib().get());
    EXPECT_TRUE(Vel::Expect::isExpected(pdExceptionId));
    EXPECT_EQ(Vel::Expect::depth(), 1u);
    EXPECT_EQ(helper->references(), helperRefs + 1);
    EXPECT_EQ(helper->pdLib()->references(), pdRefs + 1);
    return pipe_status{0};
  });
  EXPECT_TRUE(called);
  EXPECT_EQ(pdExceptionId, 1u);
  EXPECT_EQ(Vel::Expect::depth(), 0u);
  EXPECT_EQ(helper->references(), helperRefs);
  EXPECT_EQ(helper->pdLib()->references(), pdRefs);
}

TEST_F(PdCallTest, AFailedCallThrowsByItsStatusAndClosesTheExpectation) {
  try {
    pdCall(helper, "p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry",
           [](PdLib&) { return pipe_status{9}; });
    FAIL() << "no exception";
  } catch (const BfTable::BfTableFull& e) {
    EXPECT_EQ(e.message(),
              "p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry() failed: Not enough Space");
  }
  EXPECT_EQ(Vel::Expect::depth(), 0u);
}

TEST_F(PdCallTest, PdCallStatusGivesTheStatusWithoutThrowing) {
  EXPECT_EQ(pdCallStatus(helper, [](PdLib&) { return pipe_status{6}; }), 6);
  EXPECT_EQ(Vel::Expect::depth(), 0u);
}

TEST_F(PdCallTest, DeviceTargetWidensDeviceAndPipe) {
  const p4_pd_device_target_t target = deviceTarget(*helper);
  EXPECT_EQ(target.device_id, 3);
  EXPECT_EQ(target.pipe_id, 2u);
  EXPECT_EQ(deviceId(*helper), 3);
  const auto allPipes = ingressMirrorLagGroupTableHelperFactory(255, 0xFFFF);
  EXPECT_EQ(deviceTarget(*allPipes).device_id, 255);
  EXPECT_EQ(deviceTarget(*allPipes).pipe_id, 0xFFFFu);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
