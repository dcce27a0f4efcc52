#pragma once

#include <string>
#include <utility>

namespace Vel {

// The framework's text type: a std::string with the framework's iterator names,
// so that parsers can walk text as (pos, end) pairs.
class String : public std::string {
 public:
  using IteratorConst = std::string::const_iterator;

  using std::string::string;
  String() = default;
  String(const std::string& s) : std::string(s) {}
  String(std::string&& s) noexcept : std::string(std::move(s)) {}
};

}  // namespace Vel

template <>
struct std::hash<Vel::String> : std::hash<std::string> {};
