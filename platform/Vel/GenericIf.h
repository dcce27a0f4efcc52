#pragma once

#include <cstddef>
#include <string_view>

#include "Vel/GenericArgs.h"
#include "Vel/GenericIterator.h"
#include "Vel/GenericNotifiee.h"
#include "Vel/GenericValue.h"
#include "Vel/Ptr.h"

namespace Vel {

class AttributeRecord;
class TypeRecord;

// The host's reflective access to one object or value, by attribute name or
// attribute record, through the type records: read and write attributes, look
// up, insert, delete and count the elements of collections, walk them, test and
// compare values, print and hash them, and attach generic notifiees. An
// attribute operation starts at the type of the object (its run-time type) and
// goes on to the base types while a type replies that the attribute is not its
// own.
class GenericIf {
 public:
  // Operation codes. On a plain attribute 0 reads and 1 writes; on a collection
  // 0 looks an element up by key (null when absent), 1 inserts or creates
  // through the type's mutator, 2 deletes by key (answering the removed
  // element), 3 and 4 answer the element count and the bucket count, 5 tests for
  // a key. 9 and 10 are asked of a value itself: is it the default value, does it
  // equal the argument.
  static constexpr unsigned opRead = 0;
  static constexpr unsigned opWrite = 1;
  static constexpr unsigned opDelete = 2;
  static constexpr unsigned opSize = 3;
  static constexpr unsigned opBucketCount = 4;
  static constexpr unsigned opContains = 5;
  static constexpr unsigned opIsDefault = 9;
  static constexpr unsigned opEqual = 10;

  // Access to a value, or to the object a reference refers to (through the
  // record of the object's run-time type).
  explicit GenericIf(GenericValue self);
  // Access to an object through the record of its run-time type.
  template <class T>
  explicit GenericIf(const Ptr<T>& object) : GenericIf(selfOf(Ptr<const PtrInterface>(object))) {}

  // The value accessed; writes to attributes of a value change this copy.
  const GenericValue& self() const noexcept { return self_; }
  const TypeRecord& type() const noexcept { return *self_.type(); }
  // The attribute of that name of the type or of a base type; a RangeException
  // when there is none.
  const AttributeRecord& attributeRecord(std::string_view name) const;

  GenericValue attribute(std::string_view name, unsigned op, const GenericArgs& args = {});
  GenericValue attribute(const AttributeRecord& attribute, unsigned op,
                         const GenericArgs& args = {});
  // An operation asked of the value itself (9, 10).
  GenericValue valueOperation(unsigned op, const GenericArgs& args = {});

  // Iterators over a collection attribute, from its first element or from a key.
  Ptr<GenericIterator> iterator(std::string_view name);
  Ptr<GenericIterator> iterator(const AttributeRecord& attribute);
  Ptr<GenericIterator> iteratorAtKey(std::string_view name, const GenericValue& key);
  Ptr<GenericIterator> iteratorAtKey(const AttributeRecord& attribute, const GenericValue& key);

  // Attaches a generic notifiee to the entity through the notifiee factory of
  // its type (or of the nearest base type that has one); the answer is the
  // adapter that carries the notifications, registered with the entity for as
  // long as the caller holds it. A null notifiee gives an adapter that forwards
  // nothing until one is attached to it (GenericNotifieeAdapter).
  Ptr<PtrInterface> notifieeIs(const Ptr<GenericNotifiee>& notifiee);

  // The text form and the hash of the value.
  String text() const;
  std::size_t hash() const;

  // The registered type of that name; a RangeException when there is none.
  static const TypeRecord& typeNamed(std::string_view name);
  // Values of a registered type, built from their whole text form, from their
  // constructor arguments, or copied from a pointer to a value.
  static GenericValue valueFromText(std::string_view typeName, const String& text);
  static GenericValue valueFromArgs(std::string_view typeName, const GenericArgs& args);
  static GenericValue valueFromRawPtr(std::string_view typeName, const void* raw);

 private:
  static GenericValue selfOf(const Ptr<const PtrInterface>& object);
  void checkOwner(const AttributeRecord& attribute) const;
  [[noreturn]] static void notSupported(const AttributeRecord& attribute, unsigned op);

  GenericValue self_;
};

}  // namespace Vel
