#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FactoryFixture.h"
#include "Pd/PipeStatus.h"
#include "Vel/Allocate.h"

namespace BfIngressMirrorLagGroup {
namespace {

using chipsim_test::kGetEntry;
using chipsim_test::kModifyEntry;
using chipsim_test::kSetDefaultEntry;
using testing::ElementsAre;
using testing::IsEmpty;

class IngressMirrorLagGroupTableFactoryTest : public FactoryFixture {};

// "..._get_entry(sess=7, dev=3, entry=<handle>, read_from_hw=false) = <status>...".
std::string getEntryLine(std::uint32_t handle, const std::string& result) {
  return kGetEntry + "(sess=7, dev=3, entry=" + std::to_string(handle) +
         ", read_from_hw=false) = " + result;
}

class FactoryPipeScopeTest : public FactoryFixture,
                             public testing::WithParamInterface<std::uint16_t> {};

// The table's entries are scoped to its pipe in the chip, or shared by all
// pipes for 0xFFFF; it is the one chip call of a factory without shadow tables.
TEST_P(FactoryPipeScopeTest, SetsThePipeScopeOfTheEntries) {
  const std::uint16_t pipe = GetParam();
  startLog();
  makeTable(nullptr, nullptr, pipe);
  EXPECT_THAT(logLines(), ElementsAre(setPropertyLine(pipe == 0xFFFF ? 0 : 1)));
  EXPECT_EQ(helper->devPipeId(), pipe);
  EXPECT_EQ(helper->deviceId(), kDevice);
  EXPECT_EQ(helper->pdLib()->sessionId(), kSession);
  EXPECT_EQ(helper->pdLib()->name(), CHIPSIM_LIBRARY);
  EXPECT_EQ(helper->pdLib()->dlHandle(), chipHandle);
}

INSTANTIATE_TEST_SUITE_P(Pipes, FactoryPipeScopeTest, testing::Values(0, 1, 2, 3, 0xFFFF),
                         pipeName);

// The scope holds in the chip: per pipe, a session can have an entry on each
// pipe; shared by all pipes, a second entry of the session is refused.
TEST_F(IngressMirrorLagGroupTableFactoryTest, ThePipeScopeDecidesWhetherKeysMayRepeatAcrossPipes) {
  const p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t five{5};
  for (const std::uint16_t pipe : {std::uint16_t{2}, std::uint16_t{0xFFFF}}) {
    makeTable(nullptr, nullptr, pipe);
    const std::uint32_t member = memberIs(11, 500);
    const auto match = matchOf(5);
    table->entryIs(memberEntry(match, 11));
    std::uint32_t other = 0;
    const int added = chip.addEntry(kSession, {kDevice, 1}, &five, member, &other);
    if (pipe == 2) {
      EXPECT_EQ(added, 0);
      EXPECT_EQ(chip.tableDelete(kSession, kDevice, other), PIPE_STATUS_SUCCESS);
    } else {
      EXPECT_EQ(added, 4);
    }
    table->entryDel(match);
    EXPECT_EQ(chip.entries(), 0u);
  }
}

TEST_F(IngressMirrorLagGroupTableFactoryTest, WithoutKeyManagerTheTableStartsEmpty) {
  startLog();
  makeTable(nullptr, status);
  EXPECT_EQ(table->vaultKeyManager(), nullptr);
  EXPECT_EQ(table->statusManager(), status);
  EXPECT_EQ(helper->pdLib()->vaultKeyManager(), nullptr);
  ASSERT_NE(helper->sdkHandles(), nullptr);
  EXPECT_EQ(snapshot(), RegistrySnapshot{});
  ASSERT_NE(table->defaultMatchSpec(), nullptr);
  EXPECT_EQ(table->defaultMatchSpec()->ingMirrorMdMirrorSession(), 0u);
  // No read-back: the one chip call is the pipe scope.
  EXPECT_THAT(logLines(), ElementsAre(setPropertyLine(1)));
  EXPECT_THAT(statusCalls(), ElementsAre("resyncStatus"));
}

TEST_F(IngressMirrorLagGroupTableFactoryTest, WithoutEitherManagerTheTableStillWorks) {
  makeTable(nullptr, nullptr);
  EXPECT_EQ(table->statusManager(), nullptr);
  memberIs(11, 500);
  const auto match = matchOf(5);
  table->entryIs(memberEntry(match, 11));
  EXPECT_NE(registry().entry(match), 0u);
  EXPECT_EQ(chip.entries(), 1u);
}

// Entries in the chip are left alone without shadow tables: nothing is read,
// nothing is adopted.
TEST_F(IngressMirrorLagGroupTableFactoryTest, WithoutKeyManagerEntriesInTheChipAreNotAdopted) {
  chipEntryIs(5);
  startLog();
  makeTable(nullptr, status);
  EXPECT_EQ(snapshot(), RegistrySnapshot{});
  EXPECT_THAT(logLines(), ElementsAre(setPropertyLine(1)));
}

TEST_F(IngressMirrorLagGroupTableFactoryTest, AnEmptyShadowTableAdoptsNothingAndNamesNoLatestKey) {
  auto keys = shadowKeys();
  startLog();
  makeTable(keys, status);
  EXPECT_THAT(keys->calls, IsEmpty());
  EXPECT_EQ(snapshot(), RegistrySnapshot{});
  EXPECT_THAT(logLines(), ElementsAre(setPropertyLine(1)));
  EXPECT_THAT(statusCalls(), ElementsAre("resyncStatus"));
  EXPECT_EQ(table->vaultKeyManager(), keys);
  EXPECT_EQ(keys->mbbVaultTableConfig()->corruption().count(), 0u);
}

// The bound PD object records through the key manager from the factory on:
// an entry the table adds gets a shadow record under the key allocated for it.
TEST_F(IngressMirrorLagGroupTableFactoryTest, ThePdObjectRecordsThroughTheKeyManager) {
  auto keys = shadowKeys();
  makeTable(keys, nullptr);
  EXPECT_EQ(helper->pdLib()->vaultKeyManager(), keys);
  EXPECT_TRUE(helper->pdLib()->recorder().isRecording());
  memberIs(11, 500);
  const auto match = matchOf(5);
  table->entryIs(memberEntry(match, 11));
  const EntryKey key = keys->key(match);
  ASSERT_FALSE(key.isZero());
  const std::optional<EntryConfig> record = keys->entryShadow()->record(key);
  ASSERT_TRUE(record.has_value());
  EXPECT_EQ(record->entryHandle(), registry().entry(match));
  EXPECT_EQ(record->ingMirrorMdMirrorSession(), 5u);
  EXPECT_EQ(record->devPipeId(), kPipe);
}

class FactoryLatestKeyTest : public FactoryFixture,
                             public testing::WithParamInterface<std::vector<std::uint64_t>> {};

// Records come in slot order, which is the order they were written in.
TEST_P(FactoryLatestKeyTest, TheLargestRecordKeyBecomesTheLatestKey) {
  auto keys = shadowKeys();
  std::vector<std::uint32_t> handles;
  for (std::uint64_t key : GetParam()) {
    const auto session = static_cast<std::uint16_t>(100 + key);
    handles.push_back(chipEntryIs(session));
    entryRecordIs(*keys, key, handles.back(), session);
  }
  startLog();
  makeTable(keys, status);
  const std::vector<std::uint64_t>& order = GetParam();
  EXPECT_THAT(keys->calls, ElementsAre("populate " + std::to_string(order[0]) +
                                           " session=" + std::to_string(100 + order[0]),
                                       "populate " + std::to_string(order[1]) +
                                           " session=" + std::to_string(100 + order[1]),
                                       "latestKeyIs 9"));
  // One read-back per record, after the pipe scope.
  ASSERT_EQ(logLines().size(), 3u);
  EXPECT_EQ(logLines()[0], setPropertyLine(1));
  EXPECT_EQ(chip.calls(kGetEntry.c_str()), 2);
  EXPECT_EQ(keys->latestKey(), EntryKey(0, 9));
  // New keys count on from the latest.
  EXPECT_EQ(keys->alloc(matchOf(1), false), EntryKey(0, 10));
  EXPECT_THAT(statusCalls(), ElementsAre("resyncStatus"));
}

INSTANTIATE_TEST_SUITE_P(Orders, FactoryLatestKeyTest,
                         testing::Values(std::vector<std::uint64_t>{5, 9},
                                         std::vector<std::uint64_t>{9, 5}),
                         [](const testing::TestParamInfo<std::vector<std::uint64_t>>& info) {
                           return "Keys" + std::to_string(info.param[0]) + "Then" +
                                  std::to_string(info.param[1]);
                         });

// Keys compare by their high words first.
TEST_F(IngressMirrorLagGroupTableFactoryTest, AKeyWithAHigherHighWordIsLargerThanAnyLowWord) {
  auto keys = shadowKeys();
  const std::uint64_t high = (std::uint64_t{1} << 32) | 2;
  const std::uint64_t low = 0xFFFFFFF0u;
  entryRecordIs(*keys, high, chipEntryIs(7), 7);
  entryRecordIs(*keys, low, chipEntryIs(8), 8);
  makeTable(keys, nullptr);
  EXPECT_EQ(keys->calls.back(), "latestKeyIs " + std::to_string(high));
}

TEST_F(IngressMirrorLagGroupTableFactoryTest, EveryRecordIsAdoptedUnderItsReadBackMatchSpec) {
  auto keys = shadowKeys();
  const std::uint32_t five = chipEntryIs(5);
  const std::uint32_t six = chipEntryIs(6);
  entryRecordIs(*keys, 1, five, 5);
  entryRecordIs(*keys, 2, six, 6);
  makeTable(keys, status);
  ASSERT_EQ(registry().entries().size(), 2u);
  EXPECT_EQ(sessionOfHandle(five), 5);
  EXPECT_EQ(sessionOfHandle(six), 6);
  // The key manager knows each adopted match spec by its record's key.
  ASSERT_EQ(keys->populated.size(), 2u);
  for (const auto& match : keys->populated) {
    const auto* spec = static_cast<const IngressMirrorLagGroupMatchSpec*>(match.get());
    EXPECT_EQ(registry().entry(Vel::Ptr<const IngressMirrorLagGroupMatchSpec>(spec)),
              spec->ingMirrorMdMirrorSession() == 5 ? five : six);
  }
  EXPECT_EQ(keys->key(keys->populated[0]), EntryKey(0, 1));
  EXPECT_EQ(keys->key(keys->populated[1]), EntryKey(0, 2));
}

// Writing an adopted entry again through its match spec modifies it in place.
TEST_F(IngressMirrorLagGroupTableFactoryTest, WritingAnAdoptedEntryAgainModifiesIt) {
  auto keys = shadowKeys();
  const std::uint32_t handle = chipEntryIs(5);
  entryRecordIs(*keys, 1, handle, 5);
  makeTable(keys, nullptr);
  const std::uint32_t member = memberIs(11, 500);
  ASSERT_EQ(keys->populated.size(), 1u);
  const Vel::Ptr<const IngressMirrorLagGroupMatchSpec> match(
      static_cast<const IngressMirrorLagGroupMatchSpec*>(keys->populated[0].get()));
  startLog();
  table->entryIs(memberEntry(match, 11));
  EXPECT_THAT(logLines(),
              ElementsAre(kModifyEntry + "(sess=7, dev=3, entry=" + std::to_string(handle) +
                          ", mbr=" + std::to_string(member) + ") = 0"));
  EXPECT_EQ(chip.entries(), 1u);
  // A modify creates nothing: the key manager allocated no key and the
  // record is the same.
  EXPECT_THAT(keys->allocCalls(), IsEmpty());
  EXPECT_EQ(keys->entryShadow()->records().size(), 1u);
}

// A record whose entry is gone from the chip reads back empty: it is passed
// over, its key still counts.
TEST_F(IngressMirrorLagGroupTableFactoryTest, ARecordOfAnEntryGoneFromTheChipIsSkipped) {
  auto keys = shadowKeys();
  const std::uint32_t five = chipEntryIs(5);
  const std::uint32_t gone = chipEntryIs(6);
  ASSERT_EQ(chip.tableDelete(kSession, kDevice, gone), PIPE_STATUS_SUCCESS);
  entryRecordIs(*keys, 3, five, 5);
  entryRecordIs(*keys, 8, gone, 6);
  startLog();
  makeTable(keys, status);
  EXPECT_THAT(keys->calls, ElementsAre("populate 3 session=5", "latestKeyIs 8"));
  ASSERT_EQ(registry().entries().size(), 1u);
  EXPECT_EQ(sessionOfHandle(five), 5);
  EXPECT_EQ(sessionOfHandle(gone), -1);
  EXPECT_EQ(logLines().back(), getEntryLine(gone, "6"));
}

// The default entry's record is adopted under the table's default match spec,
// through which the default entry can then be reset.
TEST_F(IngressMirrorLagGroupTableFactoryTest, TheDefaultEntryIsAdoptedUnderTheDefaultMatchSpec) {
  auto keys = shadowKeys();
  const std::uint32_t five = chipEntryIs(5);
  std::uint32_t defaultHandle = 0;
  ASSERT_EQ(chip.setDefaultEntry(kSession, {kDevice, 0xFFFF}, chipMemberIs(9), &defaultHandle),
            PIPE_STATUS_SUCCESS);
  ASSERT_EQ(defaultHandle, kDefaultEntryHandle);
  defaultRecordIs(*keys, 4, defaultHandle);
  entryRecordIs(*keys, 2, five, 5);
  makeTable(keys, status);
  ASSERT_EQ(keys->populated.size(), 2u);
  EXPECT_EQ(keys->populated[0], table->defaultMatchSpec());
  EXPECT_EQ(registry().entry(table->defaultMatchSpec()), kDefaultEntryHandle);
  EXPECT_EQ(registry().entries().size(), 2u);
  EXPECT_EQ(keys->calls.back(), "latestKeyIs 4");
  startLog();
  table->entryDel(table->defaultMatchSpec());
  EXPECT_EQ(chip.calls(chipsim_test::kTableResetDefaultEntry.c_str()), 1);
  EXPECT_EQ(registry().entry(table->defaultMatchSpec()), 0u);
}

// Setting the adopted default entry again replaces it in place, and its one
// record follows.
TEST_F(IngressMirrorLagGroupTableFactoryTest, SettingTheAdoptedDefaultEntryAgainKeepsItsHandle) {
  auto keys = shadowKeys();
  std::uint32_t defaultHandle = 0;
  ASSERT_EQ(chip.setDefaultEntry(kSession, {kDevice, 0xFFFF}, chipMemberIs(9), &defaultHandle),
            PIPE_STATUS_SUCCESS);
  defaultRecordIs(*keys, 1, defaultHandle);
  makeTable(keys, nullptr);
  const std::uint32_t member = memberIs(11, 500);
  startLog();
  table->entryIs(memberEntry(table->defaultMatchSpec(), 11));
  EXPECT_THAT(logLines(),
              ElementsAre(kSetDefaultEntry + "(" + targetArgs(kSession, kDevice, kPipe) +
                          ", mbr=" + std::to_string(member) +
                          ") = 0 entry=" + std::to_string(kDefaultEntryHandle)));
  EXPECT_EQ(registry().entry(table->defaultMatchSpec()), kDefaultEntryHandle);
  EXPECT_EQ(keys->entryShadow()->records().size(), 1u);
}

// The factory is exported by its plain name: a host finds it in the plug-in
// library with dlsym and makes a working table through it.
TEST_F(IngressMirrorLagGroupTableFactoryTest, TheFactoryIsFoundByPlainNameInThePlugin) {
  void* plugin = dlopen(PLUGIN_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(plugin, nullptr) << dlerror();
  void* symbol = dlsym(plugin, "ingressMirrorLagGroupTableFactory");
  ASSERT_NE(symbol, nullptr) << dlerror();
  EXPECT_EQ(symbol, reinterpret_cast<void*>(&ingressMirrorLagGroupTableFactory));
  const auto factory = reinterpret_cast<decltype(&ingressMirrorLagGroupTableFactory)>(symbol);
  startLog();
  table = factory(nullptr, status, chipHandle, kSession, kDevice, 0xFFFF, CHIPSIM_LIBRARY);
  ASSERT_NE(table, nullptr);
  helper = table->helper();
  EXPECT_THAT(logLines(), ElementsAre(setPropertyLine(0)));
  EXPECT_THAT(statusCalls(), ElementsAre("resyncStatus"));
  dlclose(plugin);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
