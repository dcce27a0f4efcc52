#include "BfIngressMirrorLagGroup/table/IngressMirrorLagGroupTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Pd/PipeStatus.h"
#include "TableFixture.h"
#include "Vel/Allocate.h"
#include "Vel/Expect.h"

namespace BfIngressMirrorLagGroup {
namespace {

using chipsim_test::kAddEntry;
using chipsim_test::kAddEntryWithSelector;
using chipsim_test::kGetEntry;
using chipsim_test::kModifyEntry;
using chipsim_test::kModifyEntryWithSelector;
using chipsim_test::kSetDefaultEntry;
using chipsim_test::kSetDefaultEntryWithSelector;
using chipsim_test::kTableDelete;
using chipsim_test::kTableResetDefaultEntry;
using testing::ElementsAre;

const std::string kTarget = targetArgs(7, 3, 2);

// The log line of a successful add of an entry for `session` pointing at
// member `mbr` (or group `grp`), answering `handle`.
std::string addEntryLine(unsigned session, std::uint32_t mbr, std::uint32_t handle) {
  return kAddEntry + "(" + kTarget + ", mirror_session=" + std::to_string(session) +
         ", mbr=" + std::to_string(mbr) + ") = 0 entry=" + std::to_string(handle);
}

std::string addEntryWithSelectorLine(unsigned session, std::uint32_t grp, std::uint32_t handle) {
  return kAddEntryWithSelector + "(" + kTarget + ", mirror_session=" + std::to_string(session) +
         ", grp=" + std::to_string(grp) + ") = 0 entry=" + std::to_string(handle);
}

class IngressMirrorLagGroupTableTest : public TableFixture {
 protected:
  // Adds `entry`, which the chip refuses as full in `pdFunction`: the add
  // throws BfTable::BfTableFull with status 9 and the function's message, and
  // the entry stays empty, with no handle.
  void expectFullOnAdd(const IngressMirrorLagGroupTableEntry& entry,
                       const std::string& pdFunction) {
    ASSERT_EQ(chip.failNext(pdFunction.c_str(), 9, 1), 0);
    try {
      table->entryIs(entry);
      FAIL() << "no exception";
    } catch (const BfTable::BfTableFull& e) {
      EXPECT_EQ(e.status(), 9);
      EXPECT_EQ(e.message(), pdFunction + "() failed: Not enough Space");
    }
    EXPECT_TRUE(!table->entry(entry.match()));
    EXPECT_EQ(registry().entry(entry.match()), 0u);
  }
};

TEST_F(IngressMirrorLagGroupTableTest, IsAnUnnamedEntityWithItsTypeRecord) {
  EXPECT_EQ(table->name(), "");
  ASSERT_NE(table->fwkType(), nullptr);
  EXPECT_EQ(table->fwkType()->name(), "BfIngressMirrorLagGroup::IngressMirrorLagGroupTable");
  EXPECT_EQ(table->fwkType(), &IngressMirrorLagGroupTable::typeRecord());
  EXPECT_EQ(table->fwkType()->kind(), Vel::TypeRecord::Kind::entity);
  EXPECT_EQ(table->helper(), helper);
  EXPECT_EQ(table->vaultKeyManager(), keyManager);
  EXPECT_EQ(table->statusManager(), statusManager);
  EXPECT_EQ(table->defaultMatchSpec(), nullptr);
}

TEST_F(IngressMirrorLagGroupTableTest, DefaultMatchSpecIsMadeOnceAndDelForgetsIt) {
  const auto first = table->defaultMatchSpecIs();
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->ingMirrorMdMirrorSession(), 0u);
  EXPECT_EQ(table->defaultMatchSpecIs(), first);
  EXPECT_EQ(table->defaultMatchSpec(), first);
  EXPECT_EQ(table->defaultMatchSpecDel(), first);
  EXPECT_EQ(table->defaultMatchSpec(), nullptr);
  EXPECT_EQ(table->defaultMatchSpecDel(), nullptr);
  const auto second = table->defaultMatchSpecIs();
  EXPECT_NE(second, first);
}

TEST_F(IngressMirrorLagGroupTableTest, AddOfAMemberEntryCallsAddEntryAndStoresTheHandle) {
  const std::uint32_t mbr = memberIs(11, 500);
  const auto match = matchOf(5);
  startLog();
  table->entryIs(memberEntry(match, 11));
  const std::uint32_t handle = registry().entry(match);
  ASSERT_NE(handle, 0u);
  EXPECT_THAT(logLines(), ElementsAre(addEntryLine(5, mbr, handle)));
  EXPECT_EQ(chip.entries(), 1u);
  EXPECT_EQ(registry().entries().size(), 1u);
  std::uint16_t selector = 0;
  EXPECT_EQ(chip.lookupOnPipe(kPipe, 5, 0, &selector), 0);
  EXPECT_EQ(selector, 500u);
}

// The add-or-modify choice rests on a non-zero registry handle: a match stored
// with handle 0 is programmed anew, and its handle replaced.
TEST_F(IngressMirrorLagGroupTableTest, AMatchRegisteredWithHandleZeroIsAddedForAMember) {
  const std::uint32_t mbr = memberIs(11, 500);
  const auto match = matchOf(5);
  registry().entryIs(match, 0);
  startLog();
  table->entryIs(memberEntry(match, 11));
  const std::uint32_t handle = registry().entry(match);
  ASSERT_NE(handle, 0u);
  EXPECT_THAT(logLines(), ElementsAre(addEntryLine(5, mbr, handle)));
  EXPECT_EQ(registry().entries().size(), 1u);
}

TEST_F(IngressMirrorLagGroupTableTest, AMatchRegisteredWithHandleZeroIsAddedForAGroup) {
  const std::uint32_t grp = groupIs(4);
  const auto match = matchOf(6);
  registry().entryIs(match, 0);
  startLog();
  table->entryIs(groupEntry(match, 4));
  const std::uint32_t handle = registry().entry(match);
  ASSERT_NE(handle, 0u);
  EXPECT_THAT(logLines(), ElementsAre(addEntryWithSelectorLine(6, grp, handle)));
  EXPECT_EQ(registry().entries().size(), 1u);
}

TEST_F(IngressMirrorLagGroupTableTest, AddOfAGroupEntryCallsAddEntryWithSelector) {
  const std::uint32_t grp = groupIs(4);
  const auto match = matchOf(6);
  startLog();
  table->entryIs(groupEntry(match, 4));
  const std::uint32_t handle = registry().entry(match);
  ASSERT_NE(handle, 0u);
  EXPECT_THAT(logLines(), ElementsAre(addEntryWithSelectorLine(6, grp, handle)));
}

TEST_F(IngressMirrorLagGroupTableTest, WritingAMatchTwiceAddsThenModifiesWithTheFirstHandle) {
  memberIs(11, 500);
  const std::uint32_t second = memberIs(12, 600);
  const auto match = matchOf(5);
  table->entryIs(memberEntry(match, 11));
  const std::uint32_t handle = registry().entry(match);
  startLog();
  table->entryIs(memberEntry(match, 12));
  EXPECT_THAT(logLines(),
              ElementsAre(kModifyEntry + "(sess=7, dev=3, entry=" + std::to_string(handle) +
                          ", mbr=" + std::to_string(second) + ") = 0"));
  EXPECT_EQ(registry().entries().size(), 1u);
  EXPECT_EQ(registry().entry(match), handle);
  EXPECT_EQ(chip.calls(kAddEntry.c_str()), 1);
  std::uint16_t selector = 0;
  EXPECT_EQ(chip.lookupOnPipe(kPipe, 5, 0, &selector), 0);
  EXPECT_EQ(selector, 600u);
}

TEST_F(IngressMirrorLagGroupTableTest, SwitchingFromAMemberToAGroupModifiesWithSelector) {
  memberIs(11, 500);
  const std::uint32_t grp = groupIs(4);
  const auto match = matchOf(5);
  table->entryIs(memberEntry(match, 11));
  const std::uint32_t handle = registry().entry(match);
  startLog();
  table->entryIs(groupEntry(match, 4));
  EXPECT_THAT(logLines(), ElementsAre(kModifyEntryWithSelector +
                                      "(sess=7, dev=3, entry=" + std::to_string(handle) +
                                      ", grp=" + std::to_string(grp) + ") = 0"));
  EXPECT_EQ(chip.calls(kTableDelete.c_str()), 0);
  EXPECT_EQ(chip.calls(kAddEntryWithSelector.c_str()), 0);
  EXPECT_EQ(registry().entry(match), handle);
  EXPECT_EQ(registry().entries().size(), 1u);
}

TEST_F(IngressMirrorLagGroupTableTest, SwitchingFromAGroupToAMemberModifiesWithoutSelector) {
  const std::uint32_t mbr = memberIs(11, 500);
  groupIs(4);
  const auto match = matchOf(5);
  table->entryIs(groupEntry(match, 4));
  const std::uint32_t handle = registry().entry(match);
  startLog();
  table->entryIs(memberEntry(match, 11));
  EXPECT_THAT(logLines(),
              ElementsAre(kModifyEntry + "(sess=7, dev=3, entry=" + std::to_string(handle) +
                          ", mbr=" + std::to_string(mbr) + ") = 0"));
}

TEST_F(IngressMirrorLagGroupTableTest, EqualKeysInTwoMatchObjectsAreTwoEntries) {
  memberIs(11, 500);
  const auto first = matchOf(5);
  const auto second = matchOf(5);
  table->entryIs(memberEntry(first, 11));
  startLog();
  // The registry tells entries apart by object, so the second object is added,
  // not modified; the chip refuses the key on the same pipe as a duplicate.
  EXPECT_THROW(table->entryIs(memberEntry(second, 11)), BfTable::BfTableException);
  EXPECT_THAT(logLines(), ElementsAre(kAddEntry + "(" + kTarget + ", mirror_session=5, mbr=" +
                                      std::to_string(registry().member(11)) + ") = 4"));
  EXPECT_EQ(registry().entry(second), 0u);
  EXPECT_NE(registry().entry(first), 0u);
}

TEST_F(IngressMirrorLagGroupTableTest, DefaultMatchSpecAlwaysSetsTheDefaultEntry) {
  const std::uint32_t first = memberIs(11, 500);
  const std::uint32_t second = memberIs(12, 600);
  const std::uint32_t grp = groupIs(4);
  const auto defaultMatch = table->defaultMatchSpecIs();
  startLog();
  table->entryIs(memberEntry(defaultMatch, 11));
  table->entryIs(groupEntry(defaultMatch, 4));
  table->entryIs(memberEntry(defaultMatch, 12));
  const std::string entryOut = ") = 0 entry=" + std::to_string(kDefaultEntryHandle);
  EXPECT_THAT(
      logLines(),
      ElementsAre(
          kSetDefaultEntry + "(" + kTarget + ", mbr=" + std::to_string(first) + entryOut,
          kSetDefaultEntryWithSelector + "(" + kTarget + ", grp=" + std::to_string(grp) + entryOut,
          kSetDefaultEntry + "(" + kTarget + ", mbr=" + std::to_string(second) + entryOut));
  EXPECT_EQ(registry().entry(defaultMatch), kDefaultEntryHandle);
  EXPECT_EQ(registry().entries().size(), 1u);
  EXPECT_EQ(chip.entries(), 0u);
}

TEST_F(IngressMirrorLagGroupTableTest, DefaultEntryOfAGroupIsSetWithSelector) {
  const std::uint32_t grp = groupIs(4);
  const auto defaultMatch = table->defaultMatchSpecIs();
  startLog();
  table->entryIs(groupEntry(defaultMatch, 4));
  EXPECT_THAT(logLines(), ElementsAre(kSetDefaultEntryWithSelector + "(" + kTarget +
                                      ", grp=" + std::to_string(grp) +
                                      ") = 0 entry=" + std::to_string(kDefaultEntryHandle)));
  EXPECT_EQ(registry().entry(defaultMatch), kDefaultEntryHandle);
}

TEST_F(IngressMirrorLagGroupTableTest, DeletingTheDefaultMatchSpecResetsTheDefaultEntry) {
  memberIs(11, 500);
  const auto defaultMatch = table->defaultMatchSpecIs();
  table->entryIs(memberEntry(defaultMatch, 11));
  startLog();
  const IngressMirrorLagGroupTableEntry removed = table->entryDel(defaultMatch);
  EXPECT_TRUE(!removed);
  EXPECT_THAT(logLines(), ElementsAre(kTableResetDefaultEntry + "(" + kTarget + ") = 0"));
  EXPECT_EQ(registry().entry(defaultMatch), 0u);
  EXPECT_TRUE(registry().entries().empty());
  EXPECT_EQ(
      statusManager->calls(),
      (std::vector<BfnTableStatusManager::StatusManagerCall>{{"initStatus", defaultMatch, 0}}));
  EXPECT_TRUE(keyManager->allocCalls().empty());
}

TEST_F(IngressMirrorLagGroupTableTest, DeletingAnEntryCallsTableDeleteAndDropsTheHandle) {
  memberIs(11, 500);
  const auto match = matchOf(5);
  table->entryIs(memberEntry(match, 11));
  const std::uint32_t handle = registry().entry(match);
  startLog();
  const IngressMirrorLagGroupTableEntry removed = table->entryDel(match);
  EXPECT_THAT(logLines(), ElementsAre(kTableDelete +
                                      "(sess=7, dev=3, entry=" + std::to_string(handle) + ") = 0"));
  EXPECT_EQ(registry().entry(match), 0u);
  EXPECT_EQ(chip.entries(), 0u);
  EXPECT_TRUE(registry().entries().empty());
}

TEST_F(IngressMirrorLagGroupTableTest, SuccessfulDeleteReturnsAnEmptyEntryWhateverItWas) {
  memberIs(11, 500);
  groupIs(4);
  const auto byMember = matchOf(5);
  const auto byGroup = matchOf(6);
  table->entryIs(memberEntry(byMember, 11));
  table->entryIs(groupEntry(byGroup, 4));
  for (const auto& match : {byMember, byGroup}) {
    const IngressMirrorLagGroupTableEntry removed = table->entryDel(match);
    EXPECT_TRUE(!removed);
    EXPECT_EQ(removed.match(), nullptr);
    EXPECT_EQ(removed.memberOrGroup().id, 0u);
    EXPECT_FALSE(removed.memberOrGroup().member);
  }
  EXPECT_TRUE(registry().entries().empty());
}

TEST_F(IngressMirrorLagGroupTableTest, EntryReadsAMemberEntryBackFromTheChip) {
  const std::uint32_t mbr = memberIs(11, 500);
  memberIs(12, 600);
  const auto match = matchOf(5);
  table->entryIs(memberEntry(match, 11));
  const std::uint32_t handle = registry().entry(match);
  startLog();
  const IngressMirrorLagGroupTableEntry read = table->entry(match);
  ASSERT_NE(read.match(), nullptr);
  EXPECT_NE(read.match(), match);  // a new match-spec object holding the key read back
  EXPECT_EQ(read.match()->ingMirrorMdMirrorSession(), 5u);
  EXPECT_EQ(read.memberOrGroup(), (IngressMirrorLagGroupMemberOrGroupOrNone{11, true}));
  EXPECT_THAT(logLines(),
              ElementsAre(kGetEntry + "(sess=7, dev=3, entry=" + std::to_string(handle) +
                          ", read_from_hw=false) = 0 mirror_session=5 mbr_or_grp=" +
                          std::to_string(mbr) + " is_group=false"));
  EXPECT_TRUE(statusManager->calls().empty());
}

TEST_F(IngressMirrorLagGroupTableTest, EntryByHandleReadsAGroupEntryBack) {
  groupIs(3);
  const std::uint32_t grp = groupIs(4);
  const auto match = matchOf(9);
  table->entryIs(groupEntry(match, 4));
  const std::uint32_t handle = registry().entry(match);
  startLog();
  const IngressMirrorLagGroupTableEntry read = table->entryByHandle(handle);
  ASSERT_NE(read.match(), nullptr);
  EXPECT_EQ(read.match()->ingMirrorMdMirrorSession(), 9u);
  EXPECT_EQ(read.memberOrGroup(), (IngressMirrorLagGroupMemberOrGroupOrNone{4, false}));
  EXPECT_THAT(logLines(),
              ElementsAre(kGetEntry + "(sess=7, dev=3, entry=" + std::to_string(handle) +
                          ", read_from_hw=false) = 0 mirror_session=9 mbr_or_grp=" +
                          std::to_string(grp) + " is_group=true"));
}

TEST_F(IngressMirrorLagGroupTableTest, EntryReadsTheDefaultEntryWithAZeroKey) {
  memberIs(11, 500);
  const auto defaultMatch = table->defaultMatchSpecIs();
  table->entryIs(memberEntry(defaultMatch, 11));
  const IngressMirrorLagGroupTableEntry read = table->entry(defaultMatch);
  ASSERT_NE(read.match(), nullptr);
  EXPECT_EQ(read.match()->ingMirrorMdMirrorSession(), 0u);
  EXPECT_EQ(read.memberOrGroup(), (IngressMirrorLagGroupMemberOrGroupOrNone{11, true}));
}

TEST_F(IngressMirrorLagGroupTableTest, EntryOfANullOrUnprogrammedMatchIsEmptyWithoutAChipCall) {
  startLog();
  EXPECT_TRUE(!table->entry(nullptr));
  EXPECT_TRUE(!table->entry(matchOf(5)));
  EXPECT_TRUE(logLines().empty());
}

TEST_F(IngressMirrorLagGroupTableTest, EntryByHandleOfAnUnknownHandleIsEmpty) {
  startLog();
  const IngressMirrorLagGroupTableEntry read = table->entryByHandle(4242);
  EXPECT_TRUE(!read);
  EXPECT_THAT(logLines(),
              ElementsAre(kGetEntry + "(sess=7, dev=3, entry=4242, read_from_hw=false) = 6"));
}

TEST_F(IngressMirrorLagGroupTableTest, EntryByHandleOfAFailingReadIsEmptyAndThrowsNothing) {
  memberIs(11, 500);
  const auto match = matchOf(5);
  table->entryIs(memberEntry(match, 11));
  ASSERT_EQ(chip.failNext(kGetEntry.c_str(), 14, 1), 0);
  IngressMirrorLagGroupTableEntry read;
  EXPECT_NO_THROW(read = table->entry(match));
  EXPECT_TRUE(!read);
}

TEST_F(IngressMirrorLagGroupTableTest, EntryByHandleOfAnUnregisteredMemberGivesIdZero) {
  const auto match = matchOf(5);
  memberIs(11, 500);
  table->entryIs(memberEntry(match, 11));
  registry().memberDel(11);
  const IngressMirrorLagGroupTableEntry read = table->entry(match);
  EXPECT_EQ(read.memberOrGroup(), (IngressMirrorLagGroupMemberOrGroupOrNone{0, true}));
}

TEST_F(IngressMirrorLagGroupTableTest, FullTableOnAddThrowsTableFullAndTheEntryStaysEmpty) {
  memberIs(11, 500);
  EXPECT_EQ(kAddEntry, "p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry");
  expectFullOnAdd(memberEntry(matchOf(5), 11), kAddEntry);
}

TEST_F(IngressMirrorLagGroupTableTest, FullTableOnAGroupAddThrowsTableFullAndTheEntryStaysEmpty) {
  groupIs(4);
  EXPECT_EQ(kAddEntryWithSelector,
            "p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_with_selector");
  expectFullOnAdd(groupEntry(matchOf(5), 4), kAddEntryWithSelector);
}

TEST_F(IngressMirrorLagGroupTableTest, AddTellsTheStatusManagerThenAllocatesAKeyThenCallsTheChip) {
  memberIs(11, 500);
  groupIs(4);
  const auto byMember = matchOf(5);
  const auto byGroup = matchOf(6);
  startLog();
  table->entryIs(memberEntry(byMember, 11));
  table->entryIs(groupEntry(byGroup, 4));
  EXPECT_THAT(events, ElementsAre("initStatus 5 @0", "alloc 5 false @0", "initStatus 6 @1",
                                  "alloc 6 false @1"));
  EXPECT_EQ(statusManager->calls(), (std::vector<BfnTableStatusManager::StatusManagerCall>{
                                        {"initStatus", byMember, 0}, {"initStatus", byGroup, 0}}));
  ASSERT_EQ(keyManager->allocCalls().size(), 2u);
  EXPECT_EQ(keyManager->allocCalls()[0].match, byMember);
  EXPECT_FALSE(keyManager->allocCalls()[0].flag);
  EXPECT_EQ(keyManager->allocCalls()[1].match, byGroup);
  EXPECT_FALSE(keyManager->allocCalls()[1].flag);
}

TEST_F(IngressMirrorLagGroupTableTest, ModifyTellsTheStatusManagerButAllocatesNoKey) {
  memberIs(11, 500);
  memberIs(12, 600);
  groupIs(4);
  const auto match = matchOf(5);
  table->entryIs(memberEntry(match, 11));
  startLog();
  table->entryIs(memberEntry(match, 12));
  table->entryIs(groupEntry(match, 4));
  EXPECT_THAT(events, ElementsAre("initStatus 5 @0", "initStatus 5 @1"));
  EXPECT_TRUE(keyManager->allocCalls().empty());
}

TEST_F(IngressMirrorLagGroupTableTest, DefaultEntryTellsTheStatusManagerAndAllocatesAKeyEveryTime) {
  memberIs(11, 500);
  groupIs(4);
  const auto defaultMatch = table->defaultMatchSpecIs();
  startLog();
  table->entryIs(memberEntry(defaultMatch, 11));
  table->entryIs(groupEntry(defaultMatch, 4));
  EXPECT_THAT(events, ElementsAre("initStatus 0 @0", "alloc 0 false @0", "initStatus 0 @1",
                                  "alloc 0 false @1"));
}

TEST_F(IngressMirrorLagGroupTableTest, DeleteTellsTheStatusManagerBeforeTheChip) {
  memberIs(11, 500);
  const auto match = matchOf(5);
  table->entryIs(memberEntry(match, 11));
  startLog();
  table->entryDel(match);
  EXPECT_THAT(events, ElementsAre("initStatus 5 @0"));
  EXPECT_EQ(logLines().size(), 1u);
}

TEST_F(IngressMirrorLagGroupTableTest, WorksWithoutStatusManagerAndKeyManager) {
  memberIs(11, 500);
  auto bare = Vel::allocate<IngressMirrorLagGroupTable>(helper, nullptr, nullptr);
  const auto match = matchOf(5);
  const auto defaultMatch = bare->defaultMatchSpecIs();
  startLog();
  bare->entryIs(memberEntry(match, 11));
  bare->entryIs(memberEntry(defaultMatch, 11));
  bare->entryDel(match);
  bare->entryDel(defaultMatch);
  EXPECT_EQ(logLines().size(), 4u);
  EXPECT_TRUE(events.empty());
  EXPECT_TRUE(registry().entries().empty());
}

TEST_F(IngressMirrorLagGroupTableTest, AllPipesTargetIsPassedAsPipeFfff) {
  auto allPipes = tableOnPipe(0xFFFF);
  auto& handles = *allPipes->helper()->sdkHandles();
  const p4_pd_kestro_switch_setLagMemberSelector_action_spec_t spec{500};
  std::uint32_t mbr = 0;
  ASSERT_EQ(chip.addMember(kSession, {kDevice, 0xFFFF}, &spec, &mbr), PIPE_STATUS_SUCCESS);
  handles.memberIs(11, mbr);
  const auto match = matchOf(5);
  const auto defaultMatch = allPipes->defaultMatchSpecIs();
  startLog();
  allPipes->entryIs(memberEntry(match, 11));
  const std::uint32_t handle = handles.entry(match);
  allPipes->entryIs(memberEntry(defaultMatch, 11));
  allPipes->entryDel(match);
  allPipes->entryDel(defaultMatch);
  const std::string all = targetArgs(7, 3, 0xFFFF);
  EXPECT_THAT(
      logLines(),
      ElementsAre(kAddEntry + "(" + all + ", mirror_session=5, mbr=" + std::to_string(mbr) +
                      ") = 0 entry=" + std::to_string(handle),
                  kSetDefaultEntry + "(" + all + ", mbr=" + std::to_string(mbr) +
                      ") = 0 entry=" + std::to_string(kDefaultEntryHandle),
                  kTableDelete + "(sess=7, dev=3, entry=" + std::to_string(handle) + ") = 0",
                  kTableResetDefaultEntry + "(" + all + ") = 0"));
}

TEST_F(IngressMirrorLagGroupTableTest, TheSessionIsThatOfThePdObjectAtTheTimeOfTheCall) {
  const std::uint32_t mbr = memberIs(11, 500);
  const auto match = matchOf(5);
  helper->pdLib()->sessionIdIs(21);
  startLog();
  table->entryIs(memberEntry(match, 11));
  EXPECT_EQ(lastLine(), kAddEntry + "(" + targetArgs(21, 3, 2) +
                            ", mirror_session=5, mbr=" + std::to_string(mbr) +
                            ") = 0 entry=" + std::to_string(registry().entry(match)));
}

TEST_F(IngressMirrorLagGroupTableTest, NoExpectationScopeIsLeftOpen) {
  memberIs(11, 500);
  const auto match = matchOf(5);
  table->entryIs(memberEntry(match, 11));
  EXPECT_EQ(Vel::Expect::depth(), 0u);
  ASSERT_EQ(chip.failNext(kTableDelete.c_str(), 3, 1), 0);
  EXPECT_THROW(table->entryDel(match), BfTable::BfTableException);
  EXPECT_EQ(Vel::Expect::depth(), 0u);
}

TEST_F(IngressMirrorLagGroupTableTest, TheTableHoldsItsHelperAndManagers) {
  EXPECT_EQ(helper->references(), 2u);
  EXPECT_EQ(statusManager->references(), 2u);
  EXPECT_EQ(keyManager->references(), 2u);
  table = nullptr;
  EXPECT_EQ(helper->references(), 1u);
  EXPECT_EQ(statusManager->references(), 1u);
  EXPECT_EQ(keyManager->references(), 1u);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
