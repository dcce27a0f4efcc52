#include "BfnTableStatusManager/StatusManagerCall.h"

#include <string>

namespace BfnTableStatusManager {

Vel::String StatusManagerCall::text() const {
  const bool takesId = operation == "initAdtStatus" || operation == "initSelGroupStatus";
  if (!takesId)
    return operation;
  return operation + " " + std::to_string(id);
}

}  // namespace BfnTableStatusManager
