#include "LineBuilder.h"

#include <cstdarg>
#include <cstdio>

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

}  // namespace chipsim
