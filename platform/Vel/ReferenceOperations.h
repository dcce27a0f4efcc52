#pragma once

#include <cstddef>

#include "Vel/GenericCall.h"
#include "Vel/GenericValue.h"
#include "Vel/String.h"

namespace Vel {

class TypeRecord;

// The framework's reflective operations of references to objects (entities and
// other reference-counted objects). A type record of an object type gets them
// wherever its generated code names none: a reference is default when null and
// equal to a reference to the same object; its text form is the framework's
// reference text (never an address), read back only as a live object of the
// record's type; its hash is that of the object's identity.
class ReferenceOperations {
 public:
  ReferenceOperations() = delete;

  static GenericReply operation(GenericCall& call);
  // `raw` points at the object itself (a PtrInterface), or is null.
  static GenericValue fromRawPtr(const TypeRecord& type, const void* raw);
  static GenericValue fromText(const TypeRecord& type, const String& text);
  static String toText(const GenericValue& value);
  static std::size_t hash(const GenericValue& value);
};

}  // namespace Vel
