#include "OrderedKeyManager.h"

namespace BfIngressMirrorLagGroup {

OrderedKeyManager::EntryKey OrderedKeyManager::alloc(const MatchSpec& match, bool flag) {
  events_->push_back("alloc " + sessionOf(match) + (flag ? " true" : " false") + atCallCount());
  return VaultKeyManager::alloc(match, flag);
}

}  // namespace BfIngressMirrorLagGroup
