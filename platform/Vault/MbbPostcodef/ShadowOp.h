#pragma once

#include <cstdint>

#include "Vault/MbbPostcodef/OpId.h"

namespace Vault::MbbPostcodef {

// The operations that write shadow records; a record's OpId names the one that
// wrote it. A record in a table slot that is still an intent is an operation
// that was under way: the create ops are written before the chip call that
// makes the object, the delete ops before the call that removes it. A
// finished record always carries its create op.
enum class ShadowOp : std::uint32_t {
  none = 0,
  entryAdd = 1,           // a match entry, pointing at a member or a selector group
  defaultEntrySet = 2,    // the table's default entry
  entryDelete = 3,        // the delete of an entryAdd record's entry
  defaultEntryReset = 4,  // the reset of the default entry
  memberAdd = 5,          // an action-profile member
  memberDelete = 6,
  groupCreate = 7,  // a selector group
  groupDelete = 8,
};

constexpr OpId opIdOf(ShadowOp op) noexcept {
  return OpId(static_cast<std::uint32_t>(op));
}

// The op an OpId names; none for an id that names no op.
constexpr ShadowOp shadowOpOf(OpId id) noexcept {
  return id.value() <= static_cast<std::uint32_t>(ShadowOp::groupDelete)
             ? static_cast<ShadowOp>(id.value())
             : ShadowOp::none;
}

// True for the ops that create an object: the ops of finished records.
constexpr bool isCreate(ShadowOp op) noexcept {
  return op == ShadowOp::entryAdd || op == ShadowOp::defaultEntrySet || op == ShadowOp::memberAdd ||
         op == ShadowOp::groupCreate;
}

// The op that created the object a delete op removes (none for other ops).
constexpr ShadowOp createOpOf(ShadowOp op) noexcept {
  switch (op) {
    case ShadowOp::entryDelete:
      return ShadowOp::entryAdd;
    case ShadowOp::defaultEntryReset:
      return ShadowOp::defaultEntrySet;
    case ShadowOp::memberDelete:
      return ShadowOp::memberAdd;
    case ShadowOp::groupDelete:
      return ShadowOp::groupCreate;
    default:
      return ShadowOp::none;
  }
}

}  // namespace Vault::MbbPostcodef
