#pragma once

#include <cstdint>

#include "Velo/PodArray.h"

namespace Vault::MbbPostcodef {

struct DataKeyTag {};
// The action-data words of one match-table entry.
using DataKey = Velo::PodArray<std::uint64_t, DataKeyTag, 64>;

}  // namespace Vault::MbbPostcodef
