#pragma once

#include "BfnMbbShared/AdtAddrRange.h"
#include "Velo/PodArray.h"

namespace BfnMbbShared {

struct AdtAddrKeyTag {};
// The action-data address ranges of one action-profile member.
using AdtAddrKey = Velo::PodArray<AdtAddrRange, AdtAddrKeyTag, 3>;

}  // namespace BfnMbbShared
