#include "Vel/BuiltinType.h"

#include <type_traits>

#include "Vel/GenericArgs.h"
#include "Vel/TypeNode.h"
#include "Vel/ValueOperations.h"

namespace Vel {

namespace {

template <class T>
const char* builtinName() {
  if constexpr (std::is_same_v<T, std::uint8_t>)
    return "uint8_t";
  if constexpr (std::is_same_v<T, std::uint16_t>)
    return "uint16_t";
  if constexpr (std::is_same_v<T, std::uint32_t>)
    return "uint32_t";
  if constexpr (std::is_same_v<T, std::uint64_t>)
    return "uint64_t";
  if constexpr (std::is_same_v<T, std::int8_t>)
    return "int8_t";
  if constexpr (std::is_same_v<T, std::int16_t>)
    return "int16_t";
  if constexpr (std::is_same_v<T, std::int32_t>)
    return "int32_t";
  if constexpr (std::is_same_v<T, std::int64_t>)
    return "int64_t";
  if constexpr (std::is_same_v<T, bool>)
    return "bool";
  if constexpr (std::is_same_v<T, String>)
    return "Vel::String";
  if constexpr (std::is_same_v<T, Name>)
    return "Vel::Name";
}

}  // namespace

template <class T>
const BuiltinType<T>& BuiltinType<T>::instance() {
  static const BuiltinType record(builtinName<T>());
  return record;
}

template <class T>
BuiltinType<T>::BuiltinType(const char* name)
    : TypeRecord(name, Kind::builtin, nullptr, {},
                 {.value = &ValueOperations<T>::operation,
                  .fromRawPtr = &ValueOperations<T>::fromRawPtr,
                  .fromText = &ValueOperations<T>::fromText,
                  .fromArgs = &BuiltinType::fromArgs,
                  .toText = &ValueOperations<T>::toText,
                  .hash = &ValueOperations<T>::hash}) {}

// A builtin value is built from one argument of its own type.
template <class T>
GenericValue BuiltinType<T>::fromArgs(const TypeRecord& type, const GenericArgs& args) {
  return GenericValue(type, args.get<T>(0));
}

template class BuiltinType<std::uint8_t>;
template class BuiltinType<std::uint16_t>;
template class BuiltinType<std::uint32_t>;
template class BuiltinType<std::uint64_t>;
template class BuiltinType<std::int8_t>;
template class BuiltinType<std::int16_t>;
template class BuiltinType<std::int32_t>;
template class BuiltinType<std::int64_t>;
template class BuiltinType<bool>;
template class BuiltinType<String>;
template class BuiltinType<Name>;

namespace {

// The framework's own types are known by name as soon as it is loaded.
[[maybe_unused]] const bool builtinTypesRegistered = [] {
  typeNodeIs(BuiltinType<std::uint8_t>::instance());
  typeNodeIs(BuiltinType<std::uint16_t>::instance());
  typeNodeIs(BuiltinType<std::uint32_t>::instance());
  typeNodeIs(BuiltinType<std::uint64_t>::instance());
  typeNodeIs(BuiltinType<std::int8_t>::instance());
  typeNodeIs(BuiltinType<std::int16_t>::instance());
  typeNodeIs(BuiltinType<std::int32_t>::instance());
  typeNodeIs(BuiltinType<std::int64_t>::instance());
  typeNodeIs(BuiltinType<bool>::instance());
  typeNodeIs(BuiltinType<String>::instance());
  typeNodeIs(BuiltinType<Name>::instance());
  return true;
}();

}  // namespace

}  // namespace Vel
