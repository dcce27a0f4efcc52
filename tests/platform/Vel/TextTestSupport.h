#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

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

}  // namespace TextTestSupport
