#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ActionProfileFixture.h"
#include "Vel/Allocate.h"
#include "support/ScratchShadowBase.h"
#include "support/ShadowWalk.h"

namespace BfIngressMirrorLagGroup {
namespace {

using testing::IsEmpty;

// The state machine with a key manager that has shadow tables, bound to the
// PD object: members and groups made through the configuration are recorded
// under the anonymous keys of their ids, and their deletes remove the records.
class ShadowRecordingTest : public ActionProfileFixture {
 protected:
  void SetUp() override {
    ActionProfileFixture::SetUp();
    keys = Vel::allocate<MbbVaultKey::VaultKeyManager>(base.str(), capacity);
    helper->pdLib()->vaultKeyManagerIs(keys);
    sm = Sm::IngressMirrorLagGroupActionProfileSmIs(profile, helper, keys, statusManager);
    sm->sessionHandleIs(kSmSession);
  }
  void TearDown() override {
    ActionProfileFixture::TearDown();
    keys = nullptr;
  }

  std::vector<BfnMbbShared::AdtEntryConfig> memberRecords() const {
    return shadow_test::walkShadow(keys->adtVaultTableConfig()).records;
  }
  std::vector<BfnMbbShared::SelGrpEntryConfig> groupRecords() const {
    return shadow_test::walkShadow(keys->selGrpVaultTableConfig()).records;
  }

  shadow_test::ScratchShadowBase base{"aprecord"};
  MbbVaultKey::ShadowCapacity capacity{16, 16, 8};
  Vel::Ptr<MbbVaultKey::VaultKeyManager> keys;
};

TEST_F(ShadowRecordingTest, AMemberIsRecordedUnderItsAnonymousKeyUntilItIsDeleted) {
  memberIs(5, 500);
  const auto records = memberRecords();
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(keys->anonId(records[0].key()), 5u);
  EXPECT_TRUE(MbbVaultKey::VaultKeyManager::isAnon(records[0].key()));
  EXPECT_EQ(records[0].memberHandle(), memberHandle(5));
  // A modify keeps the record as it is.
  profile->entry(BfnTable::BfnMemberId(5))->actionIs(selectorAction(501));
  EXPECT_EQ(memberRecords().size(), 1u);
  EXPECT_EQ(memberRecords()[0].memberHandle(), memberHandle(5));
  profile->entryDel(BfnTable::BfnMemberId(5));
  EXPECT_THAT(memberRecords(), IsEmpty());
}

TEST_F(ShadowRecordingTest, AFailedAddRecordsNothing) {
  ASSERT_EQ(chip.failNext(chipsim_test::kAddMember.c_str(), 2, 1), 0);
  EXPECT_THROW(memberIs(5, 500), BfTable::BfNoSysResources);
  EXPECT_THAT(memberRecords(), IsEmpty());
}

TEST_F(ShadowRecordingTest, AFailedDeleteKeepsTheRecord) {
  memberIs(5, 500);
  ASSERT_EQ(chip.failNext(chipsim_test::kDelMember.c_str(), 3, 1), 0);
  EXPECT_THROW(profile->entryDel(BfnTable::BfnMemberId(5)), BfTable::BfTableException);
  ASSERT_EQ(memberRecords().size(), 1u);
  EXPECT_EQ(memberRecords()[0].memberHandle(), memberHandle(5));
}

TEST_F(ShadowRecordingTest, AGroupIsRecordedUnderItsAnonymousKeyUntilItIsDeleted) {
  memberIs(1, 100);
  groupIs(10, 500, 1);
  const auto records = groupRecords();
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(keys->anonId(records[0].key()), 10u);
  EXPECT_EQ(records[0].groupHandle(), groupHandle(10));
  EXPECT_EQ(records[0].maxGroupSize(), 120u);
  EXPECT_EQ(records[0].devPipeId(), kPipe);
  profile->groupDel(BfnTable::BfnGroupId(10));
  EXPECT_THAT(groupRecords(), IsEmpty());
  // The member's record stays.
  EXPECT_EQ(memberRecords().size(), 1u);
}

}  // namespace
}  // namespace BfIngressMirrorLagGroup
