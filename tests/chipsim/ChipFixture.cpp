#include "ChipFixture.h"

#include "Pd/PipeStatus.h"

namespace chipsim_test {

chipsim_config ChipFixture::smallConfig() {
  return {.device_id = 0,
          .pipes = 4,
          .entries = 4,
          .members = 4,
          .groups = 2,
          .max_group_size = 3,
          .log_lines = 64};
}

void ChipFixture::SetUp() {
  chipsim_config config = smallConfig();
  ASSERT_EQ(pd.configure(&config), 0);
  ASSERT_EQ(pd.attach(nullptr), 0);
}

void ChipFixture::TearDown() {
  EXPECT_EQ(fault(), "");
}

std::string ChipFixture::fault() {
  const char* found = chipsim().check();
  return found ? found : "";
}

uint32_t ChipFixture::addMember(uint16_t selector) {
  ActionSpec spec{selector};
  uint32_t handle = 0;
  EXPECT_EQ(pd.addMember(1, kAllPipes, &spec, &handle), PIPE_STATUS_SUCCESS);
  return handle;
}

uint32_t ChipFixture::createGroup(uint32_t size) {
  uint32_t handle = 0;
  EXPECT_EQ(pd.createGroup(1, kAllPipes, size, &handle), PIPE_STATUS_SUCCESS);
  return handle;
}

uint32_t ChipFixture::addEntry(uint16_t key, uint32_t member, uint32_t pipe) {
  MatchSpec match{key};
  uint32_t handle = 0;
  EXPECT_EQ(pd.addEntry(1, {0, pipe}, &match, member, &handle), PIPE_STATUS_SUCCESS);
  return handle;
}

uint32_t ChipFixture::addGroupEntry(uint16_t key, uint32_t group, uint32_t pipe) {
  MatchSpec match{key};
  uint32_t handle = 0;
  EXPECT_EQ(pd.addEntryWithSelector(1, {0, pipe}, &match, group, &handle), PIPE_STATUS_SUCCESS);
  return handle;
}

void ChipFixture::addToGroup(uint32_t group, uint32_t member) {
  EXPECT_EQ(pd.addMemberToGroup(1, 0, group, member), PIPE_STATUS_SUCCESS);
}

void ChipFixture::addMembersAGroupAndEntries() {
  const uint32_t member = addMember(7);
  addMember(8);
  const uint32_t group = createGroup(3);
  addToGroup(group, member);
  addEntry(5, member);
  addGroupEntry(6, group);
}

int64_t ChipFixture::totalCalls() {
  int64_t total = 0;
  for (const std::string& name : kPdFunctions) {
    total += chipsim().calls(name.c_str());
  }
  return total;
}

std::vector<std::string> ChipFixture::logLines() {
  std::vector<std::string> lines;
  for (uint32_t i = 0; i < chipsim().logCount(); ++i) {
    lines.emplace_back(chipsim().logLine(i));
  }
  return lines;
}

std::string ChipFixture::lastLine() {
  uint32_t count = chipsim().logCount();
  const char* line = count ? chipsim().logLine(count - 1) : nullptr;
  return line ? line : "";
}

}  // namespace chipsim_test
