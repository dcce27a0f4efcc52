#include "BfnTableStatusManager/StatusManager.h"

#include <utility>

namespace BfnTableStatusManager {

StatusManager::~StatusManager() = default;

void StatusManager::initStatus(const Vel::Ptr<const BfnTable::MatchSpecBase>& match) {
  callIs({"initStatus", match, 0});
}

void StatusManager::resyncStatus() {
  callIs({"resyncStatus", nullptr, 0});
}

void StatusManager::initAdtStatus(BfnTable::BfnMemberId memberId) {
  callIs({"initAdtStatus", nullptr, memberId.value()});
}

void StatusManager::initSelGroupStatus(BfnTable::BfnGroupId groupId) {
  callIs({"initSelGroupStatus", nullptr, groupId.value()});
}

void StatusManager::resyncSelAdtStatus() {
  callIs({"resyncSelAdtStatus", nullptr, 0});
}

void StatusManager::callIs(StatusManagerCall call) {
  calls_.push_back(std::move(call));
}

}  // namespace BfnTableStatusManager
