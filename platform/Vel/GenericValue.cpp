#include "Vel/GenericValue.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>

#include "Vel/Format.h"
#include "Vel/RangeException.h"
#include "Vel/TypeRecord.h"

namespace Vel {

namespace {

// The C++ type as a reader writes it, for messages.
String readableName(const std::type_info& type) {
  int status = 0;
  std::unique_ptr<char, decltype(&std::free)> name(
      abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
  return status == 0 && name ? String(name.get()) : String(type.name());
}

}  // namespace

const Ptr<const PtrInterface>& GenericValue::object() const {
  if (!isReference_)
    mismatch(typeid(Ptr<const PtrInterface>));
  return object_;
}

void GenericValue::mismatch(const std::type_info& wanted) const {
  const String held =
      empty() ? String("An empty value") : "A value of type '" + type_->name() + "'";
  throwRangeException(
      format("%s cannot be read as '%s'", held.c_str(), readableName(wanted).c_str()));
}

}  // namespace Vel
