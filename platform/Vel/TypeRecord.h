#pragma once

#include <cstddef>
#include <initializer_list>
#include <string_view>
#include <vector>

#include "Vel/AttributeRecord.h"
#include "Vel/GenericReply.h"
#include "Vel/Ptr.h"
#include "Vel/String.h"

namespace Vel {

class GenericArgs;
class GenericCall;
class GenericIterator;
class GenericNotifiee;
class GenericValue;

// The framework's description of a type that it knows by name: its registered
// (fully qualified) name, what kind of type it is, its base type's record, its
// attribute table and its reflective operations. Records are constant data,
// defined once per type and registered by name when their library loads (see
// typeNodeIs); GenericIf reaches every operation through them.
//
// A type's record is written like this (attribute numbers as the type has them):
//
//   GenericReply shelfAttribute(GenericCall& call) {
//     Shelf& shelf = call.object<Shelf>();
//     switch (call.attributeNumber()) {
//       case 258:  // label
//         switch (call.op()) {
//           case GenericIf::opRead: return call.answer(shelf.label());
//           case GenericIf::opWrite: shelf.labelIs(call.arg<String>(0)); return call.done();
//         }
//         return call.notSupported();
//     }
//     return call.notOwned();
//   }
//
//   const TypeRecord shelfType(
//       "Library::Shelf", TypeRecord::Kind::entity, &entityType(),
//       {{"label", BuiltinType<String>::instance(), 258, AttributeRecord::readWrite}},
//       {.attribute = &shelfAttribute});
//
// and registered with typeNodeIs(shelfType) when the library loads. The base
// record of entity types, entityType(), is in Vel/EntityType.h; an entity type
// with notifiees names its GenericNotifieeAdapter's factory as `.notifiee`.
class TypeRecord {
 public:
  enum class Kind { entity, object, value, enumeration, builtin };

  // The reflective functions of a type, as its generated code supplies them;
  // null where the type does not offer the operation. List them in this order.
  // Records of object types and of enumerations get the framework's own
  // operations (see ReferenceOperations, EnumOperations) wherever they name none.
  struct Operations {
    // Serves the type's own attributes; replies notOwned for an attribute number
    // that the type does not own, so that the base type is asked.
    GenericReply (*attribute)(GenericCall& call) = nullptr;
    // Serves the operations asked of a value itself (a call without attribute).
    GenericReply (*value)(GenericCall& call) = nullptr;
    // Walks a collection attribute from its first element, or from a key; null
    // for an attribute that the type does not own.
    Ptr<GenericIterator> (*iterator)(const GenericValue& self,
                                     const AttributeRecord& attribute) = nullptr;
    Ptr<GenericIterator> (*iteratorAtKey)(const GenericValue& self,
                                          const AttributeRecord& attribute,
                                          const GenericValue& key) = nullptr;
    // Makes, for an entity, an adapter that implements the entity's notifiee
    // interface and forwards its callbacks to a generic notifiee.
    Ptr<PtrInterface> (*notifiee)(const GenericValue& self,
                                  const Ptr<GenericNotifiee>& notifiee) = nullptr;
    // Value construction: from a pointer to a value of the type, from its whole
    // text form, from its constructor arguments in attribute order.
    GenericValue (*fromRawPtr)(const TypeRecord& type, const void* raw) = nullptr;
    GenericValue (*fromText)(const TypeRecord& type, const String& text) = nullptr;
    GenericValue (*fromArgs)(const TypeRecord& type, const GenericArgs& args) = nullptr;
    // Text form and hash of a value.
    String (*toText)(const GenericValue& value) = nullptr;
    std::size_t (*hash)(const GenericValue& value) = nullptr;
  };

  TypeRecord(String name, Kind kind, const TypeRecord* base = nullptr);
  TypeRecord(String name, Kind kind, const TypeRecord* base,
             std::initializer_list<AttributeRecord> attributes, Operations operations);
  virtual ~TypeRecord() = default;
  TypeRecord(const TypeRecord&) = delete;
  TypeRecord& operator=(const TypeRecord&) = delete;

  const String& name() const noexcept { return name_; }
  Kind kind() const noexcept { return kind_; }
  const TypeRecord* base() const noexcept { return base_; }
  // Entities and other reference-counted objects, held through Ptr.
  bool isObjectType() const noexcept { return kind_ == Kind::entity || kind_ == Kind::object; }
  const Operations& operations() const noexcept { return operations_; }

  // True when this type is `other` or derives from it.
  bool isA(const TypeRecord* other) const noexcept {
    for (const TypeRecord* t = this; t != nullptr; t = t->base_) {
      if (t == other)
        return true;
    }
    return false;
  }

  // The type's own attribute table, in declaration order (it may list inherited
  // attributes again).
  const std::vector<AttributeRecord>& attributes() const noexcept { return attributes_; }
  // The attribute of that name or number, looked up in this type and then in its
  // base types; null when there is none.
  const AttributeRecord* attribute(std::string_view name) const noexcept;
  const AttributeRecord* attribute(unsigned number) const noexcept;
  // Every attribute of the type: the base types' first, then the type's own; an
  // attribute listed again stands at the place of the inherited one.
  std::vector<const AttributeRecord*> allAttributes() const;

  // The reflective operations of this type alone; GenericIf asks the base types
  // in turn where an operation is passed on. Attribute operations reply
  // notOwned, factories answer null, when the type does not serve the attribute.
  virtual GenericReply attributeOperation(GenericCall& call) const;
  virtual GenericReply valueOperation(GenericCall& call) const;
  virtual Ptr<GenericIterator> iterator(const GenericValue& self,
                                        const AttributeRecord& attribute) const;
  virtual Ptr<GenericIterator> iteratorAtKey(const GenericValue& self,
                                             const AttributeRecord& attribute,
                                             const GenericValue& key) const;
  virtual Ptr<PtrInterface> notifiee(const GenericValue& self,
                                     const Ptr<GenericNotifiee>& notifiee) const;

  // Value construction, text form and hash; an OperationNotSupportedException
  // when the type does not offer them, an UnhashableTypeException for a type
  // that cannot be hashed.
  virtual GenericValue valueFromRawPtr(const void* raw) const;
  virtual GenericValue valueFromText(const String& text) const;
  virtual GenericValue valueFromArgs(const GenericArgs& args) const;
  virtual String valueToText(const GenericValue& value) const;
  virtual std::size_t valueHash(const GenericValue& value) const;

  // The hash operation of types that cannot be hashed: raises
  // UnhashableTypeException for the value's type.
  [[noreturn]] static std::size_t unhashable(const GenericValue& value);
  // Raises OperationNotSupportedException naming the operation and this type.
  [[noreturn]] void notSupported(const String& operation) const;

 private:
  static Operations withKindDefaults(Kind kind, Operations operations);
  void checkArgCount(const GenericArgs& args) const;

  String name_;
  Kind kind_;
  const TypeRecord* base_;
  std::vector<AttributeRecord> attributes_;
  Operations operations_;
};

}  // namespace Vel
