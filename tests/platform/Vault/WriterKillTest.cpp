#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <ostream>
#include <string>
#include <tuple>

#include "ScratchName.h"
#include "TestRecord.h"
#include "Vault/ReadOnlyVaultTable.h"
#include "Vault/VaultTable.h"
#include "WalkResult.h"

namespace {

// The name of a write step in test names and test lists.
std::string writeStepName(Vault::WriteStep step) {
  switch (step) {
    case Vault::WriteStep::CopyStarted:
      return "CopyStarted";
    case Vault::WriteStep::CopyHalfDone:
      return "CopyHalfDone";
    case Vault::WriteStep::CopyWritten:
      return "CopyWritten";
    case Vault::WriteStep::SlotPublished:
      return "SlotPublished";
  }
  return "Step" + std::to_string(static_cast<int>(step));
}

}  // namespace

namespace Vault {

// Test lists print a write step by its name.
static void PrintTo(WriteStep step, std::ostream* out) {
  *out << writeStepName(step);
}

}  // namespace Vault

namespace {

using Table = Vault::VaultTable<TestRecord>;

// The step at which the child's writer kills itself.
Vault::WriteStep killStep;

void killAtStep(Vault::WriteStep step) {
  if (step == killStep) {
    raise(SIGKILL);
  }
}

// A writer process killed by SIGKILL at each point of an insert and of a
// replace: the table holds the old record or the new one, never a damaged
// one, and a writer that attaches afterwards carries on.
class WriterKillTest
    : public ::testing::TestWithParam<std::tuple<Vault::WriteStep, bool /* replace */>> {
 protected:
  Vault::WriteStep step() const { return std::get<0>(GetParam()); }
  bool replace() const { return std::get<1>(GetParam()); }
  bool newRecordLands() const { return step() == Vault::WriteStep::SlotPublished; }

  // Runs the write in a child that dies in the middle of it.
  void writeAndDie(const TestRecord& record) {
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      Table table(name_.str(), 4);
      killStep = step();
      table.writer().writeProbeIs(killAtStep);
      table.write(record);
      _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGKILL);
  }

  ScratchName name_;
};

TEST_P(WriterKillTest, LeavesTheOldOrTheNewRecord) {
  {
    Table table(name_.str(), 4);
    table.write({1, 10, 10});
    table.write({2, 20, 20});
  }
  const TestRecord written = replace() ? TestRecord{1, 11, 11} : TestRecord{3, 30, 30};
  writeAndDie(written);

  std::vector<TestRecord> expected = {{1, 10, 10}, {2, 20, 20}};
  if (newRecordLands()) {
    if (replace()) {
      expected[0] = written;
    } else {
      expected.push_back(written);
    }
  }
  Vault::ReadOnlyVaultTable<TestRecord> reader(name_.str());
  WalkResult<TestRecord> result = walk<TestRecord>(reader);
  EXPECT_EQ(result.corruption, "");
  EXPECT_EQ(result.records, expected);

  Table again(name_.str(), 4);
  EXPECT_EQ(again.recordCount(), expected.size());
  again.validate();
  again.write({4, 40, 40});
  again.write({1, 12, 12});
  expected[0] = {1, 12, 12};
  expected.push_back({4, 40, 40});
  EXPECT_EQ(walk<TestRecord>(again).records, expected);
}

// Test names tell the step and the kind of write: "CopyHalfDoneReplace".
std::string killCaseName(const ::testing::TestParamInfo<WriterKillTest::ParamType>& info) {
  return writeStepName(std::get<0>(info.param)) + (std::get<1>(info.param) ? "Replace" : "Insert");
}

INSTANTIATE_TEST_SUITE_P(EveryStep, WriterKillTest,
                         ::testing::Combine(::testing::Values(Vault::WriteStep::CopyStarted,
                                                              Vault::WriteStep::CopyHalfDone,
                                                              Vault::WriteStep::CopyWritten,
                                                              Vault::WriteStep::SlotPublished),
                                            ::testing::Bool()),
                         killCaseName);

}  // namespace
