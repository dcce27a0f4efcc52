#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>

#if __has_include(<sanitizer/asan_interface.h>)
#include <sanitizer/asan_interface.h>
#endif
#ifndef ASAN_POISON_MEMORY_REGION
#define ASAN_POISON_MEMORY_REGION(addr, size) ((void)(addr), (void)(size))
#define ASAN_UNPOISON_MEMORY_REGION(addr, size) ((void)(addr), (void)(size))
#endif

#include "Vel/Exception.h"
#include "Vel/RangeException.h"
#include "Vel/SequenceToValue.h"
#include "Vel/String.h"

// Helpers of the text tests: reading values from whole strings and catching the
// message of a failure.
namespace TextTestSupport {

// Runs `action` and returns the message of the E it raises. The test fails when
// nothing is raised; any other exception leaves the test as a failure too.
template <class E, class Action>
std::string messageOf(Action&& action) {
  try {
    action();
  } catch (const E& e) {
    return e.message();
  }
  ADD_FAILURE() << "nothing was raised";
  return "<nothing raised>";
}

// Reads a T from the start of `text`; *consumed receives how far the reader went.
template <class T>
T parsed(const Vel::String& text, std::size_t* consumed = nullptr) {
  T value{};
  Vel::String::IteratorConst pos = text.begin();
  Vel::sequenceToValue(pos, text.end(), &value);
  if (consumed != nullptr)
    *consumed = static_cast<std::size_t>(pos - text.begin());
  return value;
}

// Reads a T from `text`, expecting a RangeException: checks that neither the
// position nor the value was touched and returns the message.
template <class T>
std::string rangeFailure(const Vel::String& text, const T& initial = T{}) {
  T value = initial;
  Vel::String::IteratorConst pos = text.begin();
  const std::string message =
      messageOf<Vel::RangeException>([&] { Vel::sequenceToValue(pos, text.end(), &value); });
  EXPECT_TRUE(pos == text.begin()) << "position moved on failure, text " << text;
  EXPECT_TRUE(value == initial) << "value changed on failure, text " << text;
  return message;
}

// A text whose bytes after its end are poisoned in sanitizer builds, so that a
// reader that looks at or past the end stops the test with a report.
class GuardedText {
 public:
  explicit GuardedText(std::string_view text) {
    text_.reserve(text.size() + 32);  // keeps the bytes on the heap, never inline
    text_.assign(text);
    ASAN_POISON_MEMORY_REGION(guardBegin(), guardSize());
  }
  ~GuardedText() { ASAN_UNPOISON_MEMORY_REGION(guardBegin(), guardSize()); }
  GuardedText(const GuardedText&) = delete;
  GuardedText& operator=(const GuardedText&) = delete;

  const Vel::String& text() const { return text_; }
  // The first byte after the text, which no reader may touch.
  const char* guardBegin() const { return text_.data() + text_.size(); }

 private:
  std::size_t guardSize() const { return text_.capacity() + 1 - text_.size(); }

  Vel::String text_;
};

}  // namespace TextTestSupport
