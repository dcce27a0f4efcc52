#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "ChipFixture.h"
#include "NamedChip.h"
#include "Processes.h"
#include "ToolRun.h"

namespace chipsim_test {
namespace {

// Only a regular file of this user with mode 0600 is taken as a chip: a
// segment that anyone else made, or could change, could hold anything.
class ChipOwnershipTest : public ChipFixture {
 protected:
  void TearDown() override {
    pd.attach(nullptr);
    ChipFixture::TearDown();
  }

  std::string file() const { return "/dev/shm/" + chip.name(); }

  // Attaching the chip is refused with EPERM, naming `what`; so is the tool.
  void expectRefused(const std::string& what) const {
    const std::string fault =
        "its segment is not a file of this user with mode 0600 (" + what + ")";
    EXPECT_EQ(pd.attachExisting(chip.name().c_str()), EPERM);
    EXPECT_EQ(pd.lastFault(), fault);
    EXPECT_EQ(pd.attach(chip.name().c_str()), EPERM);
    const ToolRun run = ToolRun::of({"--chip", chip.name(), "dump"});
    EXPECT_EQ(run.exitStatus, 1);
    EXPECT_EQ(run.err, "chipsim: chip '" + chip.name() + "': " + fault + "\n");
  }

  NamedChip chip{"ownership"};
};

TEST_F(ChipOwnershipTest, AChipIsMadeAsAFileOfThisUserWithMode0600) {
  const mode_t before = umask(0);
  ASSERT_EQ(pd.attach(chip.name().c_str()), 0);
  umask(before);
  struct stat status {};
  ASSERT_EQ(stat(file().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0600u);
  EXPECT_EQ(status.st_uid, geteuid());
}

TEST_F(ChipOwnershipTest, ASegmentOfAnotherModeIsRefused) {
  ASSERT_EQ(pd.attach(chip.name().c_str()), 0);
  ASSERT_EQ(pd.attach(nullptr), 0);
  ASSERT_EQ(chmod(file().c_str(), 0644), 0);
  expectRefused("owner " + std::to_string(geteuid()) + ", mode 0644");
}

TEST_F(ChipOwnershipTest, ALinkIsNotFollowed) {
  ASSERT_EQ(pd.attach(chip.name().c_str()), 0);
  ASSERT_EQ(pd.attach(nullptr), 0);
  const NamedChip link("ownership-link");
  ASSERT_EQ(symlink(file().c_str(), ("/dev/shm/" + link.name()).c_str()), 0);
  EXPECT_EQ(pd.attachExisting(link.name().c_str()), ELOOP);
}

TEST_F(ChipOwnershipTest, AChipMadeByAProcessOfAnotherUserIsRefused) {
  if (geteuid() != 0)
    GTEST_SKIP() << "runs a process as another user, which only root may";
  constexpr uid_t kNobody = 65534;
  ASSERT_EQ(waitChild(runChild([&] {
              if (setgid(kNobody) != 0 || setuid(kNobody) != 0)
                return 2;
              return pd.attach(chip.name().c_str()) == 0 ? 0 : 1;
            })),
            0);
  expectRefused("owner " + std::to_string(kNobody) + ", mode 0600");
}

}  // namespace
}  // namespace chipsim_test
