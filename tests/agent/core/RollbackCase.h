#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/PdFunctionNames.h"

namespace mirrorlag_agent {

// The apply that the rollback tests make fail, once for each PD function it
// calls: from kRollbackBefore to kRollbackWanted, which changes every kind of
// object (members changed, added and removed; group members joining, leaving
// and switching; a new group; entries moved, added and removed; the default
// entry moved to a group).
inline const char* const kRollbackBefore = R"({
  "members": [{"id": 1, "selector": 10}, {"id": 2, "selector": 11}],
  "groups": [{"id": 100, "size": 8, "members": [{"id": 1}, {"id": 2}]}],
  "entries": [{"session": 5, "group": 100}, {"session": 6, "member": 2}],
  "default": {"member": 1}})";

inline const char* const kRollbackWanted = R"({
  "members": [{"id": 1, "selector": 16}, {"id": 3, "selector": 12}],
  "groups": [{"id": 100, "size": 8, "members": [{"id": 1}, {"id": 3, "active": false}]},
             {"id": 200, "size": 4, "members": [{"id": 3}]}],
  "entries": [{"session": 5, "group": 200}, {"session": 7, "member": 3}],
  "default": {"group": 100}})";

// The PD functions that apply calls.
inline const std::vector<std::string> kRollbackCalls = {chipsim_test::kAddMember,
                                                        chipsim_test::kModifyMember,
                                                        chipsim_test::kCreateGroup,
                                                        chipsim_test::kAddMemberToGroup,
                                                        chipsim_test::kGroupMemberStateSet,
                                                        chipsim_test::kDelMemberFromGroup,
                                                        chipsim_test::kModifyEntryWithSelector,
                                                        chipsim_test::kAddEntry,
                                                        chipsim_test::kSetDefaultEntryWithSelector,
                                                        chipsim_test::kTableDelete,
                                                        chipsim_test::kDelMember};

// A rollback test case's name: its PD function's, without the table's prefix.
inline std::string rollbackCaseName(const testing::TestParamInfo<std::string>& info) {
  return chipsim_test::pdShortName(info.param);
}

}  // namespace mirrorlag_agent
