#pragma once

#include "BfnTable/BfnId.h"

namespace BfnTable {

struct BfnMemberIdTag {};

// The id of an action-profile member, as the configuration names it.
using BfnMemberId = BfnId<BfnMemberIdTag>;

}  // namespace BfnTable
