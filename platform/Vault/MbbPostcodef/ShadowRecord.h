#pragma once

#include <concepts>
#include <cstdint>

#include "Vault/MbbPostcodef/EntryKey.h"
#include "Vault/MbbPostcodef/OpId.h"
#include "Vault/VaultRecord.h"

namespace Vault::MbbPostcodef {

// The interface every shadow record of a chip object shares (entries,
// members, groups), on which the platform's recorder and reconciler work
// without knowing the kind: a Vault record with its shadow key (key()), the
// operation that wrote it or is under way (opId(), opIdIs()) and the chip
// SDK's handle of its object (handle(), handleIs()).
template <class R>
concept ShadowRecord = VaultRecord<R> &&
    requires(R record, const R constRecord, const OpId& opId, std::uint32_t handle) {
  { constRecord.key() } -> std::same_as<const EntryKey&>;
  { constRecord.opId() } -> std::same_as<const OpId&>;
  { constRecord.handle() } -> std::same_as<std::uint32_t>;
  record.opIdIs(opId);
  record.handleIs(handle);
};

}  // namespace Vault::MbbPostcodef
