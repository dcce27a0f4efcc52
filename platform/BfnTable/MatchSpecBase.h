#pragma once

#include "Vel/PtrInterface.h"

namespace BfnTable {

// Base of the match keys of every table. Shadow tables and status managers
// hold keys through it, whatever the table.
class MatchSpecBase : public Vel::PtrInterface {};

}  // namespace BfnTable
