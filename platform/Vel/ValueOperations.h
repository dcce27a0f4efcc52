#pragma once

#include <cstddef>
#include <functional>

#include "Vel/GenericCall.h"
#include "Vel/GenericIf.h"
#include "Vel/GenericValue.h"
#include "Vel/SequenceToValue.h"
#include "Vel/String.h"
#include "Vel/TextParse.h"
#include "Vel/TypeRecord.h"
#include "Vel/ValueToStrep.h"

namespace Vel {

// Ready-made reflective operations of a value type T, named in T's type record:
// `.value = &Vel::ValueOperations<T>::operation` and so on. T is copyable,
// default-constructible and comparable with ==.
template <class T>
class ValueOperations {
 public:
  ValueOperations() = delete;

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

  // The value whose text form is the whole text: read by the framework's
  // sequenceToValue for T where there is one, else by T's parsing constructor
  // T(pos, end); then nothing may be left over.
  static GenericValue fromText(const TypeRecord& type, const String& text) {
    String::IteratorConst pos = text.begin();
    const String::IteratorConst end = text.end();
    GenericValue value(type, read(pos, end));
    strepToValueEnd(pos, end);
    return value;
  }

  // The text form given by valueToStrep for T.
  static String toText(const GenericValue& value) { return valueToStrep(value.ref<T>()); }

  // The hash given by std::hash<T>.
  static std::size_t hash(const GenericValue& value) { return std::hash<T>()(value.ref<T>()); }

 private:
  static T read(String::IteratorConst& pos, const String::IteratorConst& end) {
    if constexpr (requires(T * out) { sequenceToValue(pos, end, out); }) {
      T value{};
      sequenceToValue(pos, end, &value);
      return value;
    } else {
      return T(pos, end);
    }
  }
};

}  // namespace Vel
