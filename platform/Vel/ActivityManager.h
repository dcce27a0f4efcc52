#pragma once

#include <cstddef>
#include <deque>
#include <set>
#include <utility>

#include "Vel/Ptr.h"
#include "Vel/PtrInterface.h"

namespace Vel {

// Delivers deferred notifications. When a notifier changes an attribute and
// one of its notifiees wants deferred delivery, the pair (notifier, attribute)
// is queued here; the host drains the queue from its event loop, and each
// notifiee that wants deferred delivery then gets the key-less form of the
// notification (handleNotification with NotificationKind::deferred). A pair
// that is already waiting is not queued twice. The queue holds a counted
// reference to each notifier. Used from the event thread only.
class ActivityManager {
 public:
  // The process's activity manager, the one that notifiees use by default. It
  // is never destroyed, so that no notifier dies during the process's exit.
  static ActivityManager& instance();

  ActivityManager() = default;
  ~ActivityManager();
  ActivityManager(const ActivityManager&) = delete;
  ActivityManager& operator=(const ActivityManager&) = delete;

  // Queues a deferred notification of `attributeNumber` of `notifier`, unless
  // the same one is already waiting.
  void notificationIs(const Ptr<const PtrInterface>& notifier, unsigned attributeNumber);
  // Number of notifications waiting.
  std::size_t pending() const noexcept { return queue_.size(); }
  // Delivers the waiting notifications in the order they were queued, including
  // those queued meanwhile, until none is left. Returns how many deliveries to
  // notifiees were made. An exception from a notifiee leaves the drain; the
  // notification being delivered is then dropped and the rest stays queued.
  std::size_t drain();
  // Drops every waiting notification without delivering it.
  void deleteAll();

 private:
  struct Pending {
    Ptr<const PtrInterface> notifier;
    unsigned attributeNumber;
  };
  using Key = std::pair<const PtrInterface*, unsigned>;

  // Delivers one notification; returns the number of notifiees called.
  std::size_t deliver(const Pending& notification);

  std::deque<Pending> queue_;
  std::set<Key> queued_;
};

}  // namespace Vel
