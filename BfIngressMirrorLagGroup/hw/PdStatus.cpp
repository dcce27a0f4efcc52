#include "BfIngressMirrorLagGroup/hw/PdStatus.h"

#include <array>

#include "BfIngressMirrorLagGroup/hw/BfNoSysResources.h"
#include "BfIngressMirrorLagGroup/hw/BfNotSupported.h"
#include "BfIngressMirrorLagGroup/hw/BfTableFull.h"
#include "Pd/PipeStatus.h"
#include "Vel/Format.h"

namespace BfIngressMirrorLagGroup {

namespace {

// The text of each status, indexed by its code.
constexpr std::array statusTexts = {
#define PIPE_STATUS_TEXT(code, name, text) text,
    PIPE_STATUSES(PIPE_STATUS_TEXT)
#undef PIPE_STATUS_TEXT
};
static_assert(statusTexts.size() == PIPE_STATUS_UNKNOWN_ERROR + 1,
              "the codes run from 0 without a gap");

// The last status whose text is given; every code above it reads as this one.
constexpr pipe_status lastLookedUpStatus = PIPE_STATUS_TABLE_NOT_FOUND;

}  // namespace

const char* statusText(pipe_status status) noexcept {
  if (status < 0 || status > lastLookedUpStatus)
    return statusTexts[lastLookedUpStatus];
  return statusTexts[static_cast<std::size_t>(status)];
}

void checkPdStatus(const char* pdFunctionName, pipe_status status) {
  if (status == PIPE_STATUS_SUCCESS)
    return;
  Vel::String message = Vel::format("%s() failed: %s", pdFunctionName, statusText(status));
  switch (status) {
    case PIPE_STATUS_NO_SPACE:
      throw BfTable::BfTableFull(std::move(message));
    case PIPE_STATUS_NO_SYSTEM_RESOURCES:
      throw BfTable::BfNoSysResources(std::move(message));
    case PIPE_STATUS_NOT_SUPPORTED:
      throw BfTable::BfNotSupported(std::move(message));
    default:
      throw BfTable::BfTableException(status, std::move(message));
  }
}

}  // namespace BfIngressMirrorLagGroup
