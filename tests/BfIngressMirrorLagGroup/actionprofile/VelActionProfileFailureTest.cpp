#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <typeinfo>

#include "ActionProfileFixture.h"
#include "BfIngressMirrorLagGroup/hw/PdStatus.h"
#include "Vel/AllocTrackTypeInfo.h"
#include "Vel/Expect.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The three PD calls of a member reactor.
enum class MemberCall { add, modify, del };

struct MemberFailure {
  MemberCall call;
  pipe_status status;
};

const std::string& pdFunctionOf(MemberCall call) {
  switch (call) {
    case MemberCall::add:
      return chipsim_test::kAddMember;
    case MemberCall::modify:
      return chipsim_test::kModifyMember;
    case MemberCall::del:
      break;
  }
  return chipsim_test::kDelMember;
}

const char* labelOf(MemberCall call) {
  switch (call) {
    case MemberCall::add:
      return "Add";
    case MemberCall::modify:
      return "Modify";
    case MemberCall::del:
      break;
  }
  return "Del";
}

// What was thrown, as far as the test can tell: the type by name, the status
// and the message.
struct Thrown {
  std::string type;
  pipe_status status = 0;
  std::string message;
};

// Runs `edit`, which must throw one of the table exceptions, and tells which.
// BfNotSupported is derived privately and is caught only by its own name.
template <class Edit>
Thrown thrownBy(Edit edit) {
  try {
    edit();
  } catch (const BfTable::BfTableFull& e) {
    return {"BfTableFull", e.status(), e.message()};
  } catch (const BfTable::BfNoSysResources& e) {
    return {"BfNoSysResources", e.status(), e.message()};
  } catch (const BfTable::BfNotSupported& e) {
    return {"BfNotSupported", e.status(), e.message()};
  } catch (const BfTable::BfTableException& e) {
    return {typeid(e) == typeid(BfTable::BfTableException) ? "BfTableException" : "derived",
            e.status(), e.message()};
  }
  return {"nothing", 0, ""};
}

std::string expectedType(pipe_status status) {
  switch (status) {
    case 2:
      return "BfNoSysResources";
    case 9:
      return "BfTableFull";
    case 17:
      return "BfNotSupported";
  }
  return "BfTableException";
}

// Member 8 is programmed and stays untouched; member 5 is the one whose call
// the chip refuses once.
class VelActionProfileFailureTest : public ActionProfileFixture,
                                    public testing::WithParamInterface<MemberFailure> {
 protected:
  void SetUp() override {
    ActionProfileFixture::SetUp();
    makeSm();
    memberIs(8, 800);
  }

  std::string injectedLine(MemberCall call, pipe_status status) const {
    const std::string result = ") = " + std::to_string(status) + " (injected)";
    switch (call) {
      case MemberCall::add:
        return chipsim_test::kAddMember + "(sess=7, dev=3, pipe=0x2, selector=500" + result;
      case MemberCall::modify:
        return chipsim_test::kModifyMember +
               "(sess=9, dev=3, mbr=" + std::to_string(memberHandle(5)) + ", selector=600" + result;
      case MemberCall::del:
        break;
    }
    return chipsim_test::kDelMember + "(sess=9, dev=3, mbr=" + std::to_string(memberHandle(5)) +
           result;
  }
};

TEST_P(VelActionProfileFailureTest, ThrowsByStatusAndLeavesTheRegistryAsItWas) {
  const MemberFailure& failure = GetParam();
  Vel::Ptr<IngressMirrorLagGroupActionProfileEntry> entry;
  if (failure.call != MemberCall::add)
    entry = memberIs(5, 500);
  const auto registered = registryMembers();
  const std::uint32_t chipMembers = chip.members();
  const auto reactorBefore = sm->actionProfile(BfnTable::BfnMemberId(5));
  const std::string& function = pdFunctionOf(failure.call);
  ASSERT_EQ(chip.failNext(function.c_str(), failure.status, 1), 0);
  startLog();
  const std::string line = injectedLine(failure.call, failure.status);

  const Thrown thrown = thrownBy([&] {
    switch (failure.call) {
      case MemberCall::add:
        memberIs(5, 500);
        return;
      case MemberCall::modify:
        entry->actionIs(selectorAction(600));
        return;
      case MemberCall::del:
        profile->entryDel(BfnTable::BfnMemberId(5));
        return;
    }
  });

  EXPECT_EQ(thrown.type, expectedType(failure.status));
  EXPECT_EQ(thrown.status, failure.status);
  EXPECT_EQ(thrown.message, function + "() failed: " + statusText(failure.status));
  EXPECT_THAT(logLines(), ElementsAre(line));
  EXPECT_EQ(registryMembers(), registered);
  EXPECT_EQ(chip.members(), chipMembers);
  // The status manager was told before the call.
  EXPECT_THAT(events, testing::Contains("initAdtStatus 5 @0"));
  EXPECT_EQ(Vel::Expect::depth(), 0u);
  const auto reactor = sm->actionProfile(BfnTable::BfnMemberId(5));
  if (failure.call == MemberCall::add) {
    EXPECT_EQ(reactor, nullptr);
    EXPECT_EQ(sm->actionProfiles(), 1u);
    EXPECT_EQ(Vel::AllocTrackTypeInfo::of<Sm::VelActionProfile>().liveObjects(), 1u);
  } else {
    ASSERT_EQ(reactor, reactorBefore);
    EXPECT_EQ(reactor->actionProfile(), entry);
    EXPECT_FALSE(reactor->velMarkedForDeletion());
    EXPECT_TRUE(reactor->hasNotificationActive());
  }
}

std::vector<MemberFailure> everyCallAndStatus() {
  std::vector<MemberFailure> cases;
  for (MemberCall call : {MemberCall::add, MemberCall::modify, MemberCall::del}) {
    for (pipe_status status : {2, 3, 9, 16, 17})
      cases.push_back({call, status});
  }
  return cases;
}

std::string caseName(const testing::TestParamInfo<MemberFailure>& info) {
  return std::string(labelOf(info.param.call)) + "Status" + std::to_string(info.param.status);
}

void PrintTo(const MemberFailure& failure, std::ostream* out) {
  *out << labelOf(failure.call) << " status " << failure.status;
}

INSTANTIATE_TEST_SUITE_P(EveryMemberCall, VelActionProfileFailureTest,
                         testing::ValuesIn(everyCallAndStatus()), caseName);

// The texts themselves, so that a change of the status table shows here too.
TEST(VelActionProfileFailureTextTest, TheStatusTextsOfTheRefusals) {
  EXPECT_STREQ(statusText(2), "No system resources");
  EXPECT_STREQ(statusText(9), "Not enough Space");
  EXPECT_STREQ(statusText(16), "Action data entry is being referenced by match entries");
  EXPECT_STREQ(statusText(17), "Not supported");
}

class VelActionProfileRetryTest : public ActionProfileFixture {
 protected:
  void SetUp() override {
    ActionProfileFixture::SetUp();
    makeSm();
  }
};

TEST_F(VelActionProfileRetryTest, AfterAFailedAddTheMemberCanBeAddedAgain) {
  const auto entry = entryOf(5, 500);
  ASSERT_EQ(chip.failNext(chipsim_test::kAddMember.c_str(), 9, 1), 0);
  EXPECT_THROW(profile->entryIs(entry), BfTable::BfTableFull);
  // The entity holds the entry; the state machine has nothing for it.
  EXPECT_EQ(profile->entry(BfnTable::BfnMemberId(5)), entry);
  EXPECT_EQ(sm->actionProfiles(), 0u);
  startLog();
  sm->actionProfileIs(entry);
  EXPECT_THAT(logLines(), ElementsAre(addMemberLine(500, memberHandle(5))));
  EXPECT_EQ(chip.members(), 1u);
}

TEST_F(VelActionProfileRetryTest, AfterAFailedDeleteTheReactorAndHandleStayAndARetryDeletes) {
  memberIs(5, 500);
  const std::uint32_t handle = memberHandle(5);
  const auto reactor = sm->actionProfile(BfnTable::BfnMemberId(5));
  ASSERT_EQ(chip.failNext(chipsim_test::kDelMember.c_str(), 16, 1), 0);
  EXPECT_THROW(profile->entryDel(BfnTable::BfnMemberId(5)), BfTable::BfTableException);
  EXPECT_EQ(sm->actionProfile(BfnTable::BfnMemberId(5)), reactor);
  EXPECT_EQ(memberHandle(5), handle);
  EXPECT_EQ(chip.members(), 1u);
  startLog();
  EXPECT_NE(sm->actionProfileDel(BfnTable::BfnMemberId(5)), nullptr);
  EXPECT_THAT(logLines(), ElementsAre(delMemberLine(handle)));
  EXPECT_EQ(sm->actionProfile(BfnTable::BfnMemberId(5)), nullptr);
  EXPECT_THAT(registryMembers(), IsEmpty());
  EXPECT_EQ(chip.members(), 0u);
}

TEST_F(VelActionProfileRetryTest, AfterAFailedModifyTheNextActionIsProgrammed) {
  const auto entry = memberIs(5, 500);
  const std::uint32_t handle = memberHandle(5);
  ASSERT_EQ(chip.failNext(chipsim_test::kModifyMember.c_str(), 3, 1), 0);
  EXPECT_THROW(entry->actionIs(selectorAction(600)), BfTable::BfTableException);
  startLog();
  entry->actionIs(selectorAction(601));
  EXPECT_THAT(logLines(), ElementsAre(modifyMemberLine(handle, 601)));
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
