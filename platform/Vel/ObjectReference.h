#pragma once

#include <cstdint>

#include "Vel/Ptr.h"

namespace Vel {

// Process-wide table that lets text name a live object without writing its
// memory address: an object gets a serial id the first time it is named, text
// carries the id, and reading the id back finds the object only while it is
// alive. The table holds no reference; an object leaves it when it is destroyed.
class ObjectReference {
 public:
  // The id that names the object in text (ids start at 1; 0 is null).
  static std::uint64_t idOf(const PtrInterface* object);
  // The live object named by the id, or null when there is none.
  static Ptr<const PtrInterface> resolve(std::uint64_t id);
  // Removes a dying object from the table.
  static void forget(const PtrInterface* object) noexcept;
};

}  // namespace Vel
