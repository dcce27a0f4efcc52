#include "Vel/PtrInterfaceNotifieeConst.h"

#include <utility>

#include "Vel/ActivityManager.h"
#include "Vel/NotifieeList.h"

namespace Vel {

PtrInterface::NotifieeConst::NotifieeConst() noexcept {
  PtrInterface::hasNotificationActiveIs(true);
}

PtrInterface::NotifieeConst::~NotifieeConst() {
  if (NotifieeList* list = registeredList())
    list->deleteMember(this);
}

bool PtrInterface::NotifieeConst::velReactor() const {
  return false;
}

void PtrInterface::NotifieeConst::isRegisteredNotifieeIs(bool registered) {
  if (registered == registered_)
    return;
  registered_ = registered;
  NotifieeList* list = notifierList();
  if (list == nullptr)
    return;
  if (registered)
    list->newMember(this);
  else
    list->deleteMember(this);
}

void PtrInterface::NotifieeConst::notifierIs(const Ptr<const PtrInterface>& notifier) {
  if (notifier == notifier_)
    return;
  if (NotifieeList* list = registeredList())
    list->deleteMember(this);
  // The old notifier is released last, once this notifiee no longer refers to it.
  const Ptr<const PtrInterface> old = std::exchange(notifier_, notifier);
  if (NotifieeList* list = registeredList())
    list->newMember(this);
}

void PtrInterface::NotifieeConst::handleNotification(unsigned, NotificationKind) {}

void PtrInterface::NotifieeConst::onNotificationException(const std::exception&) {}

void PtrInterface::NotifieeConst::onZeroReferences() {}

ActivityManager& PtrInterface::NotifieeConst::velFwkActivity() const {
  return ActivityManager::instance();
}

PtrInterface* PtrInterface::NotifieeConst::actsm() const {
  return nullptr;
}

NotifieeList* PtrInterface::NotifieeConst::notifierList() const {
  return notifier_ ? notifier_->notifieeList() : nullptr;
}

NotifieeList* PtrInterface::NotifieeConst::registeredList() const {
  return registered_ ? notifierList() : nullptr;
}

}  // namespace Vel
