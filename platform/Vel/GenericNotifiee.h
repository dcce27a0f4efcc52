#pragma once

#include "Vel/GenericValue.h"
#include "Vel/PtrInterface.h"

namespace Vel {

class AttributeRecord;

// A notifiee that observes an entity without knowing its type: every
// notification of the entity arrives as the number of the attribute that
// changed, with the key for keyed notifications (null for key-less ones). It is
// attached through the entity type's notifiee factory (GenericIf::notifieeIs),
// which makes an adapter implementing the entity's own notifiee interface (see
// GenericNotifieeAdapter). One generic notifiee may be attached to several
// entities, through one adapter each.
class GenericNotifiee : public PtrInterface {
 public:
  // The attribute numbered `attributeNumber` of the observed entity changed.
  // `key` is the key that the entity's keyed callback carried, as a value of
  // the collection's key type; null for the key-less callbacks. It may detach,
  // unregister or drop the adapter that calls it, or drop itself.
  virtual void onRawAttribute(unsigned attributeNumber, const GenericValue* key);

  // For adapters: the record of the attribute numbered `attributeNumber` of the
  // notifier's type (or of a base type); a RangeException when there is none.
  static const AttributeRecord& notifiedAttribute(const PtrInterface* notifier,
                                                  unsigned attributeNumber);
  // For adapters: raises the RangeException of a factory asked to observe `self`,
  // a null reference or an object of another class than the adapter's entity.
  [[noreturn]] static void unobservable(const GenericValue& self);
};

}  // namespace Vel
