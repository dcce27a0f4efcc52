#pragma once

#include <cstdint>
#include <type_traits>

#include "Vault/MbbPostcodef/EntryKey.h"
#include "Vault/MbbPostcodef/OpId.h"
#include "Vault/MbbPostcodef/ShadowRecord.h"
#include "Vault/RecordType.h"

namespace BfnMbbShared {

// The shadow record of one selector group, keyed by the group's anonymous
// shadow key (MbbVaultKey::VaultKeyManager::allocAnon of its id):
// - opId: the operation that wrote the record (Vault::MbbPostcodef::ShadowOp):
//   groupCreate when finished; an intent carries the operation under way.
// - groupHandle: the chip SDK's handle of the group. In the intent of a
//   create, the handle of the record the create replaces (0: none).
// - maxGroupSize: the most members the group was created for.
// - devPipeId: the pipe of the device target it was created with (0xFFFF: all).
// - replacedHandle: the handle the group's id had before this group was
//   created anew under it (0: none). The older group may still be in the chip,
//   used by entries that were adopted with it.
// A search record is made with a zero key, a zero OpId and all numbers 0.
class SelGrpEntryConfig {
 public:
  using EntryKey = Vault::MbbPostcodef::EntryKey;
  using OpId = Vault::MbbPostcodef::OpId;

  static constexpr Vault::RecordType vaultRecordType = Vault::RecordType::group;

  constexpr SelGrpEntryConfig() noexcept = default;
  constexpr SelGrpEntryConfig(const EntryKey& key, const OpId& opId, std::uint32_t groupHandle,
                              std::uint32_t maxGroupSize, std::uint32_t devPipeId,
                              std::uint32_t replacedHandle) noexcept
      : key_(key),
        opId_(opId),
        groupHandle_(groupHandle),
        maxGroupSize_(maxGroupSize),
        devPipeId_(devPipeId),
        replacedHandle_(replacedHandle) {}

  constexpr const EntryKey& key() const noexcept { return key_; }
  constexpr const OpId& opId() const noexcept { return opId_; }
  constexpr std::uint32_t groupHandle() const noexcept { return groupHandle_; }
  constexpr std::uint32_t maxGroupSize() const noexcept { return maxGroupSize_; }
  constexpr std::uint32_t devPipeId() const noexcept { return devPipeId_; }
  constexpr std::uint32_t replacedHandle() const noexcept { return replacedHandle_; }

  // The chip object's handle, as for every kind of shadow record.
  constexpr std::uint32_t handle() const noexcept { return groupHandle_; }
  constexpr void handleIs(std::uint32_t handle) noexcept { groupHandle_ = handle; }
  constexpr void opIdIs(const OpId& opId) noexcept { opId_ = opId; }

  constexpr std::uint64_t vaultKey() const noexcept { return key_.value(); }

  friend constexpr bool operator==(const SelGrpEntryConfig&,
                                   const SelGrpEntryConfig&) noexcept = default;

 private:
  EntryKey key_;
  OpId opId_;
  std::uint32_t groupHandle_ = 0;
  std::uint32_t maxGroupSize_ = 0;
  std::uint32_t devPipeId_ = 0;
  std::uint32_t replacedHandle_ = 0;
};

static_assert(Vault::MbbPostcodef::ShadowRecord<SelGrpEntryConfig>);
static_assert(sizeof(SelGrpEntryConfig) == 28);

}  // namespace BfnMbbShared
