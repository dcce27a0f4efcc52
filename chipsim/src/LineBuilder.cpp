#include "LineBuilder.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace chipsim {

LineBuilder::LineBuilder() noexcept : length_(0) {
  text_[0] = '\0';
}

void LineBuilder::appendText(std::string_view text) noexcept {
  const std::size_t size = std::min(text.size(), sizeof text_ - 1 - length_);
  std::memcpy(text_ + length_, text.data(), size);
  length_ += size;
  text_[length_] = '\0';
}

namespace {

template <class Number>
void appendNumber(LineBuilder& line, Number value, int base = 10) noexcept {
  char digits[16];
  const char* end = std::to_chars(digits, digits + sizeof digits, value, base).ptr;
  line.appendText(std::string_view(digits, static_cast<std::size_t>(end - digits)));
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
