#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Chip.h"
#include "SlotPool.h"

namespace chipsim {

// Checks that a chip's state is coherent: what a process killed in the middle
// of a call must never leave behind. The caller holds the chip's lock.
class ChipChecker {
 public:
  explicit ChipChecker(const Chip& chip) noexcept : chip_(chip) {}

  // The first fault found, or nothing.
  std::optional<std::string> check();

 private:
  template <class Record>
  void checkPool(const char* what, const SlotPool<Record>& pool, uint32_t modulus);
  void checkEntries();
  void checkKeyIndex();
  void checkGroups();
  void checkReferences();
  void checkHeader();
  void fail(std::string fault);

  const Chip& chip_;
  std::optional<std::string> fault_;
};

}  // namespace chipsim
