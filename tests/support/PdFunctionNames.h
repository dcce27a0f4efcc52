#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "Pd/KestroSwitchPdFunctions.h"

namespace chipsim_test {

// The PD functions of the table and its action profile, by short name.
enum class PdFunctionIndex : std::size_t {
#define PD_FUNCTION_INDEX(name, shortName) shortName,
  KESTRO_SWITCH_PD_TABLE_FUNCTIONS(PD_FUNCTION_INDEX)
#undef PD_FUNCTION_INDEX
};

// Every PD function of the table and its action profile, by name, in the
// order of the PD header.
inline const std::vector<std::string> kPdFunctions = {
#define PD_FUNCTION_NAME(name, shortName) #name,
    KESTRO_SWITCH_PD_TABLE_FUNCTIONS(PD_FUNCTION_NAME)
#undef PD_FUNCTION_NAME
};

// The name of one of them, as tests spell it.
inline const std::string& kAddEntry =
    kPdFunctions[static_cast<std::size_t>(PdFunctionIndex::addEntry)];
inline const std::string& kAddEntryWithSelector =
    kPdFunctions[static_cast<std::size_t>(PdFunctionIndex::addEntryWithSelector)];
inline const std::string& kModifyEntry =
    kPdFunctions[static_cast<std::size_t>(PdFunctionIndex::modifyEntry)];
inline const std::string& kModifyEntryWithSelector =
    kPdFunctions[static_cast<std::size_t>(PdFunctionIndex::modifyEntryWithSelector)];
inline const std::string& kSetDefaultEntry =
    kPdFunctions[static_cast<std::size_t>(PdFunctionIndex::setDefaultEntry)];
inline const std::string& kSetDefaultEntryWithSelector =
    kPdFunctions[static_cast<std::size_t>(PdFunctionIndex::setDefaultEntryWithSelector)];
inline const std::string& kTableDelete =
    kPdFunctions[static_cast<std::size_t>(PdFunctionIndex::tableDelete)];
inline const std::string& kTableResetDefaultEntry =
    kPdFunctions[static_cast<std::size_t>(PdFunctionIndex::tableResetDefaultEntry)];
inline const std::string& kSetProperty =
    kPdFunctions[static_cast<std::size_t>(PdFunctionIndex::setProperty)];
inline const std::string& kGetEntry =
    kPdFunctions[static_cast<std::size_t>(PdFunctionIndex::getEntry)];
inline const std::string& kMatchSpecToEntryHdl =
    kPdFunctions[static_cast<std::size_t>(PdFunctionIndex::matchSpecToEntryHdl)];
inline const std::string& kAddMember =
    kPdFunctions[static_cast<std::size_t>(PdFunctionIndex::addMember)];
inline const std::string& kModifyMember =
    kPdFunctions[static_cast<std::size_t>(PdFunctionIndex::modifyMember)];
inline const std::string& kDelMember =
    kPdFunctions[static_cast<std::size_t>(PdFunctionIndex::delMember)];
inline const std::string& kCreateGroup =
    kPdFunctions[static_cast<std::size_t>(PdFunctionIndex::createGroup)];
inline const std::string& kDelGroup =
    kPdFunctions[static_cast<std::size_t>(PdFunctionIndex::delGroup)];
inline const std::string& kAddMemberToGroup =
    kPdFunctions[static_cast<std::size_t>(PdFunctionIndex::addMemberToGroup)];
inline const std::string& kDelMemberFromGroup =
    kPdFunctions[static_cast<std::size_t>(PdFunctionIndex::delMemberFromGroup)];
inline const std::string& kGroupMemberStateSet =
    kPdFunctions[static_cast<std::size_t>(PdFunctionIndex::groupMemberStateSet)];

// A PD function's name without its table's prefix ("add_entry"), as the name
// of a test case that a PD function parameterises.
inline std::string pdShortName(const std::string& function) {
  for (const std::string prefix : {"ActionProfile_", "ingressMirrorLagGroup_"}) {
    if (const std::size_t at = function.find(prefix); at != std::string::npos)
      return function.substr(at + prefix.size());
  }
  return function;
}

}  // namespace chipsim_test
