#pragma once

#include <sys/types.h>

#include "Vel/RangeException.h"

namespace Vault {

// A table's segment is held by another writer: `holder()` is its process id,
// or 0 when it cannot be told. Each table has one writer at a time, for that
// writer's whole life.
class TableInUseException : public Vel::RangeException {
 public:
  TableInUseException(Vel::String message, pid_t holder)
      : Vel::RangeException(std::move(message)), holder_(holder) {}

  pid_t holder() const noexcept { return holder_; }

 private:
  pid_t holder_;
};

}  // namespace Vault
