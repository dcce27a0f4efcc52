#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <string>

// A table name no other test (or test process) uses; unlinked when it goes.
class ScratchName {
 public:
  ScratchName() : name_("/vault_test_" + std::to_string(getpid()) + "_" + std::to_string(next_++)) {
    shm_unlink(name_.c_str());
  }
  ~ScratchName() { shm_unlink(name_.c_str()); }
  ScratchName(const ScratchName&) = delete;
  ScratchName& operator=(const ScratchName&) = delete;

  const std::string& str() const noexcept { return name_; }

 private:
  static inline int next_ = 0;
  std::string name_;
};
