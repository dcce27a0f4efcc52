#include "Vel/PtrInterface.h"

#include "Quill/Assert.h"
#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/ObjectReference.h"

namespace Vel {

namespace {

std::atomic<bool> threadSafe{false};

}  // namespace

void threadSafePtrIs(bool on) noexcept {
  threadSafe.store(on, std::memory_order_seq_cst);
}

bool threadSafePtr() noexcept {
  return threadSafe.load(std::memory_order_relaxed);
}

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

void PtrInterface::newRef() const noexcept {
  if (threadSafePtr()) {
    word_.fetch_add(1, std::memory_order_relaxed);
  } else {
    word_.store(word_.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
  }
}

void PtrInterface::deleteRef() const noexcept {
  if (dropReference() == 0)
    handleZeroRef();
}

std::uint32_t PtrInterface::dropReference() const noexcept {
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
