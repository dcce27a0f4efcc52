#pragma once

#include <cstdint>
#include <utility>

#include "Vel/GenericValue.h"
#include "Vel/Name.h"
#include "Vel/String.h"
#include "Vel/TypeRecord.h"

namespace Vel {

// The type records of the framework's builtin types: the unsigned and signed
// 8/16/32/64-bit numbers (registered as "uint8_t" ... "int64_t"), "bool",
// "Vel::String" and "Vel::Name". The framework registers them when it loads.
template <class T>
class BuiltinType final : public TypeRecord {
 public:
  static const BuiltinType& instance();
  // A builtin value wrapped for the framework.
  static GenericValue value(T v) { return GenericValue(instance(), std::move(v)); }

 private:
  explicit BuiltinType(const char* name);

  static GenericValue fromArgs(const TypeRecord& type, const GenericArgs& args);
};

extern template class BuiltinType<std::uint8_t>;
extern template class BuiltinType<std::uint16_t>;
extern template class BuiltinType<std::uint32_t>;
extern template class BuiltinType<std::uint64_t>;
extern template class BuiltinType<std::int8_t>;
extern template class BuiltinType<std::int16_t>;
extern template class BuiltinType<std::int32_t>;
extern template class BuiltinType<std::int64_t>;
extern template class BuiltinType<bool>;
extern template class BuiltinType<String>;
extern template class BuiltinType<Name>;

}  // namespace Vel
