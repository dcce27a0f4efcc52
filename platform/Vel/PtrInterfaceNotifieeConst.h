#pragma once

#include <exception>

#include "Vel/NotificationKind.h"
#include "Vel/Ptr.h"
#include "Vel/PtrInterface.h"

namespace Vel {

class ActivityManager;

// Base of every observer of a framework object. A notifiee holds a counted
// reference to its notifier and, while registered, sits in the notifier's
// notifiee list, from which the notifier calls it. It is reference counted
// itself; a new notifiee has its notification active.
class PtrInterface::NotifieeConst : public PtrInterface {
 public:
  NotifieeConst() noexcept;
  // Takes the notifiee out of its notifier's list when it is registered.
  ~NotifieeConst() override;
  NotifieeConst(const NotifieeConst&) = delete;
  NotifieeConst& operator=(const NotifieeConst&) = delete;

  // True for the reactors of a state machine.
  virtual bool velReactor() const;
  // Registers the notifiee with its notifier (true) or takes it out (false).
  // The flag is kept without a notifier; setting a notifier later applies it.
  virtual void isRegisteredNotifieeIs(bool registered);
  // Follows another notifier; a registered notifiee moves from the old
  // notifier's list to the new one's.
  virtual void notifierIs(const Ptr<const PtrInterface>& notifier);
  // Delivery of a key-less notification of one attribute of the notifier.
  virtual void handleNotification(unsigned attributeNumber, NotificationKind kind);
  // Told about an exception that a delivery to this notifiee raised.
  virtual void onNotificationException(const std::exception& exception);
  // Told that the notifier's last reference has gone.
  virtual void onZeroReferences();
  // The activity manager that delivers this notifiee's deferred notifications.
  virtual ActivityManager& velFwkActivity() const;
  // The state machine that this notifiee belongs to, if any.
  virtual PtrInterface* actsm() const;

  const Ptr<const PtrInterface>& notifier() const noexcept { return notifier_; }
  bool isRegisteredNotifiee() const noexcept { return registered_; }
  // Whether the notifiee wants the deferred (plain onX()) form of notifications.
  bool deferredNotification() const noexcept { return deferred_; }
  void deferredNotificationIs(bool deferred) noexcept { deferred_ = deferred; }

 private:
  NotifieeList* notifierList() const;
  // The notifier's list when this notifiee is registered in it, else null.
  NotifieeList* registeredList() const;

  Ptr<const PtrInterface> notifier_;
  bool registered_ = false;
  bool deferred_ = false;
};

}  // namespace Vel
