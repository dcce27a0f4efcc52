#pragma once

#include <atomic>
#include <cstddef>
#include <string>
#include <typeinfo>
#include <vector>

namespace Vel {

// Allocation tracking record of one type: how many objects of the type made by
// Vel::allocate are alive and how many were made in all. Every record is listed
// in a process-wide registry, so tests can check that nothing is left alive.
class AllocTrackTypeInfo {
 public:
  explicit AllocTrackTypeInfo(const std::type_info& type);
  ~AllocTrackTypeInfo();
  AllocTrackTypeInfo(const AllocTrackTypeInfo&) = delete;
  AllocTrackTypeInfo& operator=(const AllocTrackTypeInfo&) = delete;

  // The record of T, created on first use.
  template <class T>
  static AllocTrackTypeInfo& of() {
    static AllocTrackTypeInfo record(typeid(T));
    return record;
  }

  // The readable (demangled) name of the type.
  const std::string& typeName() const noexcept { return typeName_; }
  // Released objects are read before allocated ones: every release follows
  // its allocation, so the difference is never negative, even while threads
  // allocate and release.
  std::size_t liveObjects() const noexcept {
    const std::size_t released = released_.load(std::memory_order_acquire);
    return total_.load(std::memory_order_acquire) - released;
  }
  std::size_t totalAllocated() const noexcept { return total_.load(std::memory_order_relaxed); }

  // Always atomic: objects of one type are made and destroyed in many threads
  // even when no object is shared between them. One atomic step each.
  void allocated() noexcept { total_.fetch_add(1, std::memory_order_acq_rel); }
  void released() noexcept { released_.fetch_add(1, std::memory_order_acq_rel); }
  // An object that its owner keeps, emptied, to use again is counted as
  // released meanwhile (released()), and comes back either as a new
  // allocation (allocated()) or, just before it is destroyed instead, as live
  // again (unparked()): the counts stay those of a free and a new allocation.
  void unparked() noexcept { released_.fetch_sub(1, std::memory_order_acq_rel); }

  // The record of the type with this readable name, or null.
  static const AllocTrackTypeInfo* find(const std::string& typeName);
  // Every record made so far in the process.
  static std::vector<const AllocTrackTypeInfo*> all();
  // Sum of live objects over all records.
  static std::size_t liveObjectsOfAllTypes();

 private:
  std::string typeName_;
  std::atomic<std::size_t> total_{0};
  std::atomic<std::size_t> released_{0};
};

}  // namespace Vel
