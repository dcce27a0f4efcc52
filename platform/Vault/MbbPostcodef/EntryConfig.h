#pragma once

#include <cstdint>
#include <type_traits>

#include "Vault/MbbPostcodef/EntryKey.h"
#include "Vault/MbbPostcodef/OpId.h"
#include "Vault/MbbPostcodef/ShadowRecord.h"
#include "Vault/RecordType.h"

namespace Vault::MbbPostcodef {

// The shadow record of one entry of a match table, keyed by the entry's shadow
// key:
// - opId: the operation that wrote the record (ShadowOp): entryAdd for an
//   ordinary entry, defaultEntrySet for the table's default entry; an
//   unfinished record (an intent) carries the operation under way.
// - entryHandle: the chip SDK's handle of the entry. In the intent of an add,
//   the handle of the record the add replaces (0: none).
// - ingMirrorMdMirrorSession: the entry's match key (0 for the default entry),
//   by which an entry whose add was cut short is found in the chip again.
// - devPipeId: the pipe of the device target the entry was added with
//   (0xFFFF: all pipes).
// A search record, into which a walk of the table reads, is made with a zero
// key, a zero OpId and all numbers 0.
class EntryConfig {
 public:
  static constexpr RecordType vaultRecordType = RecordType::entry;

  constexpr EntryConfig() noexcept = default;
  constexpr EntryConfig(const EntryKey& key, const OpId& opId, std::uint32_t entryHandle,
                        std::uint16_t ingMirrorMdMirrorSession, std::uint32_t devPipeId) noexcept
      : key_(key),
        opId_(opId),
        entryHandle_(entryHandle),
        ingMirrorMdMirrorSession_(ingMirrorMdMirrorSession),
        devPipeId_(devPipeId) {}

  constexpr const EntryKey& key() const noexcept { return key_; }
  constexpr const OpId& opId() const noexcept { return opId_; }
  constexpr std::uint32_t entryHandle() const noexcept { return entryHandle_; }
  constexpr std::uint16_t ingMirrorMdMirrorSession() const noexcept {
    return ingMirrorMdMirrorSession_;
  }
  constexpr std::uint32_t devPipeId() const noexcept { return devPipeId_; }

  // The chip object's handle, as for every kind of shadow record.
  constexpr std::uint32_t handle() const noexcept { return entryHandle_; }
  constexpr void handleIs(std::uint32_t handle) noexcept { entryHandle_ = handle; }
  constexpr void opIdIs(const OpId& opId) noexcept { opId_ = opId; }

  // The table key under which Vault keeps the record.
  constexpr std::uint64_t vaultKey() const noexcept { return key_.value(); }

  friend constexpr bool operator==(const EntryConfig&, const EntryConfig&) noexcept = default;

 private:
  EntryKey key_;
  OpId opId_;
  std::uint32_t entryHandle_ = 0;
  std::uint16_t ingMirrorMdMirrorSession_ = 0;
  std::uint16_t reserved_ = 0;  // keeps the record free of padding bytes
  std::uint32_t devPipeId_ = 0;
};

static_assert(ShadowRecord<EntryConfig>);
static_assert(sizeof(EntryConfig) == 24);

}  // namespace Vault::MbbPostcodef
