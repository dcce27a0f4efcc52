#pragma once

#include <cstdint>

#include "BfnTable/MatchSpecBase.h"
#include "Vel/Ptr.h"
#include "Vel/String.h"

namespace BfnTableStatusManager {

// One call that a status manager received: the operation's name and its
// argument (the match spec of initStatus, the member or group id of
// initAdtStatus and initSelGroupStatus; nothing for the resync operations).
struct StatusManagerCall {
  Vel::String operation;
  Vel::Ptr<const BfnTable::MatchSpecBase> match;
  std::uint32_t id = 0;

  bool operator==(const StatusManagerCall& other) const noexcept {
    return operation == other.operation && match == other.match && id == other.id;
  }

  // The call as one line: "initAdtStatus 7", "initSelGroupStatus 3",
  // "initStatus" or "resyncStatus".
  Vel::String text() const;
};

}  // namespace BfnTableStatusManager
