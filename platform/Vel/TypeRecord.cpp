#include "Vel/TypeRecord.h"

#include <algorithm>

#include "Vel/EnumOperations.h"
#include "Vel/Format.h"
#include "Vel/GenericArgs.h"
#include "Vel/GenericCall.h"
#include "Vel/GenericIterator.h"
#include "Vel/GenericValue.h"
#include "Vel/OperationNotSupportedException.h"
#include "Vel/RangeException.h"
#include "Vel/ReferenceOperations.h"
#include "Vel/UnhashableTypeException.h"

namespace Vel {

TypeRecord::TypeRecord(String name, Kind kind, const TypeRecord* base)
    : TypeRecord(std::move(name), kind, base, {}, {}) {}

TypeRecord::TypeRecord(String name, Kind kind, const TypeRecord* base,
                       std::initializer_list<AttributeRecord> attributes, Operations operations)
    : name_(std::move(name)),
      kind_(kind),
      base_(base),
      attributes_(attributes),
      operations_(withKindDefaults(kind, operations)) {
  for (AttributeRecord& attribute : attributes_)
    attribute.owner_ = this;
}

// The framework serves references to objects and enumerations itself, wherever
// a type's generated code names no operation of its own.
TypeRecord::Operations TypeRecord::withKindDefaults(Kind kind, Operations operations) {
  auto fill = [](auto& operation, auto standard) {
    if (operation == nullptr)
      operation = standard;
  };
  if (kind == Kind::entity || kind == Kind::object) {
    fill(operations.value, &ReferenceOperations::operation);
    fill(operations.fromRawPtr, &ReferenceOperations::fromRawPtr);
    fill(operations.fromText, &ReferenceOperations::fromText);
    fill(operations.toText, &ReferenceOperations::toText);
    fill(operations.hash, &ReferenceOperations::hash);
  } else if (kind == Kind::enumeration) {
    fill(operations.value, &EnumOperations::operation);
    fill(operations.fromRawPtr, &EnumOperations::fromRawPtr);
    fill(operations.fromText, &EnumOperations::fromText);
    fill(operations.fromArgs, &EnumOperations::fromArgs);
    fill(operations.toText, &EnumOperations::toText);
    fill(operations.hash, &EnumOperations::hash);
  }
  return operations;
}

const AttributeRecord* TypeRecord::attribute(std::string_view name) const noexcept {
  for (const TypeRecord* t = this; t != nullptr; t = t->base_) {
    for (const AttributeRecord& attribute : t->attributes_) {
      if (attribute.name() == name)
        return &attribute;
    }
  }
  return nullptr;
}

const AttributeRecord* TypeRecord::attribute(unsigned number) const noexcept {
  for (const TypeRecord* t = this; t != nullptr; t = t->base_) {
    for (const AttributeRecord& attribute : t->attributes_) {
      if (attribute.number() == number)
        return &attribute;
    }
  }
  return nullptr;
}

std::vector<const AttributeRecord*> TypeRecord::allAttributes() const {
  std::vector<const AttributeRecord*> all;
  if (base_ != nullptr)
    all = base_->allAttributes();
  for (const AttributeRecord& attribute : attributes_) {
    auto inherited = std::find_if(all.begin(), all.end(), [&](const AttributeRecord* a) {
      return a->number() == attribute.number();
    });
    if (inherited != all.end()) {
      *inherited = &attribute;
    } else {
      all.push_back(&attribute);
    }
  }
  return all;
}

GenericReply TypeRecord::attributeOperation(GenericCall& call) const {
  return operations_.attribute != nullptr ? operations_.attribute(call) : GenericReply::notOwned;
}

GenericReply TypeRecord::valueOperation(GenericCall& call) const {
  return operations_.value != nullptr ? operations_.value(call) : GenericReply::notOwned;
}

Ptr<GenericIterator> TypeRecord::iterator(const GenericValue& self,
                                          const AttributeRecord& attribute) const {
  return operations_.iterator != nullptr ? operations_.iterator(self, attribute) : nullptr;
}

Ptr<GenericIterator> TypeRecord::iteratorAtKey(const GenericValue& self,
                                               const AttributeRecord& attribute,
                                               const GenericValue& key) const {
  return operations_.iteratorAtKey != nullptr ? operations_.iteratorAtKey(self, attribute, key)
                                              : nullptr;
}

Ptr<PtrInterface> TypeRecord::notifiee(const GenericValue& self,
                                       const Ptr<GenericNotifiee>& notifiee) const {
  return operations_.notifiee != nullptr ? operations_.notifiee(self, notifiee) : nullptr;
}

GenericValue TypeRecord::valueFromRawPtr(const void* raw) const {
  if (operations_.fromRawPtr == nullptr)
    notSupported("fromRawPtr");
  return operations_.fromRawPtr(*this, raw);
}

GenericValue TypeRecord::valueFromText(const String& text) const {
  if (operations_.fromText == nullptr)
    notSupported("fromText");
  return operations_.fromText(*this, text);
}

GenericValue TypeRecord::valueFromArgs(const GenericArgs& args) const {
  if (operations_.fromArgs == nullptr)
    notSupported("fromArgs");
  checkArgCount(args);
  return operations_.fromArgs(*this, args);
}

String TypeRecord::valueToText(const GenericValue& value) const {
  if (operations_.toText == nullptr)
    notSupported("toText");
  return operations_.toText(value);
}

std::size_t TypeRecord::valueHash(const GenericValue& value) const {
  if (operations_.hash == nullptr)
    unhashable(value);
  return operations_.hash(value);
}

std::size_t TypeRecord::unhashable(const GenericValue& value) {
  const TypeRecord* type = value.type();
  throw UnhashableTypeException(
      format("Unhashable type: '%s'", type != nullptr ? type->name().c_str() : "?"));
}

void TypeRecord::notSupported(const String& operation) const {
  throw OperationNotSupportedException(
      format("Operation %s is not supported on type '%s'", operation.c_str(), name_.c_str()));
}

// A value type is built from exactly its constructor-argument attributes, a
// builtin value or an enumeration from the one value.
void TypeRecord::checkArgCount(const GenericArgs& args) const {
  if (isObjectType())
    return;
  std::size_t expected = 1;
  if (kind_ == Kind::value) {
    const std::vector<const AttributeRecord*> all = allAttributes();
    expected = static_cast<std::size_t>(std::count_if(
        all.begin(), all.end(), [](const AttributeRecord* a) { return a->isConstructorArg(); }));
  }
  if (args.size() != expected) {
    throwRangeException(format("Type '%s' takes %zu constructor argument%s, %zu given",
                               name_.c_str(), expected, expected == 1 ? "" : "s", args.size()));
  }
}

}  // namespace Vel
