#pragma once

#include <stdexcept>
#include <string>

namespace mirrorlag_agent {

// An apply that the chip refused part-way: the message names the change that
// failed and why ("member 5 add: p4_pd_...() failed: Not enough Space"), and
// any undo that failed as well.
class ApplyError : public std::runtime_error {
 public:
  explicit ApplyError(const std::string& message) : std::runtime_error(message) {}
};

}  // namespace mirrorlag_agent
