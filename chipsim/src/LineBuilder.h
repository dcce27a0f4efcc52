#pragma once

#include <cstddef>

#include "LogLine.h"

namespace chipsim {

// Builds one line of text in a fixed buffer, cutting what does not fit.
class LineBuilder {
 public:
  LineBuilder() noexcept;

  void append(const char* format, ...) noexcept __attribute__((format(printf, 2, 3)));
  const char* text() const noexcept { return text_; }

 private:
  char text_[LogLine::kSize];
  std::size_t length_;
};

}  // namespace chipsim
