#pragma once

#include "Vel/BulkChange.h"
#include "Vel/Name.h"
#include "Vel/NotifieeList.h"
#include "Vel/Ptr.h"
#include "Vel/PtrInterface.h"
#include "Vel/PtrInterfaceNotifieeConst.h"
#include "Vel/String.h"

namespace Vel {

// A named framework object that others observe: configuration objects and the
// like. An entity may sit under a parent entity, which holds it in one of its
// collection attributes; the parent is not counted (it owns its children, not
// the other way round). An entity's notifiees are called when its attributes
// change.
class Entity : public PtrInterface {
 public:
  // Base of the observers of an entity (EntityNotifieeConst.h).
  class NotifieeConst;

  // Numbers of the attributes that every entity has (see entityType()). The
  // attributes of a derived entity type are numbered from 258 up.
  static constexpr unsigned nameAttribute = 130;
  static constexpr unsigned parentAttribute = 138;
  static constexpr unsigned parentAttrNameAttribute = 139;
  static constexpr unsigned fullNameAttribute = 141;
  static constexpr unsigned entityAttribute = 143;

  explicit Entity(Name name = Name());
  // Drops every notifiee from the list; none is told.
  ~Entity() override;
  Entity(const Entity&) = delete;
  Entity& operator=(const Entity&) = delete;

  // The entity's name. Some entity types answer an empty name.
  virtual Name name() const;
  // Puts back a name saved earlier; nobody is notified.
  void nameIsFromBackup(Name name);
  // The name of the entity with its parents': "<parent's fullName>/<attribute
  // of the parent>/<name>", or just the name when there is no parent.
  Name fullName() const;

  Ptr<Entity> parent() const { return Ptr<Entity>(parent_); }
  // The parent that holds this entity; null when none does.
  void parentIs(Entity* parent) noexcept { parent_ = parent; }
  // The attribute under which the parent holds this entity.
  void parentAttrIs(unsigned attributeNumber, String attributeName);
  const String& parentAttrName() const noexcept { return parentAttrName_; }
  unsigned parentAttrNumber() const noexcept { return parentAttrNumber_; }

  NotifieeList* notifieeList() const override { return &notifiees_; }
  // Tells the notifiees that the last reference has gone (onZeroReferences).
  void zeroReferencesIs(bool zero) override;
  // The entity base record; derived entity types answer their own record.
  const TypeRecord* fwkType() const override;

 protected:
  // Notifies one attribute: calls `call(notifiee)` on every active notifiee
  // that is a Notifiee, at once and in list order (the keyed callback), then
  // queues the deferred key-less form for the notifiees that want it. A
  // notifiee that follows the entity through a more general interface has no
  // keyed callbacks and is passed by.
  // While a bulk change of the attribute is open the keyed callbacks are held
  // back; the bulk change delivers the immediate key-less form when it closes.
  template <class Notifiee, class Call>
  void notify(unsigned attributeNumber, Call call) {
    if (notifiees_.empty())
      return;
    const Ptr<const Entity> keepAlive = selfWhileCounted();
    if (!BulkChange::changeIsHeld(*this, attributeNumber)) {
      notifiees_.doVisit([&call](PtrInterface::NotifieeConst& notifiee) {
        if (auto* typed = dynamic_cast<Notifiee*>(&notifiee))
          call(*typed);
      });
    }
    deferredNotificationIs(attributeNumber);
  }

 private:
  // A reference that keeps the entity alive while its notifiees run; null for
  // an entity that is not counted (on the stack, or being destroyed).
  Ptr<const Entity> selfWhileCounted() const;
  // Queues the deferred form of a notification with the activity manager of
  // each active notifiee that wants it.
  void deferredNotificationIs(unsigned attributeNumber);

  Name name_;
  Entity* parent_ = nullptr;
  unsigned parentAttrNumber_ = 0;
  String parentAttrName_;
  mutable NotifieeList notifiees_;
};

}  // namespace Vel
