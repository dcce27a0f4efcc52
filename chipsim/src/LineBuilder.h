#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace chipsim {

// Builds one line of text in a fixed buffer, cutting what does not fit.
class LineBuilder {
 public:
  // The longest line, with its terminating NUL.
  static constexpr std::size_t kSize = 256;

  LineBuilder() noexcept;

  // Plain text, decimal numbers and "0x"-prefixed hexadecimal numbers,
  // without a format to interpret: the lines of the call log are written with
  // these.
  void appendText(std::string_view text) noexcept;
  void appendUnsigned(std::uint32_t value) noexcept;
  void appendSigned(std::int32_t value) noexcept;
  void appendHex(std::uint32_t value) noexcept;
  const char* text() const noexcept { return text_; }

 private:
  char text_[kSize];
  std::size_t length_;
};

}  // namespace chipsim
