#pragma once

#include <cstddef>
#include <utility>

#include "Vel/GenericArgs.h"
#include "Vel/GenericIf.h"
#include "Vel/GenericReply.h"
#include "Vel/GenericValue.h"

namespace Vel {

class AttributeRecord;
class TypeRecord;

// One reflective call as a type's generated code sees it: the value or object it
// is made on, the attribute asked for (none when the value itself is asked), the
// operation code and its arguments. The code answers through answer...(), or
// replies that the operation is not supported or that the attribute is not the
// type's own.
class GenericCall {
 public:
  GenericCall(GenericValue& self, const AttributeRecord* attribute, unsigned op,
              const GenericArgs& args) noexcept
      : self_(self), attribute_(attribute), op_(op), args_(args) {}
  GenericCall(const GenericCall&) = delete;
  GenericCall& operator=(const GenericCall&) = delete;

  GenericValue& self() const noexcept { return self_; }
  // Null when the call is asked of the value itself.
  const AttributeRecord* attribute() const noexcept { return attribute_; }
  // The attribute's number; 0 when the call is asked of the value itself.
  unsigned attributeNumber() const noexcept;
  unsigned op() const noexcept { return op_; }
  const GenericArgs& args() const noexcept { return args_; }

  // Argument i as a T: the key, the new value, a mutator's or constructor's argument.
  template <class T>
  T arg(std::size_t i) const {
    return args_.get<T>(i);
  }
  // The object the call is made on; a RangeException when it is null or not a T.
  template <class T>
  T& object() const {
    Ptr<T> object = self_.get<Ptr<T>>();
    if (!object)
      nullObject();
    return *object;  // self_ holds a reference for the length of the call
  }
  // The value the call is made on, in place: a write changes the caller's value.
  template <class T>
  T& value() const {
    return self_.ref<T>();
  }

  // Answers with a value of the attribute's type (of the value's own type when
  // the value itself is asked).
  template <class T>
  GenericReply answer(T value) {
    return answer(GenericValue(answerType(), std::move(value)));
  }
  GenericReply answer(GenericValue value);
  // Answers a read of a read-only attribute; refuses every other operation.
  template <class T>
  GenericReply answerRead(T value) {
    return op_ == GenericIf::opRead ? answer(std::move(value)) : notSupported();
  }
  // Answers a test (contains, is-default, equality) with a bool.
  GenericReply answerBool(bool value);
  // Answers a counter of a collection with an unsigned 32-bit number.
  GenericReply answerCount(std::size_t count);
  // Answers an operation that returns nothing (a write).
  GenericReply done();
  GenericReply notSupported() const noexcept { return GenericReply::notSupported; }
  GenericReply notOwned() const noexcept { return GenericReply::notOwned; }

  // The answer; empty until the call has been answered.
  GenericValue& result() noexcept { return result_; }

 private:
  const TypeRecord& answerType() const;
  [[noreturn]] void nullObject() const;

  GenericValue& self_;
  const AttributeRecord* attribute_;
  unsigned op_;
  const GenericArgs& args_;
  GenericValue result_;
};

}  // namespace Vel
