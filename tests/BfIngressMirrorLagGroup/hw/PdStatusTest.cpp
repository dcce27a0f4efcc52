#include "BfIngressMirrorLagGroup/hw/PdStatus.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <typeinfo>

#include "BfIngressMirrorLagGroup/hw/BfNoSysResources.h"
#include "BfIngressMirrorLagGroup/hw/BfNotSupported.h"
#include "BfIngressMirrorLagGroup/hw/BfTableFull.h"
#include "support/PdFunctionNames.h"

namespace BfIngressMirrorLagGroup {
namespace {

constexpr const char* addEntry = "p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry";

struct StatusCase {
  pipe_status status;
  const char* text;
};

// Every code the SDK defines, then codes past the table and a negative code.
const StatusCase statusCases[] = {
    {1, "Pipeline manager service not ready"},
    {2, "No system resources"},
    {3, "Invalid arguments"},
    {4, "Object already exists"},
    {5, "Communication failed"},
    {6, "Object not found"},
    {7, "Exceeded max sessions"},
    {8, "Session not found"},
    {9, "Not enough Space"},
    {10, "Try again later"},
    {11, "Initialization error"},
    {12, "Not Supported In Transaction"},
    {13, "Table is locked"},
    {14, "IO Error"},
    {15, "Unexpected"},
    {16, "Action data entry is being referenced by match entries"},
    {17, "Not supported"},
    {18, "Updating hardware failed"},
    {19, "No learning clients registered"},
    {20, "Idle time update state already in progress"},
    {21, "Device Locked"},
    {22, "Internal Error"},
    {23, "Table not found"},
    {24, "Table not found"},
    {40, "Table not found"},
    {-1, "Table not found"},
};

class PdStatusRuleTest : public testing::TestWithParam<StatusCase> {};

TEST_P(PdStatusRuleTest, TextAndExceptionFollowTheStatus) {
  const StatusCase& c = GetParam();
  EXPECT_STREQ(statusText(c.status), c.text);
  const std::string expected = std::string(addEntry) + "() failed: " + c.text;
  try {
    checkPdStatus(addEntry, c.status);
    FAIL() << "status " << c.status << " did not throw";
  } catch (const BfTable::BfTableFull& e) {
    EXPECT_EQ(c.status, 9);
    EXPECT_EQ(e.status(), 9);
    EXPECT_EQ(e.message(), expected);
  } catch (const BfTable::BfNoSysResources& e) {
    EXPECT_EQ(c.status, 2);
    EXPECT_EQ(e.status(), 2);
    EXPECT_EQ(e.message(), expected);
  } catch (const BfTable::BfNotSupported& e) {
    EXPECT_EQ(c.status, 17);
    EXPECT_EQ(e.status(), 17);
    EXPECT_EQ(e.message(), expected);
    EXPECT_STREQ(e.what(), expected.c_str());
  } catch (const BfTable::BfTableException& e) {
    EXPECT_NE(c.status, 9);
    EXPECT_NE(c.status, 2);
    EXPECT_NE(c.status, 17);
    EXPECT_EQ(typeid(e), typeid(BfTable::BfTableException));
    EXPECT_EQ(e.status(), c.status);
    EXPECT_EQ(e.message(), expected);
    EXPECT_EQ(e.ids(), Vel::ExceptionIdSet{0});
  }
}

std::string statusName(const testing::TestParamInfo<StatusCase>& info) {
  const pipe_status status = info.param.status;
  return status < 0 ? "StatusMinus" + std::to_string(-status) : "Status" + std::to_string(status);
}

void PrintTo(const StatusCase& c, std::ostream* out) {
  *out << "status " << c.status;
}

INSTANTIATE_TEST_SUITE_P(EveryCode, PdStatusRuleTest, testing::ValuesIn(statusCases), statusName);

TEST(PdStatusTest, SuccessThrowsNothing) {
  EXPECT_STREQ(statusText(0), "Success");
  EXPECT_NO_THROW(checkPdStatus(addEntry, 0));
}

TEST(PdStatusTest, StatusNineFromAnyPdFunctionIsATableFull) {
  for (const std::string& function : chipsim_test::kPdFunctions) {
    try {
      checkPdStatus(function.c_str(), 9);
      ADD_FAILURE() << function << " did not throw";
    } catch (const BfTable::BfTableFull& e) {
      EXPECT_EQ(e.status(), 9) << function;
      EXPECT_EQ(e.message(), function + "() failed: Not enough Space");
    }
  }
}

TEST(PdStatusTest, StatusSixteenFromAnyPdFunctionIsAPlainTableException) {
  for (const std::string& function : chipsim_test::kPdFunctions) {
    try {
      checkPdStatus(function.c_str(), 16);
      ADD_FAILURE() << function << " did not throw";
    } catch (const BfTable::BfTableException& e) {
      EXPECT_EQ(typeid(e), typeid(BfTable::BfTableException)) << function;
      EXPECT_EQ(e.status(), 16) << function;
      EXPECT_EQ(e.message(), std::string(function) +
                                 "() failed: Action data entry is being referenced by match "
                                 "entries");
    }
  }
}

TEST(PdStatusTest, FullTableMessageEndsWithNotEnoughSpace) {
  try {
    checkPdStatus(addEntry, 9);
    FAIL();
  } catch (const BfTable::BfTableFull& e) {
    EXPECT_EQ(e.status(), 9);
    EXPECT_EQ(e.message(),
              "p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry() failed: Not enough Space");
  }
}

TEST(PdStatusTest, ReferencedActionDataIsAPlainTableException) {
  try {
    checkPdStatus("p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member", 16);
    FAIL();
  } catch (const BfTable::BfTableException& e) {
    EXPECT_EQ(typeid(e), typeid(BfTable::BfTableException));
    EXPECT_EQ(e.status(), 16);
    EXPECT_EQ(e.message(),
              "p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member() failed: Action data "
              "entry is being referenced by match entries");
  }
}

// A handler written for table exceptions must not swallow "not supported".
void handleTableFailures(pipe_status status, bool* caughtAsTableException) {
  try {
    checkPdStatus(addEntry, status);
  } catch (const BfTable::BfTableException&) {
    *caughtAsTableException = true;
  }
}

TEST(PdStatusTest, CatchOfTableExceptionLetsNotSupportedPass) {
  bool caught = false;
  EXPECT_THROW(handleTableFailures(17, &caught), BfTable::BfNotSupported);
  EXPECT_FALSE(caught);
  handleTableFailures(16, &caught);
  EXPECT_TRUE(caught);
}

TEST(PdStatusTest, NotSupportedIsNotAVisibleTableException) {
  EXPECT_FALSE((std::is_convertible_v<BfTable::BfNotSupported*, BfTable::BfTableException*>));
  EXPECT_TRUE((std::is_convertible_v<BfTable::BfTableFull*, BfTable::BfTableException*>));
  EXPECT_TRUE((std::is_convertible_v<BfTable::BfNoSysResources*, BfTable::BfTableException*>));
  EXPECT_TRUE((std::is_convertible_v<BfTable::BfTableException*, Vel::InternalException*>));
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
