#include "Vel/EnumType.h"

#include "Quill/Assert.h"
#include "Vel/RangeException.h"
#include "Vel/SequenceToValue.h"
#include "Vel/TextScan.h"
#include "Vel/ValueToStrep.h"

namespace Vel {

template <class T>
EnumType<T>::EnumType(String name, std::vector<Enumerator> enumerators)
    : TypeRecord(std::move(name), Kind::enumeration), enumerators_(std::move(enumerators)) {
  for (std::size_t i = 0; i < enumerators_.size(); ++i) {
    const bool enumeratorNameIsNew =
        valueByName_.emplace(enumerators_[i].name, enumerators_[i].value).second;
    QUILL_ASSERT(enumeratorNameIsNew);
    indexByValue_.emplace(enumerators_[i].value, i);
  }
}

template <class T>
String EnumType<T>::stringValue(T value) const {
  const String* enumeratorName = nameOf(value);
  return enumeratorName != nullptr ? *enumeratorName : Vel::valueToStrep(value);
}

template <class T>
String EnumType<T>::valueToStrep(T value) const {
  const String* enumeratorName = nameOf(value);
  return enumeratorName != nullptr ? Vel::valueToStrep(*enumeratorName) : Vel::valueToStrep(value);
}

template <class T>
std::ostream& EnumType<T>::print(std::ostream& out, T value) const {
  return out << stringValue(value);
}

template <class T>
T EnumType<T>::instance(T value) const {
  if (nameOf(value) == nullptr)
    throwNoEnumerator("of value " + Vel::valueToStrep(value));
  return value;
}

template <class T>
T EnumType<T>::instance(const String& enumeratorName) const {
  const auto it = valueByName_.find(enumeratorName);
  if (it == valueByName_.end())
    throwNoEnumerator("named " + quotedExcerpt(enumeratorName));
  return it->second;
}

template <class T>
void EnumType<T>::sequenceToValue(String::IteratorConst& pos, const String::IteratorConst& end,
                                  T* out) const {
  String::IteratorConst p = pos;
  if (p != end && *p == '\'') {
    String enumeratorName;
    Vel::sequenceToValue(p, end, &enumeratorName);
    *out = instance(enumeratorName);
  } else if (p != end && *p >= '0' && *p <= '9') {
    T number{};
    Vel::sequenceToValue(p, end, &number);
    *out = instance(number);
  } else {
    throwRangeException("expected an enumerator of enumeration '" + name() + "', found " +
                        describeFound(pos, end));
  }
  pos = p;
}

template <class T>
const String* EnumType<T>::nameOf(T value) const {
  const auto it = indexByValue_.find(value);
  return it != indexByValue_.end() ? &enumerators_[it->second].name : nullptr;
}

template <class T>
void EnumType<T>::throwNoEnumerator(const String& what) const {
  throwRangeException("enumeration '" + name() + "' has no enumerator " + what);
}

template class EnumType<unsigned int>;

}  // namespace Vel
