#pragma once

#include <cstdint>

#include "MbbVaultKey/ShadowTable.h"
#include "Vault/MbbPostcodef/ShadowRecord.h"

namespace BfPdIngressMirrorLagGroup {

// A recorded PD call under way in the shadow table of records R: the intent
// written before the call, the finished record it replaced (restored when the
// call fails; there is one when `hasReplaced`), and where a creating call
// puts its new object's handle (null for a delete). A step is filled in
// place, field by field, where its call keeps it.
template <Vault::MbbPostcodef::ShadowRecord R>
struct ShadowStep {
  // Provided, so that a new step is made field by field rather than zeroed
  // whole first: a step is made for every recorded PD call.
  ShadowStep() noexcept {}

  MbbVaultKey::ShadowTable<R>* table = nullptr;
  R intent;
  R replaced;
  bool hasReplaced = false;
  const std::uint32_t* newHandle = nullptr;

  // The handle of the replaced record; 0 when there is none.
  std::uint32_t replacedHandle() const noexcept { return hasReplaced ? replaced.handle() : 0; }
};

}  // namespace BfPdIngressMirrorLagGroup
