#pragma once

#include "Vel/GenericValue.h"
#include "Vel/PtrInterface.h"

namespace Vel {

// A notifiee that observes an entity without knowing its type: every
// notification of the entity arrives as the number of the attribute that
// changed, with the key for keyed notifications (null for key-less ones). It is
// attached through the entity type's notifiee factory (GenericIf::notifieeIs),
// which makes an adapter implementing the entity's own notifiee interface.
class GenericNotifiee : public PtrInterface {
 public:
  virtual void onRawAttribute(unsigned attributeNumber, const GenericValue* key);
};

}  // namespace Vel
