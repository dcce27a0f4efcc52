#pragma once

#include <cstdint>
#include <type_traits>

#include "Vault/MbbPostcodef/EntryKey.h"
#include "Vault/MbbPostcodef/OpId.h"
#include "Vault/MbbPostcodef/ShadowRecord.h"
#include "Vault/RecordType.h"

namespace BfnMbbShared {

// The shadow record of one action-profile member, keyed by the member's
// anonymous shadow key (MbbVaultKey::VaultKeyManager::allocAnon of its id):
// - opId: the operation that wrote the record (Vault::MbbPostcodef::ShadowOp):
//   memberAdd when finished; an intent carries the operation under way.
// - memberHandle: the chip SDK's handle of the member. In the intent of an
//   add, the handle of the record the add replaces (0: none).
// A search record is made with a zero key, a zero OpId and handle 0.
class AdtEntryConfig {
 public:
  using EntryKey = Vault::MbbPostcodef::EntryKey;
  using OpId = Vault::MbbPostcodef::OpId;

  static constexpr Vault::RecordType vaultRecordType = Vault::RecordType::member;

  constexpr AdtEntryConfig() noexcept = default;
  constexpr AdtEntryConfig(const EntryKey& key, const OpId& opId,
                           std::uint32_t memberHandle) noexcept
      : key_(key), opId_(opId), memberHandle_(memberHandle) {}

  constexpr const EntryKey& key() const noexcept { return key_; }
  constexpr const OpId& opId() const noexcept { return opId_; }
  constexpr std::uint32_t memberHandle() const noexcept { return memberHandle_; }

  // The chip object's handle, as for every kind of shadow record.
  constexpr std::uint32_t handle() const noexcept { return memberHandle_; }
  constexpr void handleIs(std::uint32_t handle) noexcept { memberHandle_ = handle; }
  constexpr void opIdIs(const OpId& opId) noexcept { opId_ = opId; }

  constexpr std::uint64_t vaultKey() const noexcept { return key_.value(); }

  friend constexpr bool operator==(const AdtEntryConfig&, const AdtEntryConfig&) noexcept = default;

 private:
  EntryKey key_;
  OpId opId_;
  std::uint32_t memberHandle_ = 0;
};

static_assert(Vault::MbbPostcodef::ShadowRecord<AdtEntryConfig>);
static_assert(sizeof(AdtEntryConfig) == 16);

}  // namespace BfnMbbShared
