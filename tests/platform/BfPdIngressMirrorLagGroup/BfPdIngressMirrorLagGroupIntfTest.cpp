#include "BfPdIngressMirrorLagGroup/BfPdIngressMirrorLagGroupIntf.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "Vel/Allocate.h"
#include "Vel/RangeException.h"
#include "support/ChipLibraryCopy.h"
#include "support/ChipsimLibrary.h"

namespace BfPdIngressMirrorLagGroup {
namespace {

using chipsim_test::chipsim;

class BfPdIngressMirrorLagGroupIntfTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(chipHandle, nullptr) << dlerror();
    ASSERT_NE(programHandle, nullptr) << dlerror();
    ASSERT_EQ(chipsim().reset(), 0);
  }
  void TearDown() override {
    dlclose(chipHandle);
    dlclose(programHandle);
    EXPECT_EQ(live(), 0u);
  }

  static std::size_t live() {
    return Vel::AllocTrackTypeInfo::of<BfPdIngressMirrorLagGroupIntf>().liveObjects();
  }

  static std::string lastLogLine() {
    const std::uint32_t count = chipsim().logCount();
    return count == 0 ? std::string() : std::string(chipsim().logLine(count - 1));
  }

  void* chipHandle = dlopen(CHIPSIM_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  // The test program itself: it exports no PD function.
  void* programHandle = dlopen(nullptr, RTLD_NOW);
};

TEST_F(BfPdIngressMirrorLagGroupIntfTest, ResolvesEveryPdFunctionFromTheHandle) {
  auto intf = Vel::allocate<BfPdIngressMirrorLagGroupIntf>("libchipsim.so", chipHandle, 7u);
#define EXPECT_RESOLVED(fn, shortName)                                     \
  EXPECT_NE(reinterpret_cast<void*>(intf->fn.resolved()), nullptr) << #fn; \
  EXPECT_EQ(reinterpret_cast<void*>(intf->fn.resolved()), dlsym(chipHandle, #fn)) << #fn;
  KESTRO_SWITCH_PD_TABLE_FUNCTIONS(EXPECT_RESOLVED)
#undef EXPECT_RESOLVED
}

TEST_F(BfPdIngressMirrorLagGroupIntfTest, KeepsNameHandleAndSession) {
  auto intf = Vel::allocate<BfPdIngressMirrorLagGroupIntf>("libchipsim.so", chipHandle, 7u);
  EXPECT_EQ(intf->name(), "libchipsim.so");
  EXPECT_EQ(intf->dlHandle(), chipHandle);
  EXPECT_EQ(intf->sessionId(), 7u);
  intf->sessionIdIs(9);
  EXPECT_EQ(intf->sessionId(), 9u);
}

TEST_F(BfPdIngressMirrorLagGroupIntfTest, CallThroughTheObjectReachesTheChip) {
  auto intf = Vel::allocate<BfPdIngressMirrorLagGroupIntf>("libchipsim.so", chipHandle, 7u);
  EXPECT_EQ(
      intf->p4_pd_kestro_switch_ingressMirrorLagGroup_set_property(intf->sessionId(), 0, 1, 1), 0);
  EXPECT_EQ(lastLogLine(),
            "p4_pd_kestro_switch_ingressMirrorLagGroup_set_property(sess=7, dev=0, property=1, "
            "value=1) = 0");
  EXPECT_EQ(chipsim().calls("p4_pd_kestro_switch_ingressMirrorLagGroup_set_property"), 1);
}

TEST_F(BfPdIngressMirrorLagGroupIntfTest, LibraryWithoutPdFunctionsIsRefusedNamingBoth) {
  try {
    Vel::allocate<BfPdIngressMirrorLagGroupIntf>("libnothing.so", programHandle, 7u);
    FAIL() << "a library without PD functions was accepted";
  } catch (const Vel::RangeException& e) {
    EXPECT_EQ(e.message(),
              "PD library 'libnothing.so' has no function "
              "'p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry'");
  }
  EXPECT_EQ(live(), 0u);
}

TEST_F(BfPdIngressMirrorLagGroupIntfTest, NewHandleResolvesTheFunctionsAgain) {
  chipsim_test::ChipLibraryCopy copy;
  auto intf = Vel::allocate<BfPdIngressMirrorLagGroupIntf>("libchipsim.so", chipHandle, 7u);
  intf->dlHandleIs(copy.handle());
  EXPECT_EQ(intf->dlHandle(), copy.handle());
  EXPECT_EQ(
      reinterpret_cast<void*>(intf->p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry.resolved()),
      dlsym(copy.handle(), "p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry"));
  EXPECT_NE(
      reinterpret_cast<void*>(intf->p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry.resolved()),
      dlsym(chipHandle, "p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry"));
}

TEST_F(BfPdIngressMirrorLagGroupIntfTest, RefusedHandleKeepsTheOldHandleAndFunctions) {
  auto intf = Vel::allocate<BfPdIngressMirrorLagGroupIntf>("libchipsim.so", chipHandle, 7u);
  EXPECT_THROW(intf->dlHandleIs(programHandle), Vel::RangeException);
  EXPECT_EQ(intf->dlHandle(), chipHandle);
  EXPECT_EQ(
      reinterpret_cast<void*>(
          intf->p4_pd_kestro_switch_mirrorLagPortActionProfile_group_member_state_set.resolved()),
      dlsym(chipHandle, "p4_pd_kestro_switch_mirrorLagPortActionProfile_group_member_state_set"));
}

}  // namespace
}  // namespace BfPdIngressMirrorLagGroup
