#include "RestartFixture.h"

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <map>

#include "support/ChipContents.h"
#include "support/PdFunctionNames.h"

namespace BfIngressMirrorLagGroup {

void RestartFixture::SetUp() {
  chipsim_config config{};
  chip.configDefault(&config);
  config.device_id = TableInstance::kDevice;
  config.entries = 4096;
  config.members = 1024;
  // Room for the groups that every restarted instance creates anew.
  config.groups = 4096;
  config.max_group_size = 8;
  ASSERT_EQ(chip.configure(&config), 0);
  ASSERT_EQ(chip.attach(nullptr), 0);
  chipName = base.str() + "-chip";
  chip.unlink(chipName.c_str());
  chipHandle = dlopen(CHIPSIM_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(chipHandle, nullptr) << dlerror();
}

void RestartFixture::TearDown() {
  const char* fault = chip.check();
  EXPECT_EQ(fault != nullptr ? std::string(fault) : "", "");
  chip.attach(nullptr);
  chip.unlink(chipName.c_str());
  if (chipHandle != nullptr)
    dlclose(chipHandle);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupTable>().liveObjects(), 0u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupTableHelper>().liveObjects(), 0u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<IngressMirrorLagGroupMatchSpec>().liveObjects(), 0u);
  EXPECT_EQ(Vel::AllocTrackTypeInfo::of<MbbVaultKey::VaultKeyManager>().liveObjects(), 0u);
}

void RestartFixture::attachNamedChip() {
  ASSERT_EQ(chip.attach(chipName.c_str()), 0);
}

std::unique_ptr<TableInstance> RestartFixture::start(
    const TableInstance::Attached& attached) const {
  return std::make_unique<TableInstance>(base.str(), capacity, chipHandle, attached);
}

pid_t RestartFixture::fork(const std::function<int()>& body) {
  const pid_t child = ::fork();
  if (child == 0)
    _exit(body());
  return child;
}

int RestartFixture::wait(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR)
      return -1000;
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

void RestartFixture::expectProgrammed(const WantedConfig& config, const TableInstance& instance) {
  const shadow_test::ChipContents contents = shadow_test::ChipContents::read();
  std::map<std::uint16_t, std::uint32_t> chipEntries;
  for (const auto& [handle, session] : contents.entries) {
    EXPECT_TRUE(chipEntries.emplace(session, handle).second) << "session " << session << " twice";
    EXPECT_EQ(config.entries.count(session), 1u) << "session " << session << " not wanted";
  }
  EXPECT_EQ(chipEntries.size(), config.entries.size());
  // One registry handle per entry, and it is the chip's.
  EXPECT_EQ(instance.registry().entries().size(), config.entries.size() + 1);
  EXPECT_EQ(instance.handlesBySession(), chipEntries);
  ASSERT_TRUE(contents.defaultEntry.has_value());
  EXPECT_EQ(instance.registry().entry(instance.table()->defaultMatchSpec()),
            *contents.defaultEntry);
}

std::size_t RestartFixture::expectActionProfileProgrammed(const WantedConfig& config,
                                                          const TableInstance& instance) {
  const shadow_test::ChipContents contents = shadow_test::ChipContents::read();
  std::set<std::uint32_t> members;
  for (const auto& [id, selector] : config.members)
    members.insert(instance.registry().member(BfnTable::BfnMemberId(id)));
  EXPECT_EQ(contents.members, members);
  for (const auto& [id, wanted] : config.groupMembers) {
    const std::uint32_t group = instance.registry().group(BfnTable::BfnGroupId(id));
    std::map<std::uint32_t, bool> expected;
    for (const auto& [memberId, active] : wanted)
      expected[instance.registry().member(BfnTable::BfnMemberId(memberId))] = active;
    const auto found = contents.groupMembers.find(group);
    EXPECT_NE(found, contents.groupMembers.end()) << "group " << id << " not in the chip";
    if (found != contents.groupMembers.end()) {
      EXPECT_EQ(found->second, expected) << "group " << id;
    }
  }
  return contents.groups.size() - std::min(contents.groups.size(), config.groups.size());
}

std::vector<std::string> RestartFixture::logLines() {
  const auto& lib = chipsim_test::chipsim();
  std::vector<std::string> lines;
  const std::uint32_t count = lib.logCount();
  for (std::uint32_t i = 0; i < count; ++i)
    lines.emplace_back(lib.logLine(i));
  return lines;
}

std::set<std::uint16_t> RestartFixture::addedSessions(const std::vector<std::string>& lines) {
  std::set<std::uint16_t> sessions;
  for (const std::string& line : lines) {
    if (line.rfind(chipsim_test::kAddEntry + "(", 0) != 0 &&
        line.rfind(chipsim_test::kAddEntryWithSelector + "(", 0) != 0)
      continue;
    const std::size_t at = line.find("mirror_session=");
    unsigned session = 0;
    if (at != std::string::npos &&
        std::sscanf(line.c_str() + at, "mirror_session=%u", &session) == 1)
      sessions.insert(static_cast<std::uint16_t>(session));
  }
  return sessions;
}

std::set<std::uint16_t> RestartFixture::chipSessions() {
  std::set<std::uint16_t> sessions;
  for (const auto& [handle, session] : shadow_test::ChipContents::read().entries)
    sessions.insert(session);
  return sessions;
}

}  // namespace BfIngressMirrorLagGroup
