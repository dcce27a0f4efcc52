#pragma once

#include <unistd.h>

#include <string>

#include "MbbVaultKey/VaultKeyManager.h"

namespace shadow_test {

// A base name of shadow tables that no other test (or test process) uses;
// its tables are removed when it is made and when it goes.
class ScratchShadowBase {
 public:
  explicit ScratchShadowBase(const std::string& what)
      : name_("/shadow-test-" + what + "-" + std::to_string(getpid()) + "-" +
              std::to_string(next_++)) {
    MbbVaultKey::VaultKeyManager::unlink(name_);
  }
  ~ScratchShadowBase() { MbbVaultKey::VaultKeyManager::unlink(name_); }
  ScratchShadowBase(const ScratchShadowBase&) = delete;
  ScratchShadowBase& operator=(const ScratchShadowBase&) = delete;

  const std::string& str() const noexcept { return name_; }

 private:
  static inline int next_ = 0;
  std::string name_;
};

}  // namespace shadow_test
