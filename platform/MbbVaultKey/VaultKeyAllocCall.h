#pragma once

#include "BfnTable/MatchSpecBase.h"
#include "Vault/MbbPostcodef/EntryKey.h"
#include "Vel/Ptr.h"

namespace MbbVaultKey {

// One alloc() call that a key manager received: the match spec and flag it
// was given, and the key it answered.
struct VaultKeyAllocCall {
  Vel::Ptr<const BfnTable::MatchSpecBase> match;
  bool flag = false;
  Vault::MbbPostcodef::EntryKey key;

  bool operator==(const VaultKeyAllocCall&) const noexcept = default;
};

}  // namespace MbbVaultKey
