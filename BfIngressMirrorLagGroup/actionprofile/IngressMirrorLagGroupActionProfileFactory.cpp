#include "BfIngressMirrorLagGroup/actionprofile/IngressMirrorLagGroupActionProfileFactory.h"

#include <vector>

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

// The state machines the factory made. Never destroyed, so that they stay
// reachable to leak checkers for the life of the process and no exit handler
// ever turns them into zombies (which would delete the chip's objects that
// the next instance of the host adopts). It holds no reference.
std::vector<const BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm*>&
processStateMachines() {
  static auto* const machines =
      new std::vector<const BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfileSm*>();
  return *machines;
}

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
  processStateMachines().push_back(sm.get());

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
