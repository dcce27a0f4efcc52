#include "Vel/Entity.h"

#include <utility>

#include "Vel/ActivityManager.h"
#include "Vel/EntityType.h"

namespace Vel {

Entity::Entity(Name name) : name_(std::move(name)) {}

Entity::~Entity() {
  notifiees_.deleteAll();
}

Name Entity::name() const {
  return name_;
}

void Entity::nameIsFromBackup(Name name) {
  name_ = std::move(name);
}

Name Entity::fullName() const {
  if (parent_ == nullptr)
    return name();
  return parent_->fullName() + "/" + parentAttrName_ + "/" + name();
}

void Entity::parentAttrIs(unsigned attributeNumber, String attributeName) {
  parentAttrNumber_ = attributeNumber;
  parentAttrName_ = std::move(attributeName);
}

void Entity::zeroReferencesIs(bool zero) {
  PtrInterface::zeroReferencesIs(zero);
  if (!zero || notifiees_.empty())
    return;
  notifiees_.doVisit([](PtrInterface::NotifieeConst& notifiee) { notifiee.onZeroReferences(); });
}

const TypeRecord* Entity::fwkType() const {
  return &entityType();
}

Ptr<const Entity> Entity::selfWhileCounted() const {
  return references() != 0 ? Ptr<const Entity>(this) : Ptr<const Entity>();
}

void Entity::deferredNotificationIs(unsigned attributeNumber) {
  const Ptr<const PtrInterface> self = selfWhileCounted();
  if (!self)
    return;
  notifiees_.doVisit([&](PtrInterface::NotifieeConst& notifiee) {
    if (notifiee.deferredNotification())
      notifiee.velFwkActivity().notificationIs(self, attributeNumber);
  });
}

}  // namespace Vel
