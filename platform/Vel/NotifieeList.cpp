#include "Vel/NotifieeList.h"

#include <algorithm>

#include "Quill/Assert.h"

namespace Vel {

NotifieeList::~NotifieeList() {
  // The notifier must outlive the visits of its own list.
  QUILL_ASSERT(visits_ == 0);
}

void NotifieeList::newMember(Member* member) {
  QUILL_ASSERT(member != nullptr);
  if (isMember(member))
    return;
  slots_.push_back(member);
  ++size_;
}

void NotifieeList::deleteMember(Member* member) {
  if (member == nullptr)
    return;
  const auto slot = std::find(slots_.begin(), slots_.end(), member);
  if (slot != slots_.end())
    slotEmptied(static_cast<std::size_t>(slot - slots_.begin()));
}

void NotifieeList::deleteAll() {
  size_ = 0;
  if (visits_ == 0) {
    slots_.clear();
    return;
  }
  std::fill(slots_.begin(), slots_.end(), nullptr);
  hasEmptySlots_ = true;
}

bool NotifieeList::isMember(const Member* member) const noexcept {
  return member != nullptr && std::find(slots_.begin(), slots_.end(), member) != slots_.end();
}

// While a visit runs the slot stays, empty, so that the visit's positions hold;
// otherwise it goes at once.
void NotifieeList::slotEmptied(std::size_t index) noexcept {
  --size_;
  if (visits_ == 0) {
    slots_.erase(slots_.begin() + static_cast<std::ptrdiff_t>(index));
    return;
  }
  slots_[index] = nullptr;
  hasEmptySlots_ = true;
}

void NotifieeList::visitEnded() noexcept {
  --visits_;
  if (visits_ != 0 || !hasEmptySlots_)
    return;
  std::erase(slots_, nullptr);
  hasEmptySlots_ = false;
}

}  // namespace Vel
