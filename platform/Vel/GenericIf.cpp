#include "Vel/GenericIf.h"

#include <utility>

#include "Vel/AttributeRecord.h"
#include "Vel/Format.h"
#include "Vel/GenericCall.h"
#include "Vel/RangeException.h"
#include "Vel/TypeNode.h"
#include "Vel/TypeRecord.h"

namespace Vel {

GenericIf::GenericIf(GenericValue self) : self_(std::move(self)) {
  if (self_.empty())
    throwRangeException("Reflective access to an empty value");
  if (self_.isReference() && !self_.isNull())
    self_ = selfOf(self_.object());
}

GenericValue GenericIf::selfOf(const Ptr<const PtrInterface>& object) {
  if (!object)
    throwRangeException("Reflective access to a null object");
  const TypeRecord* type = object->fwkType();
  if (type == nullptr)
    throwRangeException("Reflective access to an object without a type record");
  return GenericValue(*type, object);
}

const AttributeRecord& GenericIf::attributeRecord(std::string_view name) const {
  const AttributeRecord* attribute = type().attribute(name);
  if (attribute == nullptr) {
    throwRangeException(format("Type '%s' has no attribute '%.*s'", type().name().c_str(),
                               static_cast<int>(name.size()), name.data()));
  }
  return *attribute;
}

GenericValue GenericIf::attribute(std::string_view name, unsigned op, const GenericArgs& args) {
  return attribute(attributeRecord(name), op, args);
}

GenericValue GenericIf::attribute(const AttributeRecord& attribute, unsigned op,
                                  const GenericArgs& args) {
  checkOwner(attribute);
  GenericCall call(self_, &attribute, op, args);
  for (const TypeRecord* t = &type(); t != nullptr; t = t->base()) {
    switch (t->attributeOperation(call)) {
      case GenericReply::answered:
        return std::move(call.result());
      case GenericReply::notSupported:
        notSupported(attribute, op);
      case GenericReply::notOwned:
        break;
    }
  }
  notSupported(attribute, op);
}

GenericValue GenericIf::valueOperation(unsigned op, const GenericArgs& args) {
  GenericCall call(self_, nullptr, op, args);
  for (const TypeRecord* t = &type(); t != nullptr; t = t->base()) {
    switch (t->valueOperation(call)) {
      case GenericReply::answered:
        return std::move(call.result());
      case GenericReply::notSupported:
        t->notSupported(format("%u", op));
      case GenericReply::notOwned:
        break;
    }
  }
  type().notSupported(format("%u", op));
}

Ptr<GenericIterator> GenericIf::iterator(std::string_view name) {
  return iterator(attributeRecord(name));
}

Ptr<GenericIterator> GenericIf::iterator(const AttributeRecord& attribute) {
  checkOwner(attribute);
  for (const TypeRecord* t = &type(); t != nullptr; t = t->base()) {
    if (Ptr<GenericIterator> iterator = t->iterator(self_, attribute))
      return iterator;
  }
  attribute.notSupported("iterator");
}

Ptr<GenericIterator> GenericIf::iteratorAtKey(std::string_view name, const GenericValue& key) {
  return iteratorAtKey(attributeRecord(name), key);
}

Ptr<GenericIterator> GenericIf::iteratorAtKey(const AttributeRecord& attribute,
                                              const GenericValue& key) {
  checkOwner(attribute);
  for (const TypeRecord* t = &type(); t != nullptr; t = t->base()) {
    if (Ptr<GenericIterator> iterator = t->iteratorAtKey(self_, attribute, key))
      return iterator;
  }
  attribute.notSupported("iteratorAtKey");
}

Ptr<PtrInterface> GenericIf::notifieeIs(const Ptr<GenericNotifiee>& notifiee) {
  for (const TypeRecord* t = &type(); t != nullptr; t = t->base()) {
    if (Ptr<PtrInterface> adapter = t->notifiee(self_, notifiee))
      return adapter;
  }
  type().notSupported("notifiee");
}

String GenericIf::text() const {
  return type().valueToText(self_);
}

std::size_t GenericIf::hash() const {
  return type().valueHash(self_);
}

const TypeRecord& GenericIf::typeNamed(std::string_view name) {
  const TypeRecord* type = typeNode(name);
  if (type == nullptr) {
    throwRangeException(format("No type named '%.*s'", static_cast<int>(name.size()), name.data()));
  }
  return *type;
}

GenericValue GenericIf::valueFromText(std::string_view typeName, const String& text) {
  return typeNamed(typeName).valueFromText(text);
}

GenericValue GenericIf::valueFromArgs(std::string_view typeName, const GenericArgs& args) {
  return typeNamed(typeName).valueFromArgs(args);
}

GenericValue GenericIf::valueFromRawPtr(std::string_view typeName, const void* raw) {
  return typeNamed(typeName).valueFromRawPtr(raw);
}

// An attribute can only be asked of a value of its owning type or of a type
// derived from it.
void GenericIf::checkOwner(const AttributeRecord& attribute) const {
  if (!type().isA(&attribute.owner())) {
    throwRangeException(format("Attribute '%s' is not an attribute of type '%s'",
                               attribute.qualifiedName().c_str(), type().name().c_str()));
  }
}

void GenericIf::notSupported(const AttributeRecord& attribute, unsigned op) {
  attribute.notSupported(format("%u", op));
}

}  // namespace Vel
