#pragma once

#include <utility>

#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Ptr.h"

namespace Vel {

// Makes a T through its allocation tracking record and returns the first
// reference to it. A constructor that throws leaves nothing allocated or counted.
template <class T, class... Args>
Ptr<T> allocate(Args&&... args) {
  AllocTrackTypeInfo& track = AllocTrackTypeInfo::of<T>();
  T* object = new T(std::forward<Args>(args)...);
  object->velAllocTrackIs(&track);
  track.allocated();
  return Ptr<T>(object);
}

}  // namespace Vel
