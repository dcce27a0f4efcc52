#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/ChipsimLibrary.h"
#include "support/PdFunctionNames.h"

namespace chipsim_test {

using MatchSpec = p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t;
using ActionSpec = p4_pd_kestro_switch_setLagMemberSelector_action_spec_t;

// Every test starts on a new private chip of a small make-up (4 entries, so
// that the default entry's handle is 5; 4 members; 2 groups of at most 3
// members; 4 pipes; 64 log lines) and ends by checking that the chip is
// coherent.
class ChipFixture : public ::testing::Test {
 protected:
  static constexpr p4_pd_device_target_t kAllPipes{0, P4_PD_ALL_PIPES};
  static constexpr uint32_t kDefaultEntry = 5;

  static chipsim_config smallConfig();

  void SetUp() override;
  void TearDown() override;

  // The chip's check: empty when the chip is coherent.
  static std::string fault();

  // Objects made with success expected.
  uint32_t addMember(uint16_t selector);
  uint32_t createGroup(uint32_t size);
  uint32_t addEntry(uint16_t key, uint32_t member, uint32_t pipe = P4_PD_ALL_PIPES);
  uint32_t addGroupEntry(uint16_t key, uint32_t group, uint32_t pipe = P4_PD_ALL_PIPES);
  void addToGroup(uint32_t group, uint32_t member);
  // What the damage tests damage: member 1 (selector 7) and member 2
  // (selector 8), group 1 of size 3 holding member 1, entry 1 of session 5 on
  // member 1 and entry 2 of session 6 on group 1.
  void addMembersAGroupAndEntries();

  // Calls of every PD function together, since the chip was made or reset.
  static int64_t totalCalls();

  static std::vector<std::string> logLines();
  static std::string lastLine();

  const ChipsimLibrary& pd = chipsim();
};

}  // namespace chipsim_test
