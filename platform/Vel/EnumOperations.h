#pragma once

#include <cstddef>

#include "Vel/GenericArgs.h"
#include "Vel/GenericCall.h"
#include "Vel/GenericValue.h"
#include "Vel/String.h"

namespace Vel {

class TypeRecord;

// The framework's reflective operations of enumerations, served by the
// enumeration service on the type's record (an EnumType<unsigned int>). A value
// is held as its unsigned number; it is default when 0; its text form and
// reading are the enumeration service's; it is built from one argument, the
// value; its hash is that of the number. An enumeration record gets them
// wherever it names none.
class EnumOperations {
 public:
  EnumOperations() = delete;

  static GenericReply operation(GenericCall& call);
  // `raw` points at the value's unsigned 32-bit number.
  static GenericValue fromRawPtr(const TypeRecord& type, const void* raw);
  static GenericValue fromText(const TypeRecord& type, const String& text);
  static GenericValue fromArgs(const TypeRecord& type, const GenericArgs& args);
  static String toText(const GenericValue& value);
  static std::size_t hash(const GenericValue& value);
};

}  // namespace Vel
