#include "BfIngressMirrorLagGroup/actionprofile/IngressMirrorLagGroupActionProfileFactory.h"

#include "BfIngressMirrorLagGroup/actionprofile/ActionProfileShadowReplay.h"
#include "BfIngressMirrorLagGroup/actionprofile/IngressMirrorLagGroupActionProfileSm.h"
#include "BfIngressMirrorLagGroup/hw/TableSourcePath.h"
#include "Quill/Assert.h"
#include "Vel/Allocate.h"

namespace {

// Lines of the table description at which the factory asserts.
constexpr unsigned adtVaultTableConfigLine = 79;
constexpr unsigned selGrpVaultTableConfigLine = 88;

// The name of the configuration entity.
constexpr const char* entityName = "ingressMirrorLagGroup";

}  // namespace

Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfile>
ingressMirrorLagGroupActionProfileFactory(
    Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupTable> matTable) {
  using BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfile;
  using BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm;
  using BfIngressMirrorLagGroup::tableSourcePath;

  const Vel::Ptr<IngressMirrorLagGroupActionProfile> result =
      Vel::allocate<IngressMirrorLagGroupActionProfile>(entityName);
  const Vel::Ptr<IngressMirrorLagGroupActionProfileSm> sm =
      IngressMirrorLagGroupActionProfileSm::IngressMirrorLagGroupActionProfileSmIs(
          result, matTable->helper(), matTable->vaultKeyManager(), matTable->statusManager());
  // Never given back: the state machine lives as long as the process, and no
  // object owns it.
  sm->newRef();

  if (const auto& keys = matTable->vaultKeyManager()) {
    QUILL_ASSERT_AT(keys->adtVaultTableConfig() != nullptr,
                    "matTable->vaultKeyManager()->adtVaultTableConfig()", tableSourcePath,
                    adtVaultTableConfigLine);
    BfIngressMirrorLagGroup::ActionProfileShadowReplay replay(*matTable->helper()->sdkHandles(),
                                                              *keys);
    replay.replayMembers();
    QUILL_ASSERT_AT(keys->selGrpVaultTableConfig() != nullptr,
                    "matTable->vaultKeyManager()->selGrpVaultTableConfig()", tableSourcePath,
                    selGrpVaultTableConfigLine);
    replay.replayGroups();
  }
  if (const auto& statusManager = matTable->statusManager())
    statusManager->resyncSelAdtStatus();
  return result;
}
