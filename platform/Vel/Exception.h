#pragma once

#include <exception>
#include <ostream>

#include "Vel/String.h"

namespace Vel {

// Base of every exception the framework raises; the message is the whole report.
class Exception : public std::exception {
 public:
  explicit Exception(String message) : message_(std::move(message)) {}
  const String& message() const noexcept { return message_; }
  const char* what() const noexcept override { return message_.c_str(); }

 private:
  String message_;
};

inline std::ostream& operator<<(std::ostream& out, const Exception& e) {
  return out << e.message();
}

}  // namespace Vel
