#pragma once

#include "Vel/GenericValue.h"
#include "Vel/PtrInterface.h"

namespace Vel {

// Reflective walk over the elements of a collection attribute. It stands on one
// element at a time; key() and current() raise a RangeException when it stands
// on none.
class GenericIterator : public PtrInterface {
 public:
  // True while the iterator stands on an element.
  virtual bool valid() const = 0;
  virtual GenericValue key() const = 0;
  virtual GenericValue current() const = 0;
  // Moves to the next element.
  virtual void advance() = 0;
  // Removes the current element through the collection's delete mutator, moves
  // to the next element and answers the removed one.
  virtual GenericValue deleteCurrent() = 0;
};

}  // namespace Vel
