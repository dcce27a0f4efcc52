#include "Vel/ActivityManager.h"

#include "Vel/NotifieeList.h"

namespace Vel {

ActivityManager& ActivityManager::instance() {
  static ActivityManager* const manager = new ActivityManager;
  return *manager;
}

ActivityManager::~ActivityManager() {
  deleteAll();
}

void ActivityManager::notificationIs(const Ptr<const PtrInterface>& notifier,
                                     unsigned attributeNumber) {
  if (!notifier || !queued_.insert(Key(notifier.get(), attributeNumber)).second)
    return;
  queue_.push_back(Pending{notifier, attributeNumber});
}

std::size_t ActivityManager::drain() {
  std::size_t delivered = 0;
  while (!queue_.empty()) {
    const Pending next = std::move(queue_.front());
    queue_.pop_front();
    queued_.erase(Key(next.notifier.get(), next.attributeNumber));
    delivered += deliver(next);
  }
  return delivered;
}

void ActivityManager::deleteAll() {
  // Notifiers released here may die and queue notifications of others while the
  // queue is being emptied: take the queue out first.
  std::deque<Pending> dropped;
  dropped.swap(queue_);
  queued_.clear();
}

std::size_t ActivityManager::deliver(const Pending& notification) {
  NotifieeList* list = notification.notifier->notifieeList();
  if (list == nullptr)
    return 0;
  std::size_t delivered = 0;
  list->doVisit([&](PtrInterface::NotifieeConst& notifiee) {
    if (!notifiee.deferredNotification() || &notifiee.velFwkActivity() != this)
      return;
    notifiee.handleNotification(notification.attributeNumber, NotificationKind::deferred);
    ++delivered;
  });
  return delivered;
}

}  // namespace Vel
