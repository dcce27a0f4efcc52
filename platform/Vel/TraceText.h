#pragma once

#include <charconv>
#include <cstddef>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>

namespace Vel {

// The message of one trace while it is written: text and numbers appended in
// place, in a buffer inside the object for the common short message, so that
// tracing allocates nothing; a longer message moves to the heap and is kept
// whole. Numbers are written as an output stream writes them by default.
class TraceText {
 public:
  // Messages up to this many characters stay in the object.
  static constexpr std::size_t inlineCapacity = 256;

  TraceText() noexcept = default;
  TraceText(const TraceText& other) { append(other.view()); }
  TraceText& operator=(const TraceText&) = delete;

  std::string_view view() const noexcept {
    return spilled_ ? std::string_view(heap_) : std::string_view(inline_, size_);
  }

  void append(std::string_view text) {
    if (!spilled_ && text.size() <= inlineCapacity - size_) {
      std::memcpy(inline_ + size_, text.data(), text.size());
      size_ += text.size();
      return;
    }
    spill();
    heap_.append(text);
  }

  void append(char c) { append(std::string_view(&c, 1)); }

  // An integer of any type but bool and the character types, in decimal.
  template <class Integer>
  void appendInteger(Integer value) {
    static_assert(std::is_integral_v<Integer>);
    char digits[std::numeric_limits<Integer>::digits10 + 2];
    const auto written = std::to_chars(digits, digits + sizeof digits, value);
    append(std::string_view(digits, static_cast<std::size_t>(written.ptr - digits)));
  }

 private:
  // Moves the text to the heap, once, for a message that outgrew the buffer.
  void spill() {
    if (spilled_)
      return;
    heap_.assign(inline_, size_);
    spilled_ = true;
  }

  char inline_[inlineCapacity];
  std::size_t size_ = 0;
  bool spilled_ = false;
  std::string heap_;
};

}  // namespace Vel
