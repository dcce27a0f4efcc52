#include "ChipFixture.h"

#include "Pd/PipeStatus.h"

namespace chipsim_test {
namespace {

class PipeScopeTest : public ChipFixture {
 protected:
  pipe_status scope(uint32_t value) {
    return pd.setProperty(1, 0, P4_PD_TABLE_PROPERTY_ENTRY_SCOPE, value);
  }
  pipe_status add(uint16_t key, uint32_t member, uint32_t pipe) {
    MatchSpec match{key};
    uint32_t entry = 0;
    return pd.addEntry(1, {0, pipe}, &match, member, &entry);
  }
};

TEST_F(PipeScopeTest, SetPropertyLogsTheCall) {
  EXPECT_EQ(scope(P4_PD_ENTRY_SCOPE_SINGLE_PIPE), 0);
  EXPECT_EQ(lastLine(), kSetProperty + "(sess=1, dev=0, property=1, value=1) = 0");
  EXPECT_EQ(scope(P4_PD_ENTRY_SCOPE_ALL_PIPES), 0);
  EXPECT_EQ(lastLine(), kSetProperty + "(sess=1, dev=0, property=1, value=0) = 0");
}

TEST_F(PipeScopeTest, SetPropertyRefusesBadArguments) {
  EXPECT_EQ(pd.setProperty(1, 1, 1, 1), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kSetProperty + "(sess=1, dev=1, property=1, value=1) = 3");
  EXPECT_EQ(pd.setProperty(1, 0, 2, 1), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kSetProperty + "(sess=1, dev=0, property=2, value=1) = 3");
  EXPECT_EQ(pd.setProperty(1, 0, 1, 2), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kSetProperty + "(sess=1, dev=0, property=1, value=2) = 3");
}

TEST_F(PipeScopeTest, TheScopeOfATableWithEntriesStaysAsItIs) {
  addEntry(5, addMember(7));
  EXPECT_EQ(scope(P4_PD_ENTRY_SCOPE_SINGLE_PIPE), 3);
  EXPECT_EQ(scope(P4_PD_ENTRY_SCOPE_ALL_PIPES), 0);  // the same scope again is fine
}

TEST_F(PipeScopeTest, PerPipeScopeTakesOneKeyInTwoPipes) {
  uint32_t member = addMember(7);
  ASSERT_EQ(scope(P4_PD_ENTRY_SCOPE_SINGLE_PIPE), 0);
  EXPECT_EQ(add(5, member, 0), 0);
  EXPECT_EQ(add(5, member, 1), 0);
  EXPECT_EQ(add(5, member, 1), 4);
  EXPECT_EQ(add(5, member, P4_PD_ALL_PIPES), 4);  // would cover pipes 0 and 1 too
  EXPECT_EQ(pd.entries(), 2u);
}

TEST_F(PipeScopeTest, PerPipeScopeEntryOfAllPipesClashesWithEveryPipe) {
  uint32_t member = addMember(7);
  ASSERT_EQ(scope(P4_PD_ENTRY_SCOPE_SINGLE_PIPE), 0);
  EXPECT_EQ(add(5, member, P4_PD_ALL_PIPES), 0);
  EXPECT_EQ(add(5, member, 3), 4);
}

TEST_F(PipeScopeTest, AllPipesScopeTakesAKeyOnce) {
  uint32_t member = addMember(7);
  ASSERT_EQ(scope(P4_PD_ENTRY_SCOPE_ALL_PIPES), 0);
  EXPECT_EQ(add(5, member, 0), 0);
  EXPECT_EQ(add(5, member, 1), 4);
  EXPECT_EQ(lastLine(), kAddEntry + "(sess=1, dev=0, pipe=0x1, mirror_session=5, mbr=1) = 4");
  EXPECT_EQ(pd.entries(), 1u);
}

TEST_F(PipeScopeTest, ANewChipScopesEntriesOverAllPipes) {
  uint32_t member = addMember(7);
  EXPECT_EQ(add(5, member, 2), 0);
  EXPECT_EQ(add(5, member, 3), 4);
}

}  // namespace
}  // namespace chipsim_test
