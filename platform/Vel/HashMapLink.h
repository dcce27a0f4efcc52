#pragma once

#include "Vel/Ptr.h"

namespace Vel {

// The chain link that an element of a Vel::HashMap carries: a base that gives
// an element type T the `fwkHmNext` / `fwkHmNextIs` pair the map chains its
// buckets through. The link is the map's counted reference to the next
// element of the same bucket; it is null while the element is in no map.
template <class T>
class HashMapLink {
 public:
  const Ptr<T>& fwkHmNext() const noexcept { return fwkHmNext_; }
  void fwkHmNextIs(const Ptr<T>& next) noexcept { fwkHmNext_ = next; }

 private:
  Ptr<T> fwkHmNext_;
};

}  // namespace Vel
