#pragma once

#include <string>

namespace chipsim_test {

// A shared-memory segment name of its own for one test, removed at the end.
class NamedChip {
 public:
  explicit NamedChip(const std::string& what);
  ~NamedChip();
  NamedChip(const NamedChip&) = delete;
  NamedChip& operator=(const NamedChip&) = delete;

  const std::string& name() const { return name_; }
  const char* c_str() const { return name_.c_str(); }

 private:
  std::string name_;
};

}  // namespace chipsim_test
