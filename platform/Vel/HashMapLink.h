#pragma once

#include <cstdint>

#include "Vel/Ptr.h"

namespace Vel {

// The chain link that an element of a Vel::HashMap carries: a base that gives
// an element type T the `fwkHmNext` / `fwkHmNextIs` pair the map chains its
// buckets through. The link is the map's counted reference to the next
// element of the same bucket; it is null while the element is in no map.
//
// The link also keeps the element's reversed key hash, which the map stores
// on insert, so that walking a chain or splitting it on growth does not hash
// every key it passes again. (An element type may bring its own link instead;
// the map then hashes its key each time.)
template <class T>
class HashMapLink {
 public:
  const Ptr<T>& fwkHmNext() const noexcept { return fwkHmNext_; }
  void fwkHmNextIs(const Ptr<T>& next) noexcept { fwkHmNext_ = next; }

  std::uint32_t fwkHmReversedHash() const noexcept { return fwkHmReversedHash_; }
  void fwkHmReversedHashIs(std::uint32_t reversed) noexcept { fwkHmReversedHash_ = reversed; }

 private:
  Ptr<T> fwkHmNext_;
  std::uint32_t fwkHmReversedHash_ = 0;
};

}  // namespace Vel
