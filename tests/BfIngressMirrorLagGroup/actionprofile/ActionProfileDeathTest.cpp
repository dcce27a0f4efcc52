#include <gtest/gtest.h>

#include <dlfcn.h>

#include <string>

#include "ActionProfileFixture.h"
#include "BfIngressMirrorLagGroup/hw/TableSourcePath.h"
#include "Vel/Allocate.h"
#include "support/AssertionReport.h"

namespace BfIngressMirrorLagGroup {
namespace {

// The functions as the compiler names them in an assertion report; a function
// without parameters reads the same for both compilers.
const std::string kHandleActionProfileDel =
    "void BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm::VelActionProfile::"
    "handleActionProfileDel()";
const std::string kFactory =
    "Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfile> "
    "ingressMirrorLagGroupActionProfileFactory(Vel::Ptr<BfIngressMirrorLagGroup::"
    "IngressMirrorLagGroupTable>)";

const std::string kMemberHandle =
    "ingressMirrorLagGroupActionProfileSm()->helper()->sdkHandles()->member( "
    "actionProfile()->memberId() )";

std::string report(unsigned line, const std::string& function, const std::string& text) {
  return test_support::assertionReport(tableSourcePath, line, function, text);
}

class ActionProfileDeathTest : public ActionProfileFixture {
 protected:
  void SetUp() override {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    ActionProfileFixture::SetUp();
    makeSm();
  }
};

TEST_F(ActionProfileDeathTest, DeletingAMemberWithoutRegisteredHandleStops) {
  memberIs(5, 500);
  const std::uint32_t handle = memberHandle(5);
  registry().memberDel(BfnTable::BfnMemberId(5));
  EXPECT_DEATH(profile->entryDel(BfnTable::BfnMemberId(5)),
               report(392, kHandleActionProfileDel, kMemberHandle));
  // This process goes on: the handle comes back so that the member is deleted
  // at the end.
  registry().memberIs(BfnTable::BfnMemberId(5), handle);
}

TEST_F(ActionProfileDeathTest, DeletingAMemberThatWasNeverProgrammedStops) {
  // No action: the member was never added to the chip.
  profile->entryIs(
      Vel::allocate<IngressMirrorLagGroupActionProfileEntry>(BfnTable::BfnMemberId(5), nullptr));
  EXPECT_DEATH(sm->actionProfileDel(BfnTable::BfnMemberId(5)),
               report(392, kHandleActionProfileDel, kMemberHandle));
  sm->actionProfile(BfnTable::BfnMemberId(5))->ingressMirrorLagGroupActionProfileSmIs(nullptr);
}

TEST_F(ActionProfileDeathTest, TheFactoryStopsOnAKeyManagerWithoutActionDataShadowTable) {
  // An in-process key manager has no shadow tables; the table is made
  // directly, as the table factory itself refuses such a manager.
  const auto table = Vel::allocate<IngressMirrorLagGroupTable>(helper, keyManager, statusManager);
  void* plugin = dlopen(PLUGIN_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(plugin, nullptr) << dlerror();
  const auto factory = reinterpret_cast<decltype(&ingressMirrorLagGroupActionProfileFactory)>(
      dlsym(plugin, "ingressMirrorLagGroupActionProfileFactory"));
  ASSERT_NE(factory, nullptr) << dlerror();
  EXPECT_DEATH(factory(table),
               report(79, kFactory, "matTable->vaultKeyManager()->adtVaultTableConfig()"));
  dlclose(plugin);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
