#include <cerrno>

#include "ChipFixture.h"
#include "Pd/PipeStatus.h"

namespace chipsim_test {
namespace {

class FaultInjectionTest : public ChipFixture {};

TEST_F(FaultInjectionTest, TheNextCallsFailAndChangeNothing) {
  uint32_t member = addMember(7);
  ASSERT_EQ(pd.failNext(kAddEntry.c_str(), 9, 2), 0);
  MatchSpec match{5};
  uint32_t entry = 0;
  EXPECT_EQ(pd.addEntry(1, kAllPipes, &match, member, &entry), PIPE_STATUS_NO_SPACE);
  EXPECT_EQ(lastLine(),
            kAddEntry + "(sess=1, dev=0, pipe=0xffff, mirror_session=5, mbr=1) = 9 (injected)");
  EXPECT_EQ(pd.addEntry(1, kAllPipes, &match, member, &entry), PIPE_STATUS_NO_SPACE);
  EXPECT_EQ(entry, 0u);
  EXPECT_EQ(pd.entries(), 0u);
  EXPECT_EQ(pd.addEntry(1, kAllPipes, &match, member, &entry), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(lastLine(),
            kAddEntry + "(sess=1, dev=0, pipe=0xffff, mirror_session=5, mbr=1) = 0 entry=1");
  EXPECT_EQ(pd.calls(kAddEntry.c_str()), 3);
}

TEST_F(FaultInjectionTest, AFaultComesBeforeTheArgumentsAreChecked) {
  ASSERT_EQ(pd.failNext(kCreateGroup.c_str(), 2, 1), 0);
  EXPECT_EQ(pd.createGroup(1, kAllPipes, 0, nullptr), PIPE_STATUS_NO_SYSTEM_RESOURCES);
  EXPECT_EQ(lastLine(),
            kCreateGroup + "(sess=1, dev=0, pipe=0xffff, size=0) = 2 (injected) grp=NULL");
}

TEST_F(FaultInjectionTest, OtherFunctionsAreNotTouched) {
  ASSERT_EQ(pd.failNext(kDelMember.c_str(), 16, 1), 0);
  uint32_t member = addMember(7);
  EXPECT_EQ(pd.delMember(1, 0, member), PIPE_STATUS_IN_USE);
  EXPECT_EQ(pd.members(), 1u);
  EXPECT_EQ(pd.delMember(1, 0, member), PIPE_STATUS_SUCCESS);
}

TEST_F(FaultInjectionTest, ACountOfZeroCancels) {
  ASSERT_EQ(pd.failNext(kAddMember.c_str(), 9, 5), 0);
  ASSERT_EQ(pd.failNext(kAddMember.c_str(), 9, 0), 0);
  addMember(7);
}

TEST_F(FaultInjectionTest, AnUnknownFunctionIsRefused) {
  EXPECT_EQ(pd.failNext("p4_pd_kestro_switch_nothing", 9, 1), EINVAL);
  EXPECT_EQ(pd.failNext(nullptr, 9, 1), EINVAL);
}

TEST_F(FaultInjectionTest, EveryPdFunctionCanBeFailed) {
  for (const std::string& name : kPdFunctions) {
    EXPECT_EQ(pd.failNext(name.c_str(), 17, 1), 0) << name;
    EXPECT_EQ(pd.calls(name.c_str()), 0) << name;
  }
  MatchSpec match{5};
  ActionSpec action{1};
  uint32_t handle = 0;
  bool flag = false;
  EXPECT_EQ(pd.addEntry(1, kAllPipes, &match, 1, &handle), PIPE_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(pd.addEntryWithSelector(1, kAllPipes, &match, 1, &handle), PIPE_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(pd.modifyEntry(1, 0, 1, 1), PIPE_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(pd.modifyEntryWithSelector(1, 0, 1, 1), PIPE_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(pd.setDefaultEntry(1, kAllPipes, 1, &handle), PIPE_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(pd.setDefaultEntryWithSelector(1, kAllPipes, 1, &handle), PIPE_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(pd.tableDelete(1, 0, 1), PIPE_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(pd.tableResetDefaultEntry(1, kAllPipes), PIPE_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(pd.setProperty(1, 0, 1, 1), PIPE_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(pd.getEntry(1, 0, 1, false, &match, &handle, &flag), PIPE_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(pd.matchSpecToEntryHdl(1, kAllPipes, &match, &handle), PIPE_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(pd.addMember(1, kAllPipes, &action, &handle), PIPE_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(pd.modifyMember(1, 0, 1, &action), PIPE_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(pd.delMember(1, 0, 1), PIPE_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(pd.createGroup(1, kAllPipes, 1, &handle), PIPE_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(pd.delGroup(1, 0, 1), PIPE_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(pd.addMemberToGroup(1, 0, 1, 1), PIPE_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(pd.delMemberFromGroup(1, 0, 1, 1), PIPE_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(pd.groupMemberStateSet(1, 0, 1, 1, 0), PIPE_STATUS_NOT_SUPPORTED);
  for (const std::string& name : kPdFunctions) {
    EXPECT_EQ(pd.calls(name.c_str()), 1) << name;
  }
  EXPECT_EQ(pd.logCount(), 19u);
}

}  // namespace
}  // namespace chipsim_test
