#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <string>
#include <vector>

namespace mirrorlag_agent {

// What a command printed (stdout and stderr) and its exit status.
struct Outcome {
  int status;
  std::string output;
};

// The agent as a real process on a chip and shadow tables of the test's own,
// driven through its control client; the agent's log goes to logPath. The
// configuration file starts as kConfig.
class AgentFixture : public testing::Test {
 protected:
  // Three members (selectors 10, 11, 12), group 100 of size 8 holding them
  // (member 3 inactive), session 5 on the group, session 6 on member 1, the
  // default entry on member 1.
  static const char* const kConfig;

  void SetUp() override;
  void TearDown() override;

  // Starts the agent with the fixture's options and `extra` ones (an option
  // the fixture gives is given the new value), and waits for its socket.
  void startAgent(const std::vector<std::string>& extra = {});
  // Starts the agent and waits for it to end; its exit status and what it
  // printed on stderr.
  Outcome runAgentToEnd(const std::vector<std::string>& extra = {});
  void stopAgent(int signal);

  static Outcome run(const std::string& command);
  Outcome ctl(const std::string& arguments) const;
  // The chip tool's command on the fixture's chip.
  Outcome chipTool(const std::string& arguments) const;
  std::vector<std::string> chipLog() const;
  // The chip's objects as the chip tool dumps them.
  std::string chipDump() const;
  // The bytes of the three shadow tables.
  std::string shadowBytes() const;
  std::string agentLog() const;
  void writeConfig(const std::string& text) const;

  std::string chipName, shadowName, socketPath, statePath, configPath, logPath;
  pid_t agent = 0;

 private:
  std::vector<std::string> agentArguments(const std::vector<std::string>& extra) const;
  pid_t spawnAgent(const std::vector<std::string>& extra, const std::string& errors) const;
};

}  // namespace mirrorlag_agent
