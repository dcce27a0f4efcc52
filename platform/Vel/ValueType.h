#pragma once

#include <cstddef>
#include <functional>

#include "Vel/GenericCall.h"
#include "Vel/GenericIf.h"
#include "Vel/GenericValue.h"
#include "Vel/String.h"
#include "Vel/TypeRecord.h"

namespace Vel {

// Ready-made reflective operations for a value type T, to be named in T's type
// record: `.value = &Vel::ValueType<T>::operation` and so on. T is copyable,
// default-constructible and comparable with ==.
template <class T>
class ValueType {
 public:
  // Is-default (equal to a default-constructed T) and equality with the argument.
  static GenericReply operation(GenericCall& call) {
    const T& value = call.value<T>();
    switch (call.op()) {
      case GenericIf::opIsDefault:
        return call.answerBool(value == T());
      case GenericIf::opEqual:
        return call.answerBool(value == call.arg<T>(0));
    }
    return call.notSupported();
  }

  // A copy of the value at `raw`, which points at a T.
  static GenericValue fromRawPtr(const TypeRecord& type, const void* raw) {
    return GenericValue(type, *static_cast<const T*>(raw));
  }

  // The text form given by T's valueToStrep.
  static String toText(const GenericValue& value) { return valueToStrep(value.ref<T>()); }

  // The hash given by std::hash<T>.
  static std::size_t hash(const GenericValue& value) { return std::hash<T>()(value.ref<T>()); }
};

}  // namespace Vel
