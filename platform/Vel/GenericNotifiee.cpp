#include "Vel/GenericNotifiee.h"

#include "Vel/AttributeRecord.h"
#include "Vel/Format.h"
#include "Vel/RangeException.h"
#include "Vel/TypeRecord.h"

namespace Vel {

namespace {

const char* nameOf(const TypeRecord* type) {
  return type != nullptr ? type->name().c_str() : "Vel::PtrInterface";
}

}  // namespace

// Observers override what they watch; the default ignores the notification.
void GenericNotifiee::onRawAttribute(unsigned, const GenericValue*) {}

const AttributeRecord& GenericNotifiee::notifiedAttribute(const PtrInterface* notifier,
                                                          unsigned attributeNumber) {
  const TypeRecord* type = notifier != nullptr ? notifier->fwkType() : nullptr;
  const AttributeRecord* attribute = type != nullptr ? type->attribute(attributeNumber) : nullptr;
  if (attribute == nullptr) {
    throwRangeException(
        format("Type '%s' has no attribute numbered %u", nameOf(type), attributeNumber));
  }
  return *attribute;
}

void GenericNotifiee::unobservable(const GenericValue& self) {
  if (self.isNull()) {
    throwRangeException(format("A generic notifiee cannot observe a null reference of type '%s'",
                               nameOf(self.type())));
  }
  throwRangeException(
      format("A generic notifiee of type '%s' cannot observe this object", nameOf(self.type())));
}

}  // namespace Vel
