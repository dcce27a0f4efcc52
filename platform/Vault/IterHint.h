#pragma once

#include <cstdint>

namespace Vault {

// Where a walk of a table stands: the slot and key of the record last
// returned. first() sets it, next() continues after it.
class IterHint {
 public:
  bool valid() const noexcept { return valid_; }
  std::uint32_t slot() const noexcept { return slot_; }
  std::uint64_t key() const noexcept { return key_; }

  void positionIs(std::uint32_t slot, std::uint64_t key) noexcept {
    slot_ = slot;
    key_ = key;
    valid_ = true;
  }
  void reset() noexcept { *this = IterHint(); }

 private:
  std::uint32_t slot_ = 0;
  std::uint64_t key_ = 0;
  bool valid_ = false;
};

}  // namespace Vault
