#pragma once

#include "BfnTableStatusManager/StatusManager.h"
#include "ManagerEvents.h"

namespace BfIngressMirrorLagGroup {

// A status manager that also notes its initStatus calls in a shared event list.
class OrderedStatusManager : public BfnTableStatusManager::StatusManager {
 public:
  explicit OrderedStatusManager(ManagerEvents* events) : events_(events) {}
  void initStatus(const Vel::Ptr<const BfnTable::MatchSpecBase>& match) override;

 private:
  ManagerEvents* events_;
};

}  // namespace BfIngressMirrorLagGroup
