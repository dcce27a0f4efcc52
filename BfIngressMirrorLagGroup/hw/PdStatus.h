#pragma once

#include "Pd/KestroSwitchPd.h"

namespace BfIngressMirrorLagGroup {

// The text of a non-zero SDK status. Codes above 23 (and negative codes) read
// "Table not found": the last entry of the text table, "Unknown Error", is never
// returned.
const char* statusText(pipe_status status) noexcept;

// Does nothing for status 0. Otherwise throws, with the message
// "<pdFunctionName>() failed: <status text>", BfTable::BfTableFull for 9,
// BfTable::BfNoSysResources for 2, BfTable::BfNotSupported for 17 and
// BfTable::BfTableException carrying the status for any other code.
void checkPdStatus(const char* pdFunctionName, pipe_status status);

}  // namespace BfIngressMirrorLagGroup
