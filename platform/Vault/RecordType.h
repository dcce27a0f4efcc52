#pragma once

#include <cstdint>

namespace Vault {

// The kind of record a shadow table holds, written in its header so that a
// table is never read as a table of another kind: one id per record type,
// given here and nowhere else. A new record type takes the next number; a
// number once given is never given to another type, since tables written by
// an earlier release may still name it.
enum class RecordType : std::uint32_t {
  entry = 1,   // Vault::MbbPostcodef::EntryConfig: a match entry
  member = 2,  // BfnMbbShared::AdtEntryConfig: an action-profile member
  group = 3,   // BfnMbbShared::SelGrpEntryConfig: a selector group and its members
};

}  // namespace Vault
