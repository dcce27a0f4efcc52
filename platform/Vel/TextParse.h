#pragma once

#include "Vel/RangeException.h"
#include "Vel/SequenceToValue.h"
#include "Vel/String.h"

namespace Vel {

// Building blocks of parsers of composite text forms such as
// "Value('<type>', ** {'<attribute>': <value>, ...})".

// Requires `literal` at pos and advances past it. Otherwise raises
// ParseException "expected <literal>, found <text>" and leaves pos unchanged.
void needString(String::IteratorConst& pos, const String::IteratorConst& end, const char* literal);

// Requires that the value just read ends the text: raises ParseException
// "text left over after the value: <leftover>" when pos is not at end.
void strepToValueEnd(const String::IteratorConst& pos, const String::IteratorConst& end);

// Raises a RangeException whose message is that of `e` preceded by
// "attribute '<attributeName>': ".
[[noreturn]] void rethrowFromDeserializeAttr(const RangeException& e, const char* attributeName);

// Reads the value of one attribute with sequenceToValue (found by argument
// dependent look-up too, so that a type's own reader is used). A RangeException
// is raised again naming the attribute; every other exception passes unchanged.
template <class T>
void deserializeAttr(String::IteratorConst& pos, const String::IteratorConst& end,
                     const char* attributeName, T* out) {
  try {
    sequenceToValue(pos, end, out);
  } catch (const RangeException& e) {
    rethrowFromDeserializeAttr(e, attributeName);
  }
}

}  // namespace Vel
