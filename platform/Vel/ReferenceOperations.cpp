#include "Vel/ReferenceOperations.h"

#include <functional>

#include "Vel/Format.h"
#include "Vel/GenericIf.h"
#include "Vel/RangeException.h"
#include "Vel/SequenceToValue.h"
#include "Vel/TextParse.h"
#include "Vel/TypeRecord.h"
#include "Vel/ValueToStrep.h"

namespace Vel {

namespace {

// A reference to `object` as a value of `type`; an object of another type is
// refused.
GenericValue referenceOf(const TypeRecord& type, const PtrInterface* object) {
  if (object != nullptr) {
    const TypeRecord* actual = object->fwkType();
    if (actual == nullptr || !actual->isA(&type)) {
      throwRangeException(format("An object of type '%s' is not a '%s'",
                                 actual != nullptr ? actual->name().c_str() : "Vel::PtrInterface",
                                 type.name().c_str()));
    }
  }
  return GenericValue(type, Ptr<const PtrInterface>(object));
}

bool anyObject(const PtrInterface*) {
  return true;
}

}  // namespace

GenericReply ReferenceOperations::operation(GenericCall& call) {
  switch (call.op()) {
    case GenericIf::opIsDefault:
      return call.answerBool(call.self().isNull());
    case GenericIf::opEqual:
      return call.answerBool(call.self().object() == call.args()[0].object());
  }
  return call.notSupported();
}

GenericValue ReferenceOperations::fromRawPtr(const TypeRecord& type, const void* raw) {
  return referenceOf(type, static_cast<const PtrInterface*>(raw));
}

GenericValue ReferenceOperations::fromText(const TypeRecord& type, const String& text) {
  String::IteratorConst pos = text.begin();
  const Ptr<const PtrInterface> object = sequenceToObject(pos, text.end(), &anyObject);
  strepToValueEnd(pos, text.end());
  return referenceOf(type, object.get());
}

String ReferenceOperations::toText(const GenericValue& value) {
  return valueToStrepOfRawPtr(value.object().get(), value.type());
}

std::size_t ReferenceOperations::hash(const GenericValue& value) {
  return std::hash<const PtrInterface*>()(value.object().get());
}

}  // namespace Vel
