#include "BfIngressMirrorLagGroup/table/IngressMirrorLagGroupTableFactory.h"

#include <utility>

#include "BfIngressMirrorLagGroup/hw/DeviceTarget.h"
#include "BfIngressMirrorLagGroup/hw/PdCall.h"
#include "BfIngressMirrorLagGroup/hw/TableSourcePath.h"
#include "BfIngressMirrorLagGroup/table/EntryShadowReplay.h"
#include "Quill/Assert.h"
#include "Vel/Allocate.h"

namespace {

using BfIngressMirrorLagGroup::IngressMirrorLagGroupTableHelper;
using PdLib = IngressMirrorLagGroupTableHelper::PdLib;

// Lines of the table description at which the factory asserts.
constexpr unsigned pdLibPathLine = 24;
constexpr unsigned tablePtrLine = 41;
constexpr unsigned mbbVaultTableConfigLine = 45;

constexpr std::uint16_t allPipes = P4_PD_ALL_PIPES;

// Scopes the table's entries in the chip: one key space per pipe for a table
// of one pipe, one shared by all pipes otherwise.
void pipeScopeIs(const Vel::Ptr<IngressMirrorLagGroupTableHelper>& helper) {
  const std::uint32_t perPipe = helper->devPipeId() != allPipes ? 1 : 0;
  BfIngressMirrorLagGroup::pdCall(
      helper, "p4_pd_kestro_switch_ingressMirrorLagGroup_set_property", [&](PdLib& pd) {
        return pd.p4_pd_kestro_switch_ingressMirrorLagGroup_set_property(
            pd.sessionId(), BfIngressMirrorLagGroup::deviceId(*helper),
            P4_PD_TABLE_PROPERTY_ENTRY_SCOPE, perPipe);
      });
}

}  // namespace

Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupTable> ingressMirrorLagGroupTableFactory(
    Vel::Ptr<MbbVaultKey::VaultKeyManager> vaultKeyManager,
    Vel::Ptr<BfnTableStatusManager::StatusManager> statusManager, void* dlHandle,
    std::uint32_t sessionId, std::uint8_t deviceId, std::uint16_t devPipeId, Vel::Name pdLibName) {
  using BfIngressMirrorLagGroup::IngressMirrorLagGroupTable;
  using BfIngressMirrorLagGroup::tableSourcePath;

  const Vel::Ptr<IngressMirrorLagGroupTableHelper> helper =
      ingressMirrorLagGroupTableHelperFactory(deviceId, devPipeId);
  QUILL_ASSERT_AT(!pdLibName.empty(), "pdLibPath", tableSourcePath, pdLibPathLine);
  const Vel::Ptr<PdLib> pdLib = helper->pdLibIs(std::move(pdLibName), dlHandle, sessionId);
  // The PD object, not the table, writes the shadow records: it records each
  // object under the key the table allocates just before the call, so it
  // records through the same key manager from the first call on.
  if (vaultKeyManager != nullptr && vaultKeyManager->hasShadowTables())
    pdLib->vaultKeyManagerIs(vaultKeyManager);
  helper->sdkHandlesIs();
  // A failure throws here, before the table exists; the helper goes with the
  // stack.
  pipeScopeIs(helper);

  const Vel::Ptr<IngressMirrorLagGroupTable> table =
      Vel::allocate<IngressMirrorLagGroupTable>(helper, vaultKeyManager, statusManager);
  QUILL_ASSERT_AT(table != nullptr, "tablePtr", tableSourcePath, tablePtrLine);
  table->defaultMatchSpecIs();

  if (vaultKeyManager != nullptr) {
    QUILL_ASSERT_AT(vaultKeyManager->mbbVaultTableConfig() != nullptr,
                    "vaultKeyManager->mbbVaultTableConfig()", tableSourcePath,
                    mbbVaultTableConfigLine);
    BfIngressMirrorLagGroup::EntryShadowReplay(*table, *vaultKeyManager).replay();
  }
  if (statusManager != nullptr)
    statusManager->resyncStatus();
  return table;
}
