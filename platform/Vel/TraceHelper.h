#pragma once

#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>

#include "Vel/String.h"
#include "Vel/TraceHandle.h"
#include "Vel/TraceText.h"

namespace Vel {

// Collects the message of one trace and hands it to the trace sink. Code traces
// through createIfEnabled, so that nothing is built, and no message expression
// evaluated, when the level is not enabled:
//
//   if (auto t = Vel::TraceHelper::createIfEnabled(handle, 8)) {
//     *t << "handle=" << handle;
//     t->trace(file, line, "entryByHandle");
//   }
//
// Text, characters, bools and integers are written straight into the message,
// without allocating for a short one; any other value (or a use of stream())
// moves the message into an output stream, which takes the rest, so that every
// value reads exactly as an output stream writes it.
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

  TraceHelper(const TraceHelper& other);
  TraceHelper& operator=(const TraceHelper&) = delete;
  ~TraceHelper();

  std::ostream& stream();
  template <class T>
  TraceHelper& operator<<(const T& value) {
    if (stream_ != nullptr)
      *stream_ << value;
    else
      append(value);
    return *this;
  }

  // Writes the message collected so far as one record with this source position.
  void trace(const char* file, unsigned line, const char* function) const;

 private:
  TraceHelper(const TraceHandle& handle, unsigned level);

  // Characters of any character type are written as the characters they are.
  template <class T>
  static constexpr bool isCharacter =
      std::is_same_v<T, char> || std::is_same_v<T, signed char> || std::is_same_v<T, unsigned char>;

  template <class T>
  void append(const T& value) {
    if constexpr (std::is_convertible_v<const T&, std::string_view> &&
                  !std::is_pointer_v<std::decay_t<T>>) {
      text_.append(std::string_view(value));
    } else if constexpr (std::is_same_v<std::decay_t<T>, const char*> ||
                         std::is_same_v<std::decay_t<T>, char*>) {
      appendText(value);
    } else if constexpr (std::is_same_v<T, bool>) {
      text_.append(value ? '1' : '0');
    } else if constexpr (isCharacter<T>) {
      text_.append(static_cast<char>(value));
    } else if constexpr (std::is_integral_v<T>) {
      text_.appendInteger(value);
    } else {
      stream() << value;
    }
  }
  // A null text is left to the stream, which marks itself failed.
  void appendText(const char* text);

  const String* handleName_;
  unsigned level_;
  TraceText text_;
  std::unique_ptr<std::ostringstream> stream_;
};

}  // namespace Vel
