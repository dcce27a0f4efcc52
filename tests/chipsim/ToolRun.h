#pragma once

#include <string>
#include <vector>

namespace chipsim_test {

// What one run of the chipsim tool gave.
struct ToolRun {
  int exitStatus;
  std::string out;
  std::string err;

  // Runs the built chipsim tool with `arguments` and waits for it.
  static ToolRun of(const std::vector<std::string>& arguments);
};

}  // namespace chipsim_test
