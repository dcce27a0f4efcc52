#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace chipsim {

// The PD functions of the chip, for call counts, faults and the call log.
enum class PdFunction : unsigned {
  addEntry,
  addEntryWithSelector,
  modifyEntry,
  modifyEntryWithSelector,
  setDefaultEntry,
  setDefaultEntryWithSelector,
  tableDelete,
  tableResetDefaultEntry,
  setProperty,
  getEntry,
  matchSpecToEntryHdl,
  addMember,
  modifyMember,
  delMember,
  createGroup,
  delGroup,
  addMemberToGroup,
  delMemberFromGroup,
  groupMemberStateSet,
  getFirstMember,
  getNextMember,
  getFirstGroup,
  getNextGroup,
};

inline constexpr std::size_t kPdFunctionCount =
    static_cast<std::size_t>(PdFunction::getNextGroup) + 1;

// The exported C name of a PD function.
std::string_view pdFunctionName(PdFunction function) noexcept;

// The PD function of an exported C name.
std::optional<PdFunction> pdFunctionNamed(std::string_view name) noexcept;

}  // namespace chipsim
