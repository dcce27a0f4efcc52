#pragma once

#include <utility>

#include "Vel/Ptr.h"
#include "Vel/PtrInterfaceNotifieeConst.h"

namespace BfIngressMirrorLagGroup {

// What the reactors of the action-profile state machine share.

// Switches a reactor's notification, passing the change to the framework only
// when it changes the flag.
template <class Reactor>
void reactorNotificationIs(Reactor& reactor, bool active) {
  if (reactor.hasNotificationActive() != active)
    reactor.Vel::PtrInterface::hasNotificationActiveIs(active);
}

// Makes a reactor follow `notifier`, whose type the reactor has checked
// already: the framework's own follow, without checking it again on every
// level of the notifiee classes.
template <class Reactor, class Notifier>
void reactorNotifierIs(Reactor& reactor, const Vel::Ptr<Notifier>& notifier) {
  reactor.Vel::PtrInterface::NotifieeConst::notifierIs(notifier);
}

// Moves a reactor into (true) or out of the zombie state, as every reactor
// does: nothing when its marked-for-deletion bit is `zombie` already;
// otherwise its notification follows (off for a zombie) when it has a
// notifier, `dispose` runs its owner's handler, and only then does the bit
// change. When `dispose` throws, the notification is put back and the bit
// stays: the reactor is what it was, and the exception passes on.
template <class Reactor, class Dispose>
void reactorZombieIs(Reactor& reactor, bool zombie, Dispose&& dispose) {
  if (reactor.velMarkedForDeletion() == zombie)
    return;
  const bool wasActive = reactor.hasNotificationActive();
  if (reactor.notifier())
    reactor.hasNotificationActiveIs(!zombie);
  try {
    std::forward<Dispose>(dispose)();
  } catch (...) {
    reactor.hasNotificationActiveIs(wasActive);
    throw;
  }
  reactor.velMarkedForDeletionIs(zombie);
}

}  // namespace BfIngressMirrorLagGroup
