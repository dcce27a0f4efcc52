#include "Vel/EnumOperations.h"

#include <functional>

#include "Vel/EnumType.h"
#include "Vel/Format.h"
#include "Vel/GenericIf.h"
#include "Vel/RangeException.h"
#include "Vel/TextParse.h"

namespace Vel {

namespace {

// The enumeration service of the type; a type of enumeration kind registered
// without it offers no enumeration operations.
const EnumType<unsigned int>& serviceOf(const TypeRecord& type) {
  const auto* service = dynamic_cast<const EnumType<unsigned int>*>(&type);
  if (service == nullptr) {
    throwRangeException(format("Type '%s' has no enumeration service record", type.name().c_str()));
  }
  return *service;
}

}  // namespace

GenericReply EnumOperations::operation(GenericCall& call) {
  const unsigned int value = call.self().get<unsigned int>();
  switch (call.op()) {
    case GenericIf::opIsDefault:
      return call.answerBool(value == 0);
    case GenericIf::opEqual:
      return call.answerBool(value == call.arg<unsigned int>(0));
  }
  return call.notSupported();
}

GenericValue EnumOperations::fromRawPtr(const TypeRecord& type, const void* raw) {
  return GenericValue(type, serviceOf(type).instance(*static_cast<const unsigned int*>(raw)));
}

GenericValue EnumOperations::fromText(const TypeRecord& type, const String& text) {
  String::IteratorConst pos = text.begin();
  unsigned int value = 0;
  serviceOf(type).sequenceToValue(pos, text.end(), &value);
  strepToValueEnd(pos, text.end());
  return GenericValue(type, value);
}

GenericValue EnumOperations::fromArgs(const TypeRecord& type, const GenericArgs& args) {
  return GenericValue(type, serviceOf(type).instance(args.get<unsigned int>(0)));
}

String EnumOperations::toText(const GenericValue& value) {
  return serviceOf(*value.type()).valueToStrep(value.get<unsigned int>());
}

std::size_t EnumOperations::hash(const GenericValue& value) {
  return std::hash<unsigned int>()(value.get<unsigned int>());
}

}  // namespace Vel
