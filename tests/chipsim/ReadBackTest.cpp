#include "ChipFixture.h"

#include "Pd/PipeStatus.h"

namespace chipsim_test {
namespace {

const std::string kGetFirstMember =
    "p4_pd_kestro_switch_mirrorLagPortActionProfile_get_first_member";
const std::string kGetNextMember = "p4_pd_kestro_switch_mirrorLagPortActionProfile_get_next_member";
const std::string kGetFirstGroup = "p4_pd_kestro_switch_mirrorLagPortActionProfile_get_first_group";
const std::string kGetNextGroup = "p4_pd_kestro_switch_mirrorLagPortActionProfile_get_next_group";

// The optional read-back of the action profile: members and groups walked in
// the chip's order, from the first to status 6 (not found).
class ReadBackTest : public ChipFixture {
 protected:
  std::vector<uint32_t> members() {
    std::vector<uint32_t> handles;
    uint32_t handle = 0;
    for (int status = pd.getFirstMember(1, 0, &handle); status == 0;
         status = pd.getNextMember(1, 0, handle, &handle))
      handles.push_back(handle);
    return handles;
  }
  std::vector<uint32_t> groups() {
    std::vector<uint32_t> handles;
    uint32_t handle = 0;
    for (int status = pd.getFirstGroup(1, 0, &handle); status == 0;
         status = pd.getNextGroup(1, 0, handle, &handle))
      handles.push_back(handle);
    return handles;
  }
};

TEST_F(ReadBackTest, AnEmptyProfileHasNoFirstMemberOrGroup) {
  uint32_t handle = 77;
  EXPECT_EQ(pd.getFirstMember(1, 0, &handle), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kGetFirstMember + "(sess=1, dev=0) = 6");
  EXPECT_EQ(pd.getFirstGroup(1, 0, &handle), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kGetFirstGroup + "(sess=1, dev=0) = 6");
  EXPECT_EQ(handle, 77u);
}

TEST_F(ReadBackTest, MembersAreWalkedInTheChipsOrderAndDeletedOnesSkipped) {
  const uint32_t a = addMember(10);
  const uint32_t b = addMember(11);
  const uint32_t c = addMember(12);
  EXPECT_EQ(members(), (std::vector<uint32_t>{a, b, c}));
  ASSERT_EQ(pd.delMember(1, 0, b), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(members(), (std::vector<uint32_t>{a, c}));
  uint32_t next = 0;
  EXPECT_EQ(pd.getNextMember(4, 0, a, &next), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(lastLine(), kGetNextMember + "(sess=4, dev=0, mbr=1) = 0 mbr=3");
  EXPECT_EQ(pd.getNextMember(4, 0, c, &next), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(lastLine(), kGetNextMember + "(sess=4, dev=0, mbr=3) = 6");
}

TEST_F(ReadBackTest, GroupsAreWalkedInTheChipsOrderAndDeletedOnesSkipped) {
  const uint32_t a = createGroup(3);
  const uint32_t b = createGroup(3);
  EXPECT_EQ(groups(), (std::vector<uint32_t>{a, b}));
  ASSERT_EQ(pd.delGroup(1, 0, a), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(groups(), (std::vector<uint32_t>{b}));
  uint32_t first = 0;
  EXPECT_EQ(pd.getFirstGroup(2, 0, &first), PIPE_STATUS_SUCCESS);
  EXPECT_EQ(lastLine(), kGetFirstGroup + "(sess=2, dev=0) = 0 grp=2");
}

TEST_F(ReadBackTest, AHandleThatNamesNothingEndsTheWalk) {
  const uint32_t a = addMember(10);
  ASSERT_EQ(pd.delMember(1, 0, a), PIPE_STATUS_SUCCESS);
  uint32_t next = 0;
  EXPECT_EQ(pd.getNextMember(1, 0, a, &next), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(pd.getNextMember(1, 0, 0, &next), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(pd.getNextGroup(1, 0, 99, &next), PIPE_STATUS_NOT_FOUND);
  EXPECT_EQ(pd.getNextGroup(1, 0, 0, &next), PIPE_STATUS_NOT_FOUND);
}

TEST_F(ReadBackTest, ABadDeviceOrANullOutIsRefused) {
  addMember(10);
  createGroup(2);
  uint32_t handle = 0;
  EXPECT_EQ(pd.getFirstMember(1, 5, &handle), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kGetFirstMember + "(sess=1, dev=5) = 3");
  EXPECT_EQ(pd.getFirstMember(1, 0, nullptr), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(lastLine(), kGetFirstMember + "(sess=1, dev=0) = 3 mbr=NULL");
  EXPECT_EQ(pd.getFirstGroup(1, 5, &handle), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(pd.getNextGroup(1, 0, 1, nullptr), PIPE_STATUS_INVALID_ARGUMENT);
}

}  // namespace
}  // namespace chipsim_test
