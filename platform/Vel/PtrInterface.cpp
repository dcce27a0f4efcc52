#include "Vel/PtrInterface.h"

#include "Quill/Assert.h"
#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/ObjectReference.h"

namespace Vel {

NotifieeList* PtrInterface::notifieeList() const {
  return nullptr;
}

void PtrInterface::hasNotificationActiveIs(bool active) {
  notificationActive_ = active;
}

void PtrInterface::zeroReferencesIs(bool) {}

const TypeRecord* PtrInterface::fwkType() const {
  return nullptr;
}

PtrInterface::~PtrInterface() {
  if (referenceWord() & referencedInTextBit)
    ObjectReference::forget(this);
}

void PtrInterface::flagIs(std::uint32_t bit, bool on) const noexcept {
  if (threadSafePtr()) {
    if (on) {
      word_.fetch_or(bit, std::memory_order_relaxed);
    } else {
      word_.fetch_and(~bit, std::memory_order_relaxed);
    }
    return;
  }
  const std::uint32_t word = word_.load(std::memory_order_relaxed);
  word_.store(on ? (word | bit) : (word & ~bit), std::memory_order_relaxed);
}

void PtrInterface::handleZeroRef() const {
  // A guard reference keeps the object whole while its zero-reference hook runs:
  // a notifiee may take and drop references there without destroying it again.
  newRef();
  const_cast<PtrInterface*>(this)->zeroReferencesIs(true);
  if (dropReference() == 0)
    destroy();
}

void PtrInterface::destroy() const noexcept {
  AllocTrackTypeInfo* track = allocTrack_;
  delete this;
  if (track != nullptr)
    track->released();
}

}  // namespace Vel
