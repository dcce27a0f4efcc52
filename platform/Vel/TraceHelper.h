#pragma once

#include <optional>
#include <ostream>
#include <sstream>

#include "Vel/String.h"
#include "Vel/TraceHandle.h"

namespace Vel {

// Collects the message of one trace and hands it to the trace sink. Code traces
// through createIfEnabled, so that nothing is built, and no message expression
// evaluated, when the level is not enabled:
//
//   if (auto t = Vel::TraceHelper::createIfEnabled(handle, 8)) {
//     *t << "handle=" << handle;
//     t->trace(file, line, "entryByHandle");
//   }
class TraceHelper {
 public:
  // A helper when `level` is enabled for the handle's state, else nothing. The
  // check is inline: one relaxed load, one compare, one branch.
  static std::optional<TraceHelper> createIfEnabled(const TraceHandle& handle, unsigned level) {
    if (!handle.enabled(level)) [[likely]] {
      return std::nullopt;
    }
    return TraceHelper(handle, level);
  }

  std::ostream& stream() noexcept { return message_; }
  template <class T>
  TraceHelper& operator<<(const T& value) {
    message_ << value;
    return *this;
  }

  // Writes the message collected so far as one record with this source position.
  void trace(const char* file, unsigned line, const char* function) const;

 private:
  TraceHelper(const TraceHandle& handle, unsigned level);

  const String* handleName_;
  unsigned level_;
  std::ostringstream message_;
};

}  // namespace Vel
