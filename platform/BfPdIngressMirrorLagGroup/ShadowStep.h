#pragma once

#include <cstdint>
#include <optional>

#include "MbbVaultKey/ShadowTable.h"
#include "Vault/MbbPostcodef/ShadowRecord.h"

namespace BfPdIngressMirrorLagGroup {

// A recorded PD call under way in the shadow table of records R: the intent
// written before the call, the finished record it replaced (restored when the
// call fails), and where a creating call puts its new object's handle (null
// for a delete).
template <Vault::MbbPostcodef::ShadowRecord R>
struct ShadowStep {
  MbbVaultKey::ShadowTable<R>* table = nullptr;
  R intent;
  std::optional<R> replaced;
  const std::uint32_t* newHandle = nullptr;
};

}  // namespace BfPdIngressMirrorLagGroup
