#pragma once

#include "Vel/String.h"

namespace Vel {

// The framework's description of a type that it knows by name: its registered
// (fully qualified) name, what kind of type it is, and its base type's record.
// Reflection extends it with attribute tables and reflective operations.
class TypeRecord {
 public:
  enum class Kind { entity, object, value, enumeration, builtin };

  TypeRecord(String name, Kind kind, const TypeRecord* base = nullptr)
      : name_(std::move(name)), kind_(kind), base_(base) {}
  virtual ~TypeRecord() = default;
  TypeRecord(const TypeRecord&) = delete;
  TypeRecord& operator=(const TypeRecord&) = delete;

  const String& name() const noexcept { return name_; }
  Kind kind() const noexcept { return kind_; }
  const TypeRecord* base() const noexcept { return base_; }

  // True when this type is `other` or derives from it.
  bool isA(const TypeRecord* other) const noexcept {
    for (const TypeRecord* t = this; t != nullptr; t = t->base_) {
      if (t == other) return true;
    }
    return false;
  }

 private:
  String name_;
  Kind kind_;
  const TypeRecord* base_;
};

}  // namespace Vel
