#include "OrderedStatusManager.h"

namespace BfIngressMirrorLagGroup {

void OrderedStatusManager::initStatus(const Vel::Ptr<const BfnTable::MatchSpecBase>& match) {
  events_->push_back("initStatus " + sessionOf(match) + atCallCount());
  StatusManager::initStatus(match);
}

}  // namespace BfIngressMirrorLagGroup
