#pragma once

#include <cstddef>
#include <ostream>
#include <type_traits>
#include <unordered_map>
#include <vector>

#include "Vel/String.h"
#include "Vel/TypeRecord.h"

namespace Vel {

// Registration record of an enumeration stored as a T, and the framework's
// enumeration service on it: names, text forms, printing and parsing of its
// values. An enumeration type defines its own conversions as one-line calls of
// these members on its record. Unknown names and numbers raise RangeException
// naming the enumeration and the bad value.
template <class T>
class EnumType : public TypeRecord {
 public:
  struct Enumerator {
    String name;
    T value;
  };

  // Several names may share a value; the first one listed is the value's name.
  // Names must differ from one another.
  EnumType(String name, std::vector<Enumerator> enumerators);

  // The enumerators in the order they were given.
  const std::vector<Enumerator>& enumerators() const noexcept { return enumerators_; }

  // The bare name of the value, or its decimal text when no enumerator has it.
  String stringValue(T value) const;
  // The text form: the quoted name, or the decimal text when no enumerator has it.
  String valueToStrep(T value) const;
  // Writes stringValue(value).
  std::ostream& print(std::ostream& out, T value) const;
  // The value when an enumerator has it.
  T instance(T value) const;
  // The value of the enumerator with exactly this name.
  T instance(const String& name) const;
  // Reads a quoted enumerator name, or a number that is an enumerator's value,
  // and advances pos past it; on failure pos and *out are left unchanged.
  void sequenceToValue(String::IteratorConst& pos, const String::IteratorConst& end, T* out) const;
  // The same reader for an enumeration type stored as a T, so that the type's
  // own reader is a single call: *out is left unchanged on failure.
  template <class E>
  requires std::is_enum_v<E> && std::is_same_v<std::underlying_type_t<E>, T>
  void sequenceToValue(String::IteratorConst& pos, const String::IteratorConst& end, E* out) const {
    T value{};
    sequenceToValue(pos, end, &value);
    *out = static_cast<E>(value);
  }

 private:
  const String* nameOf(T value) const;
  [[noreturn]] void throwNoEnumerator(const String& what) const;

  std::vector<Enumerator> enumerators_;
  std::unordered_map<String, T> valueByName_;
  std::unordered_map<T, std::size_t> indexByValue_;
};

extern template class EnumType<unsigned int>;

}  // namespace Vel
