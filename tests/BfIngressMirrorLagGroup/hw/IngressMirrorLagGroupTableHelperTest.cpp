#include "BfIngressMirrorLagGroup/hw/IngressMirrorLagGroupTableHelper.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "Vel/Allocate.h"
#include "support/ChipLibraryCopy.h"

namespace BfIngressMirrorLagGroup {
namespace {

using PdLib = IngressMirrorLagGroupTableHelper::PdLib;

class IngressMirrorLagGroupTableHelperTest : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(chipHandle, nullptr) << dlerror(); }
  void TearDown() override {
    helper = nullptr;
    dlclose(chipHandle);
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupTableHelper>().liveObjects(), 0u);
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<PdLib>().liveObjects(), 0u);
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupTableHandles>().liveObjects(), 0u);
  }

  void* chipHandle = dlopen(CHIPSIM_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  Vel::Ptr<IngressMirrorLagGroupTableHelper> helper =
      ingressMirrorLagGroupTableHelperFactory(3, 0xFFFF);
};

TEST_F(IngressMirrorLagGroupTableHelperTest, FactoryMakesAnUnboundHelperWithNotificationOn) {
  EXPECT_EQ(helper->deviceId(), 3u);
  EXPECT_EQ(helper->devPipeId(), 0xFFFFu);
  EXPECT_EQ(helper->sdkHandles(), nullptr);
  EXPECT_EQ(helper->pdLib(), nullptr);
  EXPECT_TRUE(helper->hasNotificationActive());
  EXPECT_EQ(helper->references(), 1u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupTableHelper>().liveObjects(), 1u);
}

TEST_F(IngressMirrorLagGroupTableHelperTest, PdLibIsBindsANewObjectWithNotificationOn) {
  const Vel::Ptr<PdLib> bound = helper->pdLibIs("libchipsim.so", chipHandle, 7);
  ASSERT_NE(bound, nullptr);
  EXPECT_EQ(helper->pdLib(), bound);
  EXPECT_EQ(bound->name(), "libchipsim.so");
  EXPECT_EQ(bound->dlHandle(), chipHandle);
  EXPECT_EQ(bound->sessionId(), 7u);
  EXPECT_TRUE(bound->hasNotificationActive());
}

TEST_F(IngressMirrorLagGroupTableHelperTest, PdLibIsWithTheSameNameKeepsTheObjectAndRefreshesIt) {
  chipsim_test::ChipLibraryCopy copy;
  const Vel::Ptr<PdLib> first = helper->pdLibIs("libchipsim.so", chipHandle, 7);
  const Vel::Ptr<PdLib> second = helper->pdLibIs("libchipsim.so", copy.handle(), 8);
  EXPECT_EQ(first, second);
  EXPECT_EQ(helper->pdLib(), first);
  EXPECT_EQ(first->dlHandle(), copy.handle());
  EXPECT_EQ(first->sessionId(), 8u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<PdLib>().liveObjects(), 1u);
}

TEST_F(IngressMirrorLagGroupTableHelperTest, PdLibIsWithAnotherNameRefreshesThenReplacesTheOld) {
  chipsim_test::ChipLibraryCopy copy;
  const Vel::Ptr<PdLib> old = helper->pdLibIs("libchipsim.so", chipHandle, 7);
  auto parent = Vel::allocate<Vel::Entity>("owner");
  old->parentIs(parent.get());
  const Vel::Ptr<PdLib> replacement = helper->pdLibIs("libother.so", copy.handle(), 8);
  EXPECT_NE(replacement, old);
  EXPECT_EQ(helper->pdLib(), replacement);
  EXPECT_EQ(replacement->name(), "libother.so");
  EXPECT_EQ(replacement->dlHandle(), copy.handle());
  EXPECT_EQ(replacement->sessionId(), 8u);
  // The old object got the new handle and session before it was let go.
  EXPECT_EQ(old->dlHandle(), copy.handle());
  EXPECT_EQ(old->sessionId(), 8u);
  EXPECT_EQ(old->parent(), nullptr);
  EXPECT_EQ(old->references(), 1u);
}

TEST_F(IngressMirrorLagGroupTableHelperTest, SdkHandlesIsMakesTheRegistryOnce) {
  const auto first = helper->sdkHandlesIs();
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(helper->sdkHandlesIs(), first);
  EXPECT_EQ(helper->sdkHandles(), first);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupTableHandles>().liveObjects(), 1u);
}

TEST_F(IngressMirrorLagGroupTableHelperTest, AfterSdkHandlesDelANewEmptyRegistryIsMade) {
  const auto first = helper->sdkHandlesIs();
  first->newMember(7, 70);
  const auto removed = helper->sdkHandlesDel();
  EXPECT_EQ(removed, first);
  EXPECT_EQ(helper->sdkHandles(), nullptr);
  const auto second = helper->sdkHandlesIs();
  EXPECT_NE(second, first);
  EXPECT_TRUE(second->members().empty());
  EXPECT_EQ(first->member(7), 70u);
}

TEST_F(IngressMirrorLagGroupTableHelperTest, DelOfEmptyFieldsGivesNullAndChangesNothing) {
  EXPECT_EQ(helper->sdkHandlesDel(), nullptr);
  EXPECT_EQ(helper->pdLibDel(), nullptr);
  EXPECT_EQ(helper->sdkHandles(), nullptr);
  EXPECT_EQ(helper->pdLib(), nullptr);
}

TEST_F(IngressMirrorLagGroupTableHelperTest, PdLibDelDetachesAndGivesBackTheBinding) {
  const Vel::Ptr<PdLib> bound = helper->pdLibIs("libchipsim.so", chipHandle, 7);
  auto parent = Vel::allocate<Vel::Entity>("owner");
  bound->parentIs(parent.get());
  EXPECT_EQ(helper->pdLibDel(), bound);
  EXPECT_EQ(helper->pdLib(), nullptr);
  EXPECT_EQ(bound->parent(), nullptr);
}

TEST_F(IngressMirrorLagGroupTableHelperTest, DestroyingTheHelperReleasesBindingAndRegistry) {
  helper->pdLibIs("libchipsim.so", chipHandle, 7);
  const auto registry = helper->sdkHandlesIs();
  helper = nullptr;
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<PdLib>().liveObjects(), 0u);
  EXPECT_EQ(registry->references(), 1u);
}

TEST_F(IngressMirrorLagGroupTableHelperTest, FactoriesAreFoundByPlainName) {
  void* plugin = dlopen("libBfIngressMirrorLagGroup.so", RTLD_NOW | RTLD_NOLOAD);
  ASSERT_NE(plugin, nullptr) << dlerror();
  EXPECT_EQ(dlsym(plugin, "ingressMirrorLagGroupTableHelperFactory"),
            reinterpret_cast<void*>(&ingressMirrorLagGroupTableHelperFactory));
  EXPECT_EQ(dlsym(plugin, "ingressMirrorLagGroupTableHandlesFactory"),
            reinterpret_cast<void*>(&ingressMirrorLagGroupTableHandlesFactory));
  dlclose(plugin);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
