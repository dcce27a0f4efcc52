#pragma once

#include "Vel/String.h"

namespace Vel {

// The name of an entity, as the configuration gives it.
class Name : public String {
 public:
  using String::String;
  Name() = default;
  Name(const String& s) : String(s) {}
  Name(String&& s) noexcept : String(std::move(s)) {}
};

}  // namespace Vel

template <>
struct std::hash<Vel::Name> : std::hash<std::string> {};
