#include "Vel/GenericCall.h"

#include <cstdint>

#include "Vel/AttributeRecord.h"
#include "Vel/BuiltinType.h"
#include "Vel/Format.h"
#include "Vel/RangeException.h"
#include "Vel/TypeRecord.h"

namespace Vel {

unsigned GenericCall::attributeNumber() const noexcept {
  return attribute_ != nullptr ? attribute_->number() : 0;
}

GenericReply GenericCall::answer(GenericValue value) {
  result_ = std::move(value);
  return GenericReply::answered;
}

GenericReply GenericCall::answerBool(bool value) {
  return answer(GenericValue(BuiltinType<bool>::instance(), value));
}

GenericReply GenericCall::answerCount(std::size_t count) {
  return answer(
      GenericValue(BuiltinType<std::uint32_t>::instance(), static_cast<std::uint32_t>(count)));
}

GenericReply GenericCall::done() {
  return answer(GenericValue());
}

const TypeRecord& GenericCall::answerType() const {
  return attribute_ != nullptr ? attribute_->type() : *self_.type();
}

void GenericCall::nullObject() const {
  const TypeRecord* type = self_.type();
  throwRangeException(format("Reflective call on a null reference of type '%s'",
                             type != nullptr ? type->name().c_str() : "?"));
}

}  // namespace Vel
