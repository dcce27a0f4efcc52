#pragma once

#include <cstdint>
#include <cstdlib>

namespace shadow_test {

// The number in environment variable `name`, or `otherwise` when it is unset:
// how long tests such as the kill loops let a user ask for longer runs.
inline std::uint32_t environmentNumber(const char* name, std::uint32_t otherwise) {
  const char* text = std::getenv(name);
  return text != nullptr ? static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10)) : otherwise;
}

}  // namespace shadow_test
