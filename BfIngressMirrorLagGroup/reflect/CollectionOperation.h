#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Vel/AttributeRecord.h"
#include "Vel/GenericCall.h"
#include "Vel/GenericIf.h"
#include "Vel/GenericValue.h"
#include "Vel/Ptr.h"

namespace BfIngressMirrorLagGroup {

// Whether a look-up found an element: a non-null object, a non-zero handle.
template <class T>
bool isPresent(const Vel::Ptr<T>& element) noexcept {
  return element != nullptr;
}
inline bool isPresent(std::uint32_t handle) noexcept {
  return handle != 0;
}

// The reflective operations of a keyed collection attribute, as every
// collection of the plug-in answers them: 0 looks an element up by key (null
// when absent), 1 inserts or creates through `insert` (which unwraps the
// mutator's arguments from the call), 2 deletes by key through `remove` and
// answers the removed element, 3 and 4 answer the element and bucket counts,
// 5 tests for a key. Any other code is not supported.
template <class Key, class Find, class Insert, class Remove>
Vel::GenericReply collectionOperation(Vel::GenericCall& call, std::size_t size, std::size_t buckets,
                                      Find find, Insert insert, Remove remove) {
  switch (call.op()) {
    case Vel::GenericIf::opRead:
      return call.answer(find(call.arg<Key>(0)));
    case Vel::GenericIf::opWrite:
      return call.answer(insert());
    case Vel::GenericIf::opDelete:
      return call.answer(remove(call.arg<Key>(0)));
    case Vel::GenericIf::opSize:
      return call.answerCount(size);
    case Vel::GenericIf::opBucketCount:
      return call.answerCount(buckets);
    case Vel::GenericIf::opContains:
      return call.answerBool(isPresent(find(call.arg<Key>(0))));
  }
  return call.notSupported();
}

// The keys of a collection walked from `walk` (a framework iterator), in the
// collection's order, wrapped as the attribute's keys.
template <class Walk>
std::vector<Vel::GenericValue> keysOf(const Vel::AttributeRecord& attribute, Walk walk) {
  std::vector<Vel::GenericValue> keys;
  for (; walk.valid(); ++walk)
    keys.push_back(attribute.key(walk.key()));
  return keys;
}

}  // namespace BfIngressMirrorLagGroup
