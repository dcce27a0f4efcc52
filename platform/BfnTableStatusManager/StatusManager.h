#pragma once

#include <vector>

#include "BfnTable/BfnGroupId.h"
#include "BfnTable/BfnMemberId.h"
#include "BfnTable/MatchSpecBase.h"
#include "BfnTableStatusManager/StatusManagerCall.h"
#include "Vel/Ptr.h"
#include "Vel/PtrInterface.h"

namespace BfnTableStatusManager {

// Told by a table's programming code which hardware objects it is about to
// touch (match entries, action-profile members, selector groups) and when it
// has read its state back after a restart. This platform implementation keeps
// every call it receives, in order, so that the host (and tests) can see what
// was touched; hosts with a real status service derive from it.
class StatusManager : public Vel::PtrInterface {
 public:
  StatusManager() = default;
  ~StatusManager() override;

  // A match entry is about to be programmed or removed.
  virtual void initStatus(const Vel::Ptr<const BfnTable::MatchSpecBase>& match);
  // The match table has been read back after a restart.
  virtual void resyncStatus();
  // An action-profile member is about to be programmed or removed.
  virtual void initAdtStatus(BfnTable::BfnMemberId memberId);
  // A selector group is about to be programmed or removed.
  virtual void initSelGroupStatus(BfnTable::BfnGroupId groupId);
  // The action profile has been read back after a restart.
  virtual void resyncSelAdtStatus();

  // Every call received since construction or the last clear(), oldest first.
  const std::vector<StatusManagerCall>& calls() const noexcept { return calls_; }
  // Forgets the calls received so far (and the match specs they hold).
  void clear() noexcept { calls_.clear(); }

 private:
  void callIs(StatusManagerCall call);

  std::vector<StatusManagerCall> calls_;
};

}  // namespace BfnTableStatusManager
