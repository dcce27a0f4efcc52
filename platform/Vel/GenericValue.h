#pragma once

#include <any>
#include <cstddef>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include "Vel/Ptr.h"
#include "Vel/PtrInterface.h"
#include "Vel/String.h"

namespace Vel {

class TypeRecord;

// A value of any registered type together with the type's record, as the
// reflective interfaces pass values around without knowing their types at
// compile time. It holds numbers, bools, strings, user value types (copied),
// enumerations (as their unsigned number) and counted references to objects.
// Typed access names the C++ type it expects and raises a RangeException when
// the value is of another type.
class GenericValue {
 public:
  // The empty value: no type, the answer of operations that answer nothing.
  GenericValue() = default;

  template <class T>
  GenericValue(const TypeRecord& type, T value) : type_(&type) {
    using V = std::decay_t<T>;
    if constexpr (std::is_same_v<V, std::nullptr_t>) {
      isReference_ = true;
    } else if constexpr (isPtr<V>()) {
      isReference_ = true;
      object_ = Ptr<const PtrInterface>(std::move(value));
    } else if constexpr (std::is_enum_v<V>) {
      static_assert(sizeof(V) <= sizeof(unsigned int), "enumerations are unsigned 32-bit");
      value_ = static_cast<unsigned int>(value);
    } else if constexpr (std::is_same_v<V, const char*> || std::is_same_v<V, char*>) {
      value_ = String(value);
    } else {
      value_ = std::move(value);
    }
  }

  // Null only for the empty value.
  const TypeRecord* type() const noexcept { return type_; }
  bool empty() const noexcept { return type_ == nullptr; }
  bool isReference() const noexcept { return isReference_; }
  // True for the empty value and for a null reference: the value stands for nothing.
  bool isNull() const noexcept { return empty() || (isReference_ && !object_); }

  // A copy of the value as a T. For Ptr<U> the reference is narrowed to U (null
  // stays null); an enumeration is converted from its number.
  template <class T>
  T get() const {
    if constexpr (isPtr<T>()) {
      return reference<typename T::element_type>();
    } else if constexpr (std::is_enum_v<T>) {
      return static_cast<T>(ref<unsigned int>());
    } else {
      return ref<T>();
    }
  }

  // The value held, in place; a write through it changes this value.
  template <class T>
  T& ref() {
    T* held = std::any_cast<T>(&value_);
    if (held == nullptr)
      mismatch(typeid(T));
    return *held;
  }
  template <class T>
  const T& ref() const {
    return const_cast<GenericValue*>(this)->ref<T>();
  }

  // The object referred to, without narrowing; null for a null reference.
  const Ptr<const PtrInterface>& object() const;

 private:
  template <class T>
  static constexpr bool isPtr() {
    if constexpr (requires { typename T::element_type; }) {
      return std::is_same_v<T, Ptr<typename T::element_type>>;
    } else {
      return false;
    }
  }

  template <class U>
  Ptr<U> reference() const {
    using Object = std::remove_const_t<U>;
    if (!isReference_)
      mismatch(typeid(Ptr<U>));
    if (!object_)
      return nullptr;
    const Object* narrowed = dynamic_cast<const Object*>(object_.get());
    if (narrowed == nullptr)
      mismatch(typeid(Ptr<U>));
    return Ptr<U>(const_cast<Object*>(narrowed));
  }

  [[noreturn]] void mismatch(const std::type_info& wanted) const;

  const TypeRecord* type_ = nullptr;
  std::any value_;
  Ptr<const PtrInterface> object_;
  bool isReference_ = false;
};

}  // namespace Vel
