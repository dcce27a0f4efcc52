#pragma once

#include <string>

namespace test_support {

// A regular expression that matches exactly `text` and nothing else.
inline std::string exactly(const std::string& text) {
  std::string pattern = "^";
  for (char c : text) {
    if (std::string("\\^$.|?*+()[]{}").find(c) != std::string::npos)
      pattern += '\\';
    pattern += c;
  }
  return pattern + "$";
}

// What a failed assertion prints before the process stops, as a pattern for
// a death test: "<file>:<line>: <function>: Assertion '<text>' failed."
inline std::string assertionReport(const std::string& file, unsigned line,
                                   const std::string& function, const std::string& text) {
  return exactly(file + ":" + std::to_string(line) + ": " + function + ": Assertion '" + text +
                 "' failed.\n");
}

}  // namespace test_support
