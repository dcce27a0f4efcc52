#pragma once

#include <cstddef>
#include <cstdint>

#include "LogLine.h"

namespace chipsim {

// Builds one line of text in a fixed buffer, cutting what does not fit.
class LineBuilder {
 public:
  LineBuilder() noexcept;

  // Plain text, decimal numbers and "0x"-prefixed hexadecimal numbers,
  // without a format to interpret: the arguments of every PD call are
  // written with these.
  void appendText(const char* text) noexcept;
  void appendUnsigned(std::uint32_t value) noexcept;
  void appendSigned(std::int32_t value) noexcept;
  void appendHex(std::uint32_t value) noexcept;
  const char* text() const noexcept { return text_; }

 private:
  char text_[LogLine::kSize];
  std::size_t length_;
};

}  // namespace chipsim
