#pragma once

// Helpers of the reflection tests: the whole message of the exception that a
// piece of code raises, and the leak check of the test family.

#include <gtest/gtest.h>

#include <string>

#include "ReflectTestFamily.h"
#include "Vel/Exception.h"

namespace Library {

// The message of the exception of type E that `run` raises; "no exception" when
// it raises none.
template <class E, class Run>
std::string messageOf(Run run) {
  try {
    run();
  } catch (const E& e) {
    return e.message();
  }
  return "no exception";
}

// Checks, when it goes, that no object of the family is left alive. Declared as
// a fixture's first member, it goes after every other member.
struct LeakCheck {
  ~LeakCheck() { EXPECT_EQ(liveObjects(), 0u); }
};

}  // namespace Library
