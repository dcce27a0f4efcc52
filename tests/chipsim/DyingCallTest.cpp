#include <signal.h>

#include <cstdio>
#include <cstdlib>
#include <functional>

#include "ChipFixture.h"
#include "NamedChip.h"
#include "Processes.h"

namespace chipsim_test {
namespace {

// Calls made by processes that die at each change the call makes in turn:
// after every death the next process finds the chip as it was before the call.
class DyingCallTest : public ChipFixture {
 protected:
  void SetUp() override {
    ChipFixture::SetUp();
    ASSERT_EQ(pd.attach(chip.c_str()), 0);
  }
  void TearDown() override {
    ChipFixture::TearDown();
    pd.attach(nullptr);
  }

  std::string dumpText() {
    char* text = nullptr;
    std::size_t size = 0;
    FILE* out = open_memstream(&text, &size);
    EXPECT_EQ(pd.dump(out), 0);
    std::fclose(out);
    std::string dump(text, size);
    std::free(text);
    return dump;
  }

  // Makes `call` in child processes that die at its first, second, ...
  // change, until one lives through it and gets `expected`.
  void dieAtEveryChange(const std::string& what, const std::function<pipe_status()>& call,
                        pipe_status expected = 0) {
    SCOPED_TRACE(what);
    std::string before = dumpText();
    std::vector<std::string> linesBefore = logLines();
    int64_t callsBefore = totalCalls();
    for (unsigned change = 1;; ++change) {
      pid_t child = runChild([&] {
        pd.killAfterChangesForTest(change);
        return call() == expected ? 0 : 1;
      });
      int status = waitChild(child);
      if (status != -SIGKILL) {
        ASSERT_EQ(status, 0);
        ASSERT_GT(change, 1u);  // the call changed something
        return;
      }
      ASSERT_EQ(fault(), "") << "died at change " << change;
      ASSERT_EQ(dumpText(), before) << "died at change " << change;
      ASSERT_EQ(logLines(), linesBefore) << "died at change " << change;
      ASSERT_EQ(totalCalls(), callsBefore) << "died at change " << change;
    }
  }

  NamedChip chip{"dying"};
};

TEST_F(DyingCallTest, EveryCallCanDieAtEveryChange) {
  MatchSpec five{5};
  MatchSpec six{6};
  ActionSpec seven{7};
  ActionSpec eight{8};
  uint32_t handle = 0;
  auto die = [&](const std::string& what, const std::function<pipe_status()>& call,
                 pipe_status expected = 0) { dieAtEveryChange(what, call, expected); };
  die("set_property", [&] { return pd.setProperty(1, 0, 1, 1); });
  for (int member = 1; member <= 3; ++member) {
    die("add_member", [&] { return pd.addMember(1, kAllPipes, &seven, &handle); });
  }
  die("create_group", [&] { return pd.createGroup(1, kAllPipes, 3, &handle); });
  for (uint32_t member = 1; member <= 3; ++member) {
    die("add_member_to_group", [&] { return pd.addMemberToGroup(1, 0, 1, member); });
  }
  die("group_member_state_set", [&] { return pd.groupMemberStateSet(1, 0, 1, 2, 1); });
  die("add_entry", [&] { return pd.addEntry(1, {0, 1}, &five, 1, &handle); });
  die("add_entry_with_selector",
      [&] { return pd.addEntryWithSelector(1, kAllPipes, &six, 1, &handle); });
  die(
      "add_entry duplicate",
      [&] {
        return pd.addEntry(1, {0, 1}, &five, 1, &handle);
      },
      4);
  die("set_default_entry", [&] { return pd.setDefaultEntry(1, kAllPipes, 3, &handle); });
  die("set_default_entry_with_selector",
      [&] { return pd.setDefaultEntryWithSelector(1, kAllPipes, 1, &handle); });
  die("modify_entry", [&] { return pd.modifyEntry(1, 0, 2, 3); });
  die("modify_entry_with_selector", [&] { return pd.modifyEntryWithSelector(1, 0, 1, 1); });
  die("modify_member", [&] { return pd.modifyMember(1, 0, 2, &eight); });
  die("del_member_from_group", [&] { return pd.delMemberFromGroup(1, 0, 1, 1); });
  die("table_reset_default_entry", [&] { return pd.tableResetDefaultEntry(1, kAllPipes); });
  die(
      "del_group in use", [&] { return pd.delGroup(1, 0, 1); }, 16);
  die("table_delete", [&] { return pd.tableDelete(1, 0, 1); });
  die("table_delete", [&] { return pd.tableDelete(1, 0, 2); });
  die("del_group", [&] { return pd.delGroup(1, 0, 1); });
  die("del_member", [&] { return pd.delMember(1, 0, 3); });
  EXPECT_EQ(pd.entries(), 0u);
  EXPECT_EQ(pd.members(), 2u);
  EXPECT_EQ(pd.groups(), 0u);
}

TEST_F(DyingCallTest, AResetCutShortIsFinishedByTheNextProcess) {
  std::string empty = dumpText();
  addEntry(5, addMember(7));
  pid_t child = runChild([&] {
    pd.killAfterChangesForTest(1);
    pd.reset();
    return 0;
  });
  ASSERT_EQ(waitChild(child), -SIGKILL);
  EXPECT_EQ(dumpText(), empty);
  EXPECT_EQ(pd.logCount(), 0u);
}

}  // namespace
}  // namespace chipsim_test
