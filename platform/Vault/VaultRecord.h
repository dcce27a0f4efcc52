#pragma once

#include <concepts>
#include <cstdint>
#include <type_traits>

#include "Vault/RecordType.h"

namespace Vault {

// What a shadow table needs of its record type R: bytes that may be copied
// as they are into shared memory and back (R is trivially copyable and made
// empty by its default constructor, the search record of a walk), the id of
// its kind (R::vaultRecordType) and the table key of a record (vaultKey()).
template <class R>
concept VaultRecord = std::is_trivially_copyable_v<R> && std::is_default_constructible_v<R> &&
    requires(const R record) {
  { R::vaultRecordType } -> std::convertible_to<RecordType>;
  { record.vaultKey() } -> std::same_as<std::uint64_t>;
};

// The id that a table of records R writes in its header.
template <VaultRecord R>
constexpr std::uint32_t recordTypeOf() noexcept {
  return static_cast<std::uint32_t>(R::vaultRecordType);
}

}  // namespace Vault
