#pragma once

#include <cstdint>

namespace BfnTable {

// The chip SDK's handles of a match entry, an action-profile member and a
// selector group. 0 means no handle: a registry look-up of an absent key gives 0.
using BfnSdkEntryHandle = std::uint32_t;
using BfnSdkMemberHandle = std::uint32_t;
using BfnSdkGroupHandle = std::uint32_t;

}  // namespace BfnTable
