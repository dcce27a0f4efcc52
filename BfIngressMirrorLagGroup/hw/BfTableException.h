#pragma once

#include "Pd/KestroSwitchPd.h"
#include "Vel/InternalException.h"

namespace BfTable {

// A PD call of the table or its action profile failed; status() is the code the
// chip SDK returned and the message names the PD function and the status text.
class BfTableException : public Vel::InternalException {
 public:
  BfTableException(pipe_status status, Vel::String message);
  pipe_status status() const noexcept { return status_; }

 private:
  pipe_status status_;
};

}  // namespace BfTable
