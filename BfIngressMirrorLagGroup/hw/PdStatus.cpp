#include "BfIngressMirrorLagGroup/hw/PdStatus.h"

#include <array>

#include "BfIngressMirrorLagGroup/hw/BfNoSysResources.h"
#include "BfIngressMirrorLagGroup/hw/BfNotSupported.h"
#include "BfIngressMirrorLagGroup/hw/BfTableFull.h"
#include "Vel/Format.h"

namespace BfIngressMirrorLagGroup {

namespace {

constexpr std::array<const char*, 25> statusTexts = {
    "Success",
    "Pipeline manager service not ready",
    "No system resources",
    "Invalid arguments",
    "Object already exists",
    "Communication failed",
    "Object not found",
    "Exceeded max sessions",
    "Session not found",
    "Not enough Space",
    "Try again later",
    "Initialization error",
    "Not Supported In Transaction",
    "Table is locked",
    "IO Error",
    "Unexpected",
    "Action data entry is being referenced by match entries",
    "Not supported",
    "Updating hardware failed",
    "No learning clients registered",
    "Idle time update state already in progress",
    "Device Locked",
    "Internal Error",
    "Table not found",
    "Unknown Error",
};

constexpr pipe_status lastLookedUpStatus = 23;

}  // namespace

const char* statusText(pipe_status status) noexcept {
  if (status < 0 || status > lastLookedUpStatus)
    return statusTexts[lastLookedUpStatus];
  return statusTexts[static_cast<std::size_t>(status)];
}

void checkPdStatus(const char* pdFunctionName, pipe_status status) {
  if (status == 0)
    return;
  Vel::String message = Vel::format("%s() failed: %s", pdFunctionName, statusText(status));
  switch (status) {
    case 9:
      throw BfTable::BfTableFull(std::move(message));
    case 2:
      throw BfTable::BfNoSysResources(std::move(message));
    case 17:
      throw BfTable::BfNotSupported(std::move(message));
    default:
      throw BfTable::BfTableException(status, std::move(message));
  }
}

}  // namespace BfIngressMirrorLagGroup
