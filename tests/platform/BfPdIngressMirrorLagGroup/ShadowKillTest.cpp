#include <signal.h>

#include <tuple>

#include "BfPdIngressMirrorLagGroup/ShadowReconciler.h"
#include "ShadowChipFixture.h"
#include "Vel/Allocate.h"

namespace shadow_test {
namespace {

using BfPdIngressMirrorLagGroup::ShadowCallStep;
using BfPdIngressMirrorLagGroup::ShadowReconciler;
using BfPdIngressMirrorLagGroup::ShadowReconciliation;
using chipsim_test::chipsim;

// The recorded PD calls, each made by a process that is killed in its midst.
enum class Call {
  addEntry,
  addGroupEntry,
  setDefaultEntry,
  setDefaultEntryAgain,
  addMember,
  createGroup,
  deleteEntry,
  resetDefaultEntry,
  deleteMember,
  deleteGroup,
};

// Where the process dies: with the intent written, in the middle of the
// chip's change (which the chip undoes), or with the chip's answer in hand.
enum class Death { afterIntent, inTheChip, afterTheChip };

const char* nameOf(Call call) {
  switch (call) {
    case Call::addEntry:
      return "AddEntry";
    case Call::addGroupEntry:
      return "AddGroupEntry";
    case Call::setDefaultEntry:
      return "SetDefaultEntry";
    case Call::setDefaultEntryAgain:
      return "SetDefaultEntryAgain";
    case Call::addMember:
      return "AddMember";
    case Call::createGroup:
      return "CreateGroup";
    case Call::deleteEntry:
      return "DeleteEntry";
    case Call::resetDefaultEntry:
      return "ResetDefaultEntry";
    case Call::deleteMember:
      return "DeleteMember";
    case Call::deleteGroup:
      return "DeleteGroup";
  }
  return "?";
}

const char* nameOf(Death death) {
  switch (death) {
    case Death::afterIntent:
      return "AfterIntent";
    case Death::inTheChip:
      return "InTheChip";
    case Death::afterTheChip:
      return "AfterTheChip";
  }
  return "?";
}

// How many chip objects and records the call leaves once reconciled.
struct Change {
  int objects;
  int records;
};

Change expectedChange(Call call, Death death) {
  const bool landed = death == Death::afterTheChip;
  switch (call) {
    case Call::addEntry:
    case Call::addGroupEntry:
      return landed ? Change{1, 1} : Change{0, 0};
    case Call::setDefaultEntry:  // a first set is rolled back
    case Call::setDefaultEntryAgain:
      return {0, 0};
    case Call::addMember:
    case Call::createGroup:  // made but without a record: the one object a death may leave
      return landed ? Change{1, 0} : Change{0, 0};
    case Call::deleteEntry:
    case Call::resetDefaultEntry:
      return landed ? Change{-1, -1} : Change{0, 0};
    case Call::deleteMember:
    case Call::deleteGroup:  // an unfinished delete is finished
      return {-1, -1};
  }
  return {0, 0};
}

ShadowCallStep gDeathStep;

void dieAt(ShadowCallStep step) {
  if (step == gDeathStep) {
    raise(SIGKILL);
  }
}

class ShadowKillTest : public ShadowChipFixture,
                       public testing::WithParamInterface<std::tuple<Call, Death>> {
 protected:
  void SetUp() override {
    ShadowChipFixture::SetUp();
    useNamedChip();
    reattachManager();
    member = addMember(1, 10);
    unusedMember = addMember(2, 20);
    group = createGroup(1, 4);
    unusedGroup = createGroup(2, 4);
    entry = addEntry(newMatch(), 5, member);
    if (call() == Call::setDefaultEntryAgain || call() == Call::resetDefaultEntry) {
      setDefaultEntry(newMatch(), member);
    }
  }

  Call call() const { return std::get<0>(GetParam()); }
  Death death() const { return std::get<1>(GetParam()); }

  // The call, as a freshly started process makes it through its own manager
  // and interface object.
  pipe_status make(VaultKeyManager& keys, PdIntf& intf) const {
    PdMatchSpec match{6};
    PdActionSpec action{30};
    std::uint32_t handle = 0;
    switch (call()) {
      case Call::addEntry:
        keys.alloc(newMatch(), false);
        return intf.p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry(kSession, kAllPipes, &match,
                                                                        member, &handle);
      case Call::addGroupEntry:
        keys.alloc(newMatch(), false);
        return intf.p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_with_selector(
            kSession, kAllPipes, &match, group, &handle);
      case Call::setDefaultEntry:
      case Call::setDefaultEntryAgain:
        keys.alloc(newMatch(), false);
        return intf.p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry_with_selector(
            kSession, kAllPipes, group, &handle);
      case Call::addMember:
        keys.allocAnon(3);
        return intf
            .p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector(
                kSession, kAllPipes, &action, &handle);
      case Call::createGroup:
        keys.allocAnon(3);
        return intf.p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group(kSession, kAllPipes,
                                                                                4, &handle);
      case Call::deleteEntry:
        return intf.p4_pd_kestro_switch_ingressMirrorLagGroup_table_delete(kSession, 0, entry);
      case Call::resetDefaultEntry:
        return intf.p4_pd_kestro_switch_ingressMirrorLagGroup_table_reset_default_entry(kSession,
                                                                                        kAllPipes);
      case Call::deleteMember:
        return intf.p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member(kSession, 0,
                                                                              unusedMember);
      case Call::deleteGroup:
        return intf.p4_pd_kestro_switch_mirrorLagPortActionProfile_del_group(kSession, 0,
                                                                             unusedGroup);
    }
    return -1;
  }

  // Makes the call in a child process that dies at the test's point.
  int makeAndDie() {
    return inChild([this] {
      auto keys = attachManager();
      auto intf = pdFor(keys);
      if (death() == Death::inTheChip) {
        chipsim().killAfterChangesForTest(1);
      } else {
        gDeathStep = death() == Death::afterIntent ? ShadowCallStep::intentWritten
                                                   : ShadowCallStep::chipCalled;
        intf->shadowProbeIs(dieAt);
      }
      make(*keys, *intf);
      return 0;
    });
  }

  std::uint32_t member = 0;
  std::uint32_t unusedMember = 0;
  std::uint32_t group = 0;
  std::uint32_t unusedGroup = 0;
  std::uint32_t entry = 0;
};

TEST_P(ShadowKillTest, ReconciliationLeavesRecordsThatMatchTheChip) {
  const std::size_t objects = chipObjects();
  const std::size_t records = recordCount(*manager);
  ASSERT_EQ(expectRecordsMatchChip(*manager), 0u);

  releaseManager();
  ASSERT_EQ(makeAndDie(), -SIGKILL);

  reattachManager();
  const ShadowReconciliation done = ShadowReconciler(*manager, *pd, 0).reconcile();
  EXPECT_EQ(done.total(), 1u);
  EXPECT_EQ(done.unsettled, 0u);
  const Change change = expectedChange(call(), death());
  EXPECT_EQ(static_cast<long>(chipObjects()) - static_cast<long>(objects), change.objects);
  EXPECT_EQ(static_cast<long>(recordCount(*manager)) - static_cast<long>(records), change.records);
  EXPECT_EQ(expectRecordsMatchChip(*manager),
            static_cast<std::size_t>(change.objects - change.records));
}

INSTANTIATE_TEST_SUITE_P(
    EveryCallAndPoint, ShadowKillTest,
    testing::Combine(testing::Values(Call::addEntry, Call::addGroupEntry, Call::setDefaultEntry,
                                     Call::setDefaultEntryAgain, Call::addMember, Call::createGroup,
                                     Call::deleteEntry, Call::resetDefaultEntry, Call::deleteMember,
                                     Call::deleteGroup),
                     testing::Values(Death::afterIntent, Death::inTheChip, Death::afterTheChip)),
    [](const testing::TestParamInfo<std::tuple<Call, Death>>& info) {
      return std::string(nameOf(std::get<0>(info.param))) + nameOf(std::get<1>(info.param));
    });

}  // namespace
}  // namespace shadow_test
