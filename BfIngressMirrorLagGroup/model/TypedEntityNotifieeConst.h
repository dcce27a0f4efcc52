#pragma once

#include "Vel/EntityNotifieeConst.h"
#include "Vel/Ptr.h"
#include "Vel/PtrInterface.h"

namespace BfIngressMirrorLagGroup {

// What the notifiee classes of this library's entities share: a notifiee that
// follows only entities of type EntityT and answers its notifier as one. It
// registers in, and moves between, its notifiers' notifiee lists as every
// entity notifiee does; the entity-specific class adds the callbacks.
template <class EntityT>
class TypedEntityNotifieeConst : public Vel::Entity::NotifieeConst {
 public:
  Vel::Ptr<const EntityT> notifier() const noexcept {
    return Vel::static_ptr_cast<const EntityT>(Vel::Entity::NotifieeConst::notifier());
  }

  // Adds this notifiee to (true) or removes it from (false) its notifier's
  // notifiee list when the flag changes; kept until a notifier is set.
  void isRegisteredNotifieeIs(bool registered) override {
    Vel::Entity::NotifieeConst::isRegisteredNotifieeIs(registered);
  }

  // Follows `notifier` when it is an EntityT, and nothing otherwise; a
  // registered notifiee leaves the old notifier's list for the new one's.
  void notifierIs(const Vel::Ptr<const Vel::PtrInterface>& notifier) override {
    Vel::Entity::NotifieeConst::notifierIs(Vel::ptr_cast<const EntityT>(notifier));
  }

 protected:
  TypedEntityNotifieeConst() noexcept = default;
};

}  // namespace BfIngressMirrorLagGroup
