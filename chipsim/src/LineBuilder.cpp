#include "LineBuilder.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace chipsim {

LineBuilder::LineBuilder() noexcept : length_(0) {
  text_[0] = '\0';
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
void appendNumber(LineBuilder& line, Number value, int base = 10) noexcept {
  char digits[16];
  *std::to_chars(digits, digits + sizeof digits - 1, value, base).ptr = '\0';
  line.appendText(digits);
}

}  // namespace

void LineBuilder::appendUnsigned(std::uint32_t value) noexcept {
  appendNumber(*this, value);
}

void LineBuilder::appendSigned(std::int32_t value) noexcept {
  appendNumber(*this, value);
}

void LineBuilder::appendHex(std::uint32_t value) noexcept {
  appendText("0x");
  appendNumber(*this, value, 16);
}

}  // namespace chipsim
