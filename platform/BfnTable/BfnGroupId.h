#pragma once

#include "BfnTable/BfnId.h"

namespace BfnTable {

struct BfnGroupIdTag {};

// The id of a selector group, as the configuration names it.
using BfnGroupId = BfnId<BfnGroupIdTag>;

}  // namespace BfnTable
