#pragma once

#include <atomic>
#include <cstdint>

#include "Quill/Assert.h"
#include "Vel/ThreadSafePtr.h"

namespace Vel {

class NotifieeList;
class TypeRecord;
class AllocTrackTypeInfo;

// Base of every reference-counted framework object. One 32-bit reference word
// holds the count (the word masked with refCountMask) and framework flags in the
// bits outside the mask: bit 31 marks the object for deletion, bit 29 tells that
// the object has been given a reference id in text (see ObjectReference).
class PtrInterface {
 public:
  // Base of the observers of a PtrInterface (PtrInterfaceNotifieeConst.h).
  class NotifieeConst;

  static constexpr std::uint32_t refCountMask = 0x5fffffffu;
  static constexpr std::uint32_t markedForDeletionBit = 0x80000000u;
  static constexpr std::uint32_t referencedInTextBit = 0x20000000u;

  PtrInterface() noexcept = default;
  // A copy is a new object: it starts with no references and no flags.
  PtrInterface(const PtrInterface&) noexcept {}
  PtrInterface& operator=(const PtrInterface&) noexcept { return *this; }

  // The list of notifiees of this object; null for objects that have none.
  virtual NotifieeList* notifieeList() const;
  // Switches delivery of this object's notifications on or off.
  virtual void hasNotificationActiveIs(bool active);
  // Called with true when the last reference has gone, just before the object
  // is destroyed; a notifiee may take a new reference to keep it alive.
  virtual void zeroReferencesIs(bool zero);
  // The reflective type record of the object's type; null when it has none.
  virtual const TypeRecord* fwkType() const;
  virtual ~PtrInterface();

  std::uint32_t references() const noexcept {
    return word_.load(std::memory_order_relaxed) & refCountMask;
  }
  std::uint32_t referenceWord() const noexcept { return word_.load(std::memory_order_relaxed); }
  // Reference counts change inline: they are the framework's most frequent
  // operation.
  void newRef() const noexcept { countBy(word_, std::uint32_t{1}); }
  // Drops one reference; at zero the object is destroyed through handleZeroRef.
  void deleteRef() const noexcept {
    if (dropReference() == 0)
      handleZeroRef();
  }

  bool velMarkedForDeletion() const noexcept {
    return (referenceWord() & markedForDeletionBit) != 0;
  }
  void velMarkedForDeletionIs(bool marked) const noexcept { flagIs(markedForDeletionBit, marked); }
  bool hasNotificationActive() const noexcept { return notificationActive_; }

  // Framework bookkeeping: the allocation tracking record of an object made by
  // Vel::allocate, credited when the object is destroyed.
  void velAllocTrackIs(AllocTrackTypeInfo* track) noexcept { allocTrack_ = track; }
  AllocTrackTypeInfo* velAllocTrack() const noexcept { return allocTrack_; }
  void flagIs(std::uint32_t bit, bool on) const noexcept;

 private:
  // Runs when the count reaches zero: announces it through zeroReferencesIs and
  // destroys the object unless a new reference was taken meanwhile. Types change
  // what happens at zero through zeroReferencesIs, not here.
  void handleZeroRef() const;
  // Drops one reference without acting on zero; returns the count left.
  std::uint32_t dropReference() const noexcept {
    std::uint32_t before;
    if (threadSafePtr()) {
      before = word_.fetch_sub(1, std::memory_order_acq_rel);
    } else {
      before = word_.load(std::memory_order_relaxed);
      word_.store(before - 1, std::memory_order_relaxed);
    }
    QUILL_ASSERT((before & refCountMask) != 0);
    return (before & refCountMask) - 1;
  }
  void destroy() const noexcept;

  mutable std::atomic<std::uint32_t> word_{0};
  AllocTrackTypeInfo* allocTrack_ = nullptr;
  bool notificationActive_ = false;
};

}  // namespace Vel
