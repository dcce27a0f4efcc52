#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The chipsim tool: looks at and drives a chip kept in shared memory, through
// the chip's test control. run() returns the exit status: 0 done, 1 failed,
// 2 bad command line; messages go to stderr, results to stdout.
class Cli {
 public:
  explicit Cli(std::vector<std::string> arguments);

  int run();

 private:
  static constexpr int kFailed = 1;
  static constexpr int kUsage = 2;

  int dispatch(const std::string& command, const std::vector<std::string>& operands);
  int dump();
  int log();
  int fault(const std::vector<std::string>& operands);
  int forward(const std::vector<std::string>& operands);
  int reset();
  int traffic(const std::vector<std::string>& operands);

  int usageError(const std::string& message) const;
  int failure(const std::string& message) const;
  // A number of at most `max`, decimal or 0x-hexadecimal; reports a usage error otherwise.
  std::optional<uint64_t> number(const std::string& what, const std::string& text,
                                 uint64_t max) const;

  std::vector<std::string> arguments_;
  std::string chip_;
};
