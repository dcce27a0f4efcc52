#pragma once

#include <cstddef>
#include <vector>

#include "Vel/PtrInterfaceNotifieeConst.h"

namespace Vel {

// The notifiees of one notifier, in registration order. The list does not own
// them: a notifiee takes itself out of the list when it unregisters or dies.
//
// A visit stays safe while the callbacks change the list: a member taken out
// during a visit leaves an empty slot behind (the slots are compacted when the
// outermost visit ends), and a member added during a visit is appended after
// the slots that the running visits walk, so it is first called by the next
// visit. Visits may nest.
class NotifieeList {
 public:
  using Member = PtrInterface::NotifieeConst;

  NotifieeList() = default;
  ~NotifieeList();
  NotifieeList(const NotifieeList&) = delete;
  NotifieeList& operator=(const NotifieeList&) = delete;

  // Adds a member at the end; a member already in the list is not added again.
  void newMember(Member* member);
  // Takes a member out; one that is not in the list is ignored.
  void deleteMember(Member* member);
  void deleteAll();

  bool empty() const noexcept { return size_ == 0; }
  std::size_t size() const noexcept { return size_; }
  bool isMember(const Member* member) const noexcept;

  // Calls f(member) on every member whose notification is active, in list
  // order. An exception from f ends the visit and passes on to the caller.
  template <class F>
  void doVisit(F f) {
    const Visit visit(*this);
    const std::size_t end = slots_.size();
    for (std::size_t i = 0; i < end; ++i) {
      Member* member = slots_[i];
      if (member != nullptr && member->hasNotificationActive())
        f(*member);
    }
  }

 private:
  // Marks a visit as running for its lifetime; the last one to end compacts.
  class Visit {
   public:
    explicit Visit(NotifieeList& list) noexcept : list_(list) { ++list_.visits_; }
    ~Visit() { list_.visitEnded(); }
    Visit(const Visit&) = delete;
    Visit& operator=(const Visit&) = delete;

   private:
    NotifieeList& list_;
  };

  void visitEnded() noexcept;
  void slotEmptied(std::size_t index) noexcept;

  std::vector<Member*> slots_;
  std::size_t size_ = 0;
  unsigned visits_ = 0;
  bool hasEmptySlots_ = false;
};

}  // namespace Vel
