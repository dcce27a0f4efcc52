#pragma once

#include <cstdint>
#include <string>

namespace Vault {

// The corruption a table's users were told about: how often and, last, what.
class CorruptionLog {
 public:
  void reportIs(const std::string& message) {
    ++count_;
    last_ = message;
  }
  std::uint64_t count() const noexcept { return count_; }
  const std::string& last() const noexcept { return last_; }

 private:
  std::uint64_t count_ = 0;
  std::string last_;
};

}  // namespace Vault
