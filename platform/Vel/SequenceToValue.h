#pragma once

#include <type_traits>

#include "Vel/Name.h"
#include "Vel/Ptr.h"
#include "Vel/PtrInterface.h"
#include "Vel/String.h"

namespace Vel {

// Readers of the text forms written by valueToStrep (Vel/ValueToStrep.h). Each
// reads the value that stands at pos, stores it in *out and advances pos just
// past it. A text that cannot be read as the value raises RangeException saying
// what was expected and what was found; then pos and *out are left unchanged.
// No reader looks at or past `end`.
//
// Integers: decimal digits, or 0x (0X) and hexadecimal digits; signed types take
// an optional '-' first. The number must fit the type. Bools: True or False.
// Strings: a single-quoted text with the escapes \\ \' \n \t \r \xHH.

void sequenceToValue(String::IteratorConst& pos, const String::IteratorConst& end, bool* out);
void sequenceToValue(String::IteratorConst& pos, const String::IteratorConst& end,
                     signed char* out);
void sequenceToValue(String::IteratorConst& pos, const String::IteratorConst& end,
                     unsigned char* out);
void sequenceToValue(String::IteratorConst& pos, const String::IteratorConst& end, short* out);
void sequenceToValue(String::IteratorConst& pos, const String::IteratorConst& end,
                     unsigned short* out);
void sequenceToValue(String::IteratorConst& pos, const String::IteratorConst& end, int* out);
void sequenceToValue(String::IteratorConst& pos, const String::IteratorConst& end,
                     unsigned int* out);
void sequenceToValue(String::IteratorConst& pos, const String::IteratorConst& end, long* out);
void sequenceToValue(String::IteratorConst& pos, const String::IteratorConst& end,
                     unsigned long* out);
void sequenceToValue(String::IteratorConst& pos, const String::IteratorConst& end, long long* out);
void sequenceToValue(String::IteratorConst& pos, const String::IteratorConst& end,
                     unsigned long long* out);
void sequenceToValue(String::IteratorConst& pos, const String::IteratorConst& end, String* out);
void sequenceToValue(String::IteratorConst& pos, const String::IteratorConst& end, Name* out);

// Reads a reference: "None" gives null; "Ref('<type name>', <id>)" gives the
// live object whose ObjectReference id is <id>, provided `isExpectedType` accepts
// it. The type name is read but not trusted: the object's own type decides. An
// id that names no live object, or an object of another type, raises
// RangeException. Advances pos past the reference.
Ptr<const PtrInterface> sequenceToObject(String::IteratorConst& pos,
                                         const String::IteratorConst& end,
                                         bool (*isExpectedType)(const PtrInterface* object));

// Reads a reference to a T (or to a T const) as sequenceToObject does; an object
// that is not a T is of another type.
template <class T>
void sequenceToValue(String::IteratorConst& pos, const String::IteratorConst& end, Ptr<T>* out) {
  using ConstT = std::add_const_t<T>;
  const Ptr<const PtrInterface> object = sequenceToObject(
      pos, end, [](const PtrInterface* o) { return dynamic_cast<ConstT*>(o) != nullptr; });
  *out = const_cast<std::remove_const_t<T>*>(dynamic_cast<ConstT*>(object.get()));
}

}  // namespace Vel
