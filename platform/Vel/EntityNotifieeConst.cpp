#include "Vel/EntityNotifieeConst.h"

namespace Vel {

void Entity::NotifieeConst::notifierIs(const Ptr<const PtrInterface>& notifier) {
  PtrInterface::NotifieeConst::notifierIs(ptr_cast<const Entity>(notifier));
}

}  // namespace Vel
