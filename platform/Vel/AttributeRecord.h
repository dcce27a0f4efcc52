#pragma once

#include <utility>

#include "Vel/GenericValue.h"
#include "Vel/String.h"

namespace Vel {

class TypeRecord;

// The framework's description of one attribute of a type: its name, the type
// that declares it, the type of its values, its number and what it offers.
// Collection attributes also name the type of their keys. An attribute record
// lives in the attribute table of its owning type record.
class AttributeRecord {
 public:
  // Flags, combined with |. An attribute without `collection` is plain; without
  // `readWrite` it is read-only.
  static constexpr unsigned plain = 0;
  static constexpr unsigned collection = 1u << 0;
  static constexpr unsigned readWrite = 1u << 1;
  static constexpr unsigned constructorArg = 1u << 2;
  static constexpr unsigned notifying = 1u << 3;

  AttributeRecord(String name, const TypeRecord& type, unsigned number, unsigned flags = plain,
                  const TypeRecord* keyType = nullptr)
      : name_(std::move(name)), type_(&type), number_(number), flags_(flags), keyType_(keyType) {}

  const String& name() const noexcept { return name_; }
  // The type whose attribute table holds this record.
  const TypeRecord& owner() const noexcept { return *owner_; }
  const TypeRecord& type() const noexcept { return *type_; }
  unsigned number() const noexcept { return number_; }
  unsigned flags() const noexcept { return flags_; }
  // Type of the keys of a collection; null for plain attributes.
  const TypeRecord* keyType() const noexcept { return keyType_; }

  bool isCollection() const noexcept { return (flags_ & collection) != 0; }
  bool isReadWrite() const noexcept { return (flags_ & readWrite) != 0; }
  bool isConstructorArg() const noexcept { return (flags_ & constructorArg) != 0; }
  bool isNotifying() const noexcept { return (flags_ & notifying) != 0; }

  // "Owner::name".
  String qualifiedName() const;

  // Wraps a value of the attribute, or a key of the collection, for the framework.
  template <class T>
  GenericValue value(T v) const {
    return GenericValue(type(), std::move(v));
  }
  template <class T>
  GenericValue key(T k) const {
    return GenericValue(needKeyType(), std::move(k));
  }

  // Raises OperationNotSupportedException naming the operation, this attribute
  // and its owning type.
  [[noreturn]] void notSupported(const String& operation) const;

 private:
  friend class TypeRecord;

  const TypeRecord& needKeyType() const;

  String name_;
  const TypeRecord* owner_ = nullptr;
  const TypeRecord* type_;
  unsigned number_;
  unsigned flags_;
  const TypeRecord* keyType_;
};

}  // namespace Vel
