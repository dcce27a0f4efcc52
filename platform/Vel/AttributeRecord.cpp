#include "Vel/AttributeRecord.h"

#include "Vel/Format.h"
#include "Vel/OperationNotSupportedException.h"
#include "Vel/RangeException.h"
#include "Vel/TypeRecord.h"

namespace Vel {

String AttributeRecord::qualifiedName() const {
  return owner().name() + "::" + name_;
}

void AttributeRecord::notSupported(const String& operation) const {
  throw OperationNotSupportedException(
      format("Operation %s is not supported on attribute '%s' of type '%s'", operation.c_str(),
             name_.c_str(), owner().name().c_str()));
}

const TypeRecord& AttributeRecord::needKeyType() const {
  if (keyType_ == nullptr) {
    throwRangeException(format("Attribute '%s' has no key type", qualifiedName().c_str()));
  }
  return *keyType_;
}

}  // namespace Vel
