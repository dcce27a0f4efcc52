#pragma once

#include <cstdint>

#include "Velo/PodArray.h"

namespace BfnMbbShared {

struct AdtDataKeyTag {};
// The action-data bytes of one action-profile member.
using AdtDataKey = Velo::PodArray<std::uint8_t, AdtDataKeyTag, 72>;

}  // namespace BfnMbbShared
