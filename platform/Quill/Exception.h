#pragma once

#include <stdexcept>
#include <string>

namespace Quill {

// Base of the debug support library's exceptions; msg() is the report.
class Exception : public std::runtime_error {
 public:
  explicit Exception(const std::string& msg) : std::runtime_error(msg) {}
  std::string msg() const { return what(); }
};

}  // namespace Quill
