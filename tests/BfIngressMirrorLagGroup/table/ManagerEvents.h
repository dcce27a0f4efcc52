#pragma once

#include <string>
#include <vector>

#include "BfnTable/MatchSpecBase.h"
#include "Vel/Ptr.h"

namespace BfIngressMirrorLagGroup {

// What the status manager and the key manager were told, in the order they were
// told, each with the number of chip calls logged by then: "initStatus 5 @0" is
// initStatus for mirror session 5 before any PD call.
using ManagerEvents = std::vector<std::string>;

// The mirror session of a match spec of the table, or "?" for another kind.
std::string sessionOf(const Vel::Ptr<const BfnTable::MatchSpecBase>& match);

// " @N": the number of chip calls logged so far, as an event notes it.
std::string atCallCount();

}  // namespace BfIngressMirrorLagGroup
