#pragma once

#include "ManagerEvents.h"
#include "MbbVaultKey/VaultKeyManager.h"

namespace BfIngressMirrorLagGroup {

// A key manager that also notes its alloc calls in a shared event list.
class OrderedKeyManager : public MbbVaultKey::VaultKeyManager {
 public:
  explicit OrderedKeyManager(ManagerEvents* events) : events_(events) {}
  EntryKey alloc(const MatchSpec& match, bool flag) override;

 private:
  ManagerEvents* events_;
};

}  // namespace BfIngressMirrorLagGroup
