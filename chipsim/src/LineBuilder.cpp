#include "LineBuilder.h"

#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace chipsim {

LineBuilder::LineBuilder() noexcept : text_{}, length_(0) {}

void LineBuilder::append(const char* format, ...) noexcept {
  if (length_ + 1 >= sizeof text_) {
    return;
  }
  va_list arguments;
  va_start(arguments, format);
  int written = std::vsnprintf(text_ + length_, sizeof text_ - length_, format, arguments);
  va_end(arguments);
  if (written > 0) {
    length_ += static_cast<std::size_t>(written);
    if (length_ >= sizeof text_) {
      length_ = sizeof text_ - 1;
    }
  }
}

void LineBuilder::appendText(const char* text) noexcept {
  const std::size_t room = sizeof text_ - 1 - length_;
  const std::size_t size = std::min(std::strlen(text), room);
  std::memcpy(text_ + length_, text, size);
  length_ += size;
  text_[length_] = '\0';
}

namespace {

template <class Number>
void appendNumber(LineBuilder& line, Number value) noexcept {
  char digits[16];
  *std::to_chars(digits, digits + sizeof digits - 1, value).ptr = '\0';
  line.appendText(digits);
}

}  // namespace

void LineBuilder::appendUnsigned(std::uint32_t value) noexcept {
  appendNumber(*this, value);
}

void LineBuilder::appendSigned(std::int32_t value) noexcept {
  appendNumber(*this, value);
}

}  // namespace chipsim
