#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <typeinfo>

#include "TableFixture.h"
#include "Vel/Expect.h"

namespace BfIngressMirrorLagGroup {
namespace {

// One of the table's PD calls and how to reach it: `prepare` programs what the
// call needs (and returns the match the call is made for), `run` makes the call
// through the table.
enum class Operation {
  addEntry,
  addEntryWithSelector,
  modifyEntry,
  modifyEntryWithSelector,
  setDefaultEntry,
  setDefaultEntryWithSelector,
  tableDelete,
  tableResetDefaultEntry,
};

struct FailureCase {
  Operation operation;
  const std::string* pdFunction;
  const char* label;
  pipe_status status;
};

const char* textOf(pipe_status status) {
  switch (status) {
    case 2:
      return "No system resources";
    case 9:
      return "Not enough Space";
    case 16:
      return "Action data entry is being referenced by match entries";
    case 17:
      return "Not supported";
  }
  return "?";
}

class IngressMirrorLagGroupTableFailureTest : public TableFixture,
                                              public testing::WithParamInterface<FailureCase> {
 protected:
  void SetUp() override {
    TableFixture::SetUp();
    memberIs(11, 500);
    memberIs(12, 600);
    groupIs(4);
    groupIs(5);
  }

  // Programs what the failing call needs and gives the match it acts on.
  Vel::Ptr<const IngressMirrorLagGroupMatchSpec> prepare(Operation operation) {
    const bool onDefault = operation == Operation::setDefaultEntry ||
                           operation == Operation::setDefaultEntryWithSelector ||
                           operation == Operation::tableResetDefaultEntry;
    const auto match = onDefault ? table->defaultMatchSpecIs() : matchOf(5);
    // A second, untouched entry, so that the registry has more to keep.
    table->entryIs(memberEntry(matchOf(8), 12));
    switch (operation) {
      case Operation::modifyEntry:
      case Operation::modifyEntryWithSelector:
      case Operation::tableDelete:
        table->entryIs(memberEntry(match, 11));
        break;
      case Operation::setDefaultEntry:
      case Operation::setDefaultEntryWithSelector:
      case Operation::tableResetDefaultEntry:
        table->entryIs(groupEntry(match, 5));
        break;
      default:
        break;
    }
    return match;
  }

  void run(Operation operation, const Vel::Ptr<const IngressMirrorLagGroupMatchSpec>& match) {
    switch (operation) {
      case Operation::addEntry:
      case Operation::modifyEntry:
      case Operation::setDefaultEntry:
        table->entryIs(memberEntry(match, 12));
        return;
      case Operation::addEntryWithSelector:
      case Operation::modifyEntryWithSelector:
      case Operation::setDefaultEntryWithSelector:
        table->entryIs(groupEntry(match, 4));
        return;
      case Operation::tableDelete:
      case Operation::tableResetDefaultEntry:
        table->entryDel(match);
        return;
    }
  }
};

TEST_P(IngressMirrorLagGroupTableFailureTest, ThrowsByStatusAndLeavesTheRegistryAsItWas) {
  const FailureCase& c = GetParam();
  const auto match = prepare(c.operation);
  const RegistrySnapshot before = snapshot();
  const std::uint32_t entriesBefore = chip.entries();
  ASSERT_EQ(chip.failNext(c.pdFunction->c_str(), c.status, 1), 0);
  startLog();

  const std::string expected = *c.pdFunction + "() failed: " + textOf(c.status);
  bool thrown = false;
  try {
    run(c.operation, match);
  } catch (const BfTable::BfTableFull& e) {
    thrown = true;
    EXPECT_EQ(c.status, 9);
    EXPECT_EQ(e.status(), 9);
    EXPECT_EQ(e.message(), expected);
  } catch (const BfTable::BfNoSysResources& e) {
    thrown = true;
    EXPECT_EQ(c.status, 2);
    EXPECT_EQ(e.status(), 2);
    EXPECT_EQ(e.message(), expected);
  } catch (const BfTable::BfNotSupported& e) {
    thrown = true;
    EXPECT_EQ(c.status, 17);
    EXPECT_EQ(e.status(), 17);
    EXPECT_EQ(e.message(), expected);
  } catch (const BfTable::BfTableException& e) {
    thrown = true;
    EXPECT_EQ(c.status, 16);
    EXPECT_EQ(typeid(e), typeid(BfTable::BfTableException));
    EXPECT_EQ(e.status(), 16);
    EXPECT_EQ(e.message(), expected);
  }
  EXPECT_TRUE(thrown);

  EXPECT_EQ(snapshot(), before);
  EXPECT_EQ(chip.entries(), entriesBefore);
  const std::vector<std::string> lines = logLines();
  ASSERT_EQ(lines.size(), 1u);
  EXPECT_EQ(lines[0].rfind(*c.pdFunction + "(", 0), 0u) << lines[0];
  EXPECT_NE(lines[0].find(") = " + std::to_string(c.status) + " (injected)"), std::string::npos)
      << lines[0];
  // What was done before the call stays done.
  ASSERT_FALSE(events.empty());
  EXPECT_EQ(events.front().rfind("initStatus ", 0), 0u);
  EXPECT_EQ(Vel::Expect::depth(), 0u);
}

const FailureCase kCalls[] = {
    {Operation::addEntry, &chipsim_test::kAddEntry, "AddEntry", 0},
    {Operation::addEntryWithSelector, &chipsim_test::kAddEntryWithSelector, "AddEntryWithSelector",
     0},
    {Operation::modifyEntry, &chipsim_test::kModifyEntry, "ModifyEntry", 0},
    {Operation::modifyEntryWithSelector, &chipsim_test::kModifyEntryWithSelector,
     "ModifyEntryWithSelector", 0},
    {Operation::setDefaultEntry, &chipsim_test::kSetDefaultEntry, "SetDefaultEntry", 0},
    {Operation::setDefaultEntryWithSelector, &chipsim_test::kSetDefaultEntryWithSelector,
     "SetDefaultEntryWithSelector", 0},
    {Operation::tableDelete, &chipsim_test::kTableDelete, "TableDelete", 0},
    {Operation::tableResetDefaultEntry, &chipsim_test::kTableResetDefaultEntry,
     "TableResetDefaultEntry", 0},
};

std::vector<FailureCase> everyCallAndStatus() {
  std::vector<FailureCase> cases;
  for (const FailureCase& call : kCalls) {
    for (pipe_status status : {2, 9, 16, 17}) {
      FailureCase c = call;
      c.status = status;
      cases.push_back(c);
    }
  }
  return cases;
}

std::string caseName(const testing::TestParamInfo<FailureCase>& info) {
  return std::string(info.param.label) + "Status" + std::to_string(info.param.status);
}

void PrintTo(const FailureCase& c, std::ostream* out) {
  *out << c.label << " status " << c.status;
}

INSTANTIATE_TEST_SUITE_P(EveryCall, IngressMirrorLagGroupTableFailureTest,
                         testing::ValuesIn(everyCallAndStatus()), caseName);

// The table's failures outside the parameterised cases above.
using TableTest = TableFixture;

TEST_F(TableTest, FailedAddAllocatedItsKeyAndToldTheStatusManager) {
  memberIs(11, 500);
  const auto match = matchOf(5);
  ASSERT_EQ(chip.failNext(chipsim_test::kAddEntry.c_str(), 2, 1), 0);
  startLog();
  EXPECT_THROW(table->entryIs(memberEntry(match, 11)), BfTable::BfNoSysResources);
  EXPECT_EQ(events, (ManagerEvents{"initStatus 5 @0", "alloc 5 false @0"}));
  EXPECT_FALSE(keyManager->key(match).isZero());
  // The same match written again is still an add.
  table->entryIs(memberEntry(match, 11));
  EXPECT_EQ(chip.calls(chipsim_test::kAddEntry.c_str()), 2);
  EXPECT_NE(registry().entry(match), 0u);
}

TEST_F(TableTest, FailedDeleteKeepsTheEntrySoThatItCanBeDeletedAgain) {
  memberIs(11, 500);
  const auto match = matchOf(5);
  table->entryIs(memberEntry(match, 11));
  const std::uint32_t handle = registry().entry(match);
  ASSERT_EQ(chip.failNext(chipsim_test::kTableDelete.c_str(), 16, 1), 0);
  EXPECT_THROW(table->entryDel(match), BfTable::BfTableException);
  EXPECT_EQ(registry().entry(match), handle);
  table->entryDel(match);
  EXPECT_EQ(registry().entry(match), 0u);
  EXPECT_EQ(chip.entries(), 0u);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
