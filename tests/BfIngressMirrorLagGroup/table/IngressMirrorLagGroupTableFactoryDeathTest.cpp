#include <gtest/gtest.h>

#include <string>

#include "BfIngressMirrorLagGroup/hw/TableSourcePath.h"
#include "FactoryFixture.h"
#include "Vel/Allocate.h"
#include "support/AssertionReport.h"

namespace BfIngressMirrorLagGroup {
namespace {

// The factory's signature as the compiler writes it in an assertion report.
#if defined(__clang__)
const std::string kFactory =
    "Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupTable> "
    "ingressMirrorLagGroupTableFactory(Vel::Ptr<MbbVaultKey::VaultKeyManager>, "
    "Vel::Ptr<BfnTableStatusManager::StatusManager>, void *, std::uint32_t, std::uint8_t, "
    "std::uint16_t, Vel::Name)";
#else
const std::string kFactory =
    "Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupTable> "
    "ingressMirrorLagGroupTableFactory(Vel::Ptr<MbbVaultKey::VaultKeyManager>, "
    "Vel::Ptr<BfnTableStatusManager::StatusManager>, void*, uint32_t, uint8_t, uint16_t, "
    "Vel::Name)";
#endif

std::string report(unsigned line, const std::string& text) {
  return test_support::assertionReport(tableSourcePath, line, kFactory, text);
}

class FactoryDeathTest : public FactoryFixture {
 protected:
  void SetUp() override {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    FactoryFixture::SetUp();
  }
};

TEST_F(FactoryDeathTest, AnEmptyLibraryNameStops) {
  EXPECT_DEATH(
      ingressMirrorLagGroupTableFactory(nullptr, status, chipHandle, kSession, kDevice, kPipe, ""),
      report(24, "pdLibPath"));
}

// A key manager without shadow tables (the in-process allocator) has no
// match-entry shadow table to adopt from.
TEST_F(FactoryDeathTest, AKeyManagerWithoutShadowTablesStops) {
  auto keys = Vel::allocate<MbbVaultKey::VaultKeyManager>();
  EXPECT_DEATH(makeTable(keys, status), report(45, "vaultKeyManager->mbbVaultTableConfig()"));
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
