#pragma once

#include <cstdint>

#include "Velo/PodArray.h"

namespace Vault::MbbPostcodef {

struct TableKeyTag {};
// The match-key words of one match-table entry.
using TableKey = Velo::PodArray<std::uint32_t, TableKeyTag, 17>;

}  // namespace Vault::MbbPostcodef
