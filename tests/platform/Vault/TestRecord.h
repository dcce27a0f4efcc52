#pragma once

#include <cstdint>

#include "Vault/RecordType.h"

// A small shadow record for exercising the tables: a key and two numbers.
struct TestRecord {
  static constexpr Vault::RecordType vaultRecordType = Vault::RecordType{99};

  std::uint64_t key;
  std::uint32_t first;
  std::uint32_t second;

  std::uint64_t vaultKey() const noexcept { return key; }
  bool operator==(const TestRecord&) const = default;
};
