#pragma once

#include "Vel/Entity.h"
#include "Vel/Ptr.h"
#include "Vel/PtrInterfaceNotifieeConst.h"

namespace Vel {

// Base of the observers of an entity: a notifiee whose notifier is always an
// entity (or none).
class Entity::NotifieeConst : public PtrInterface::NotifieeConst {
 public:
  NotifieeConst() noexcept = default;

  Ptr<const Entity> notifier() const noexcept {
    return Ptr<const Entity>(
        static_cast<const Entity*>(PtrInterface::NotifieeConst::notifier().get()));
  }
  // Follows `notifier` as an entity; an object of another kind counts as none.
  void notifierIs(const Ptr<const PtrInterface>& notifier) override;
};

}  // namespace Vel
