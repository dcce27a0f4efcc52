#pragma once

#include <cstdint>

#include "BfIngressMirrorLagGroup/hw/CLinkageFactory.h"
#include "BfIngressMirrorLagGroup/table/IngressMirrorLagGroupTable.h"
#include "BfnTableStatusManager/StatusManager.h"
#include "MbbVaultKey/VaultKeyManager.h"
#include "Vel/Name.h"
#include "Vel/Ptr.h"

BF_C_LINKAGE_FACTORY_BEGIN
// Makes the match table, the host's entry point into the plug-in. Exported by
// plain name for hosts that find it with dlsym.
//
// It makes the helper for `deviceId` and `devPipeId` with its handle registry,
// binds the PD library `pdLibName` (dynamic-load handle `dlHandle`, SDK
// session `sessionId`), scopes the table's entries to the pipe in the chip
// (shared by all pipes for 0xFFFF), and makes the table with its default
// match spec. Nothing else is programmed.
//
// With a key manager (may be null) that has shadow tables, the bound PD object
// records every entry, member and group it creates or deletes in them, and the
// entries that the match-entry shadow table records are adopted: the registry
// gets their handles under match specs read back from the chip, so that the
// host's next writes of those entries modify them. The host settles the
// tables against the chip (BfPdIngressMirrorLagGroup::ShadowReconciler) before
// it calls the factory. With a status manager (may be null), resyncStatus()
// ends the construction.
//
// A failed pipe-scope call throws the table exception of its status, and
// nothing made so far is kept. An empty library name, or a key manager
// without a match-entry shadow table, stops the process with an assertion.
extern "C" Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupTable>
ingressMirrorLagGroupTableFactory(Vel::Ptr<MbbVaultKey::VaultKeyManager> vaultKeyManager,
                                  Vel::Ptr<BfnTableStatusManager::StatusManager> statusManager,
                                  void* dlHandle, std::uint32_t sessionId, std::uint8_t deviceId,
                                  std::uint16_t devPipeId, Vel::Name pdLibName);
BF_C_LINKAGE_FACTORY_END
