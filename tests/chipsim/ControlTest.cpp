#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "ChipFixture.h"
#include "NamedChip.h"
#include "Pd/PipeStatus.h"
#include "chipsim/src/ChipHeader.h"

namespace chipsim_test {
namespace {

class ControlTest : public ChipFixture {
 protected:
  void TearDown() override {
    ChipFixture::TearDown();
    pd.attach(nullptr);
  }
};

TEST_F(ControlTest, TheDefaultMakeUp) {
  chipsim_config config{};
  pd.configDefault(&config);
  EXPECT_EQ(config.device_id, 0);
  EXPECT_EQ(config.pipes, 4u);
  EXPECT_EQ(config.entries, 65536u);
  EXPECT_EQ(config.members, 16384u);
  EXPECT_EQ(config.groups, 4096u);
  EXPECT_EQ(config.max_group_size, 256u);
  EXPECT_EQ(config.log_lines, 16384u);
}

TEST_F(ControlTest, ConfigureRefusesMakeUpsOutOfRange) {
  chipsim_config config = smallConfig();
  config.entries = 0;
  EXPECT_EQ(pd.configure(&config), EINVAL);
  config = smallConfig();
  config.max_group_size = 4097;
  EXPECT_EQ(pd.configure(&config), EINVAL);
  config = smallConfig();
  config.pipes = 65;
  EXPECT_EQ(pd.configure(&config), EINVAL);
  config = smallConfig();
  config.device_id = -1;
  EXPECT_EQ(pd.configure(&config), EINVAL);
  config = smallConfig();
  config.groups = 1u << 20;
  config.max_group_size = 4096;  // 32 GiB of group slots
  EXPECT_EQ(pd.configure(&config), EINVAL);
  EXPECT_EQ(pd.configure(nullptr), EINVAL);
}

TEST_F(ControlTest, TheChipHasTheConfiguredMakeUp) {
  chipsim_config config{};
  ASSERT_EQ(pd.configGet(&config), 0);
  EXPECT_EQ(config.entries, 4u);
  EXPECT_EQ(config.max_group_size, 3u);
  EXPECT_EQ(pd.configGet(nullptr), EINVAL);
  EXPECT_STREQ(pd.name(), "(private)");
}

TEST_F(ControlTest, TheDeviceIdIsPartOfTheMakeUp) {
  chipsim_config config = smallConfig();
  config.device_id = 3;
  ASSERT_EQ(pd.configure(&config), 0);
  ASSERT_EQ(pd.reset(), 0);
  ActionSpec spec{7};
  uint32_t member = 0;
  EXPECT_EQ(pd.addMember(1, {0, 0}, &spec, &member), PIPE_STATUS_INVALID_ARGUMENT);
  EXPECT_EQ(pd.addMember(1, {3, 0}, &spec, &member), PIPE_STATUS_SUCCESS);
}

TEST_F(ControlTest, ResetEmptiesTheChip) {
  ASSERT_EQ(pd.setProperty(1, 0, 1, 1), PIPE_STATUS_SUCCESS);
  uint32_t member = addMember(7);
  uint32_t group = createGroup(2);
  addToGroup(group, member);
  addEntry(5, member);
  uint32_t entry = 0;
  ASSERT_EQ(pd.setDefaultEntry(1, kAllPipes, member, &entry), PIPE_STATUS_SUCCESS);
  ASSERT_EQ(pd.failNext(kAddMember.c_str(), 9, 1), 0);
  ASSERT_EQ(pd.reset(), 0);
  EXPECT_EQ(pd.entries(), 0u);
  EXPECT_EQ(pd.members(), 0u);
  EXPECT_EQ(pd.groups(), 0u);
  EXPECT_EQ(pd.logCount(), 0u);
  EXPECT_EQ(pd.calls(kAddEntry.c_str()), 0);
  uint16_t selector = 0;
  EXPECT_EQ(pd.lookup(7, 0, &selector), CHIPSIM_MISS);  // no default entry either
  member = addMember(7);                                // no fault left
  addEntry(5, member, 0);
  MatchSpec match{5};
  EXPECT_EQ(pd.addEntry(1, {0, 1}, &match, member, &entry), 4);  // scope: all pipes again
}

TEST_F(ControlTest, CallsCountsEveryCallOfAFunction) {
  uint32_t member = addMember(7);
  pd.delMember(1, 0, member + 1);
  pd.delMember(1, 0, member);
  EXPECT_EQ(pd.calls(kAddMember.c_str()), 1);
  EXPECT_EQ(pd.calls(kDelMember.c_str()), 2);
  EXPECT_EQ(pd.calls(kDelGroup.c_str()), 0);
  EXPECT_EQ(pd.calls("del_member"), -1);
  EXPECT_EQ(pd.calls(nullptr), -1);
}

TEST_F(ControlTest, TheLogKeepsItsLastLines) {
  for (uint32_t handle = 1; handle <= 70; ++handle) {
    pd.delGroup(1, 0, handle);
  }
  ASSERT_EQ(pd.logCount(), 64u);
  EXPECT_EQ(logLines().front(), kDelGroup + "(sess=1, dev=0, grp=7) = 6");
  EXPECT_EQ(logLines().back(), kDelGroup + "(sess=1, dev=0, grp=70) = 6");
  EXPECT_EQ(pd.logLine(64), nullptr);
  pd.logClear();
  EXPECT_EQ(pd.logCount(), 0u);
  EXPECT_EQ(pd.logLine(0), nullptr);
  pd.delGroup(1, 0, 1);
  EXPECT_EQ(logLines(), std::vector<std::string>{kDelGroup + "(sess=1, dev=0, grp=1) = 6"});
}

TEST_F(ControlTest, AttachRefusesBadNames) {
  EXPECT_EQ(pd.attach(""), EINVAL);
  EXPECT_EQ(pd.attach("/"), EINVAL);
  EXPECT_EQ(pd.attach("/a/b"), EINVAL);
  EXPECT_EQ(pd.attach(std::string(300, 'x').c_str()), EINVAL);
  EXPECT_EQ(pd.attachExisting(nullptr), EINVAL);
  EXPECT_EQ(pd.unlink(nullptr), EINVAL);
  EXPECT_STREQ(pd.name(), "(private)");  // still on the chip it had
}

TEST_F(ControlTest, AttachExistingWantsAnExistingChip) {
  NamedChip chip("existing");
  EXPECT_EQ(pd.attachExisting(chip.c_str()), ENOENT);
  ASSERT_EQ(pd.attach(chip.c_str()), 0);
  ASSERT_EQ(pd.attach(nullptr), 0);
  EXPECT_EQ(pd.attachExisting(chip.c_str()), 0);
  EXPECT_EQ(pd.name(), chip.name());
}

TEST_F(ControlTest, ANamedChipKeepsItsObjectsBetweenAttachments) {
  NamedChip chip("keeps");
  ASSERT_EQ(pd.attach(chip.name().substr(1).c_str()), 0);  // without the leading slash
  EXPECT_EQ(pd.name(), chip.name());
  addEntry(5, addMember(7));
  ASSERT_EQ(pd.attach(nullptr), 0);
  EXPECT_EQ(pd.entries(), 0u);
  ASSERT_EQ(pd.attach(chip.c_str()), 0);
  EXPECT_EQ(pd.entries(), 1u);
  EXPECT_EQ(pd.members(), 1u);
  EXPECT_EQ(logLines().size(), 2u);
}

TEST_F(ControlTest, ANamedChipIsReadableByItsOwnerOnly) {
  NamedChip chip("mode");
  ASSERT_EQ(pd.attach(chip.c_str()), 0);
  struct stat status {};
  ASSERT_EQ(stat(("/dev/shm" + chip.name()).c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(ControlTest, ResettingANamedChipKeepsItsMakeUp) {
  NamedChip chip("reset");
  ASSERT_EQ(pd.attach(chip.c_str()), 0);
  addMember(7);
  chipsim_config bigger = smallConfig();
  bigger.entries = 100;
  ASSERT_EQ(pd.configure(&bigger), 0);
  ASSERT_EQ(pd.reset(), 0);
  EXPECT_EQ(pd.members(), 0u);
  chipsim_config config{};
  ASSERT_EQ(pd.configGet(&config), 0);
  EXPECT_EQ(config.entries, 4u);
}

TEST_F(ControlTest, ASegmentHoldingSomethingElseIsRefused) {
  NamedChip chip("garbage");
  int fd = shm_open(chip.c_str(), O_RDWR | O_CREAT, 0600);
  ASSERT_GE(fd, 0);
  std::string junk(8192, '\xff');
  ASSERT_EQ(write(fd, junk.data(), junk.size()), static_cast<ssize_t>(junk.size()));
  close(fd);
  EXPECT_EQ(pd.attach(chip.c_str()), EINVAL);
  EXPECT_EQ(pd.attachExisting(chip.c_str()), EINVAL);
  EXPECT_STREQ(pd.name(), "(private)");
}

TEST_F(ControlTest, CheckFindsAnIncoherentChip) {
  NamedChip chip("check");
  ASSERT_EQ(pd.attach(chip.c_str()), 0);
  addMember(7);
  int fd = shm_open(chip.c_str(), O_RDWR, 0);
  ASSERT_GE(fd, 0);
  void* base =
      mmap(nullptr, sizeof(chipsim::ChipHeader), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  close(fd);
  ASSERT_NE(base, MAP_FAILED);
  auto* header = static_cast<chipsim::ChipHeader*>(base);
  header->members.used = 0;
  EXPECT_EQ(fault(), "members: 1 live, counted 0");
  header->members.used = 1;
  munmap(base, sizeof(chipsim::ChipHeader));
}

TEST_F(ControlTest, DumpWantsAFile) {
  EXPECT_EQ(pd.dump(nullptr), EINVAL);
}

}  // namespace
}  // namespace chipsim_test
