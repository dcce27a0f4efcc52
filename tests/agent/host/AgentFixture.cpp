#include "AgentFixture.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <thread>

#include "MbbVaultKey/VaultKeyManager.h"
#include "support/ChipsimLibrary.h"

namespace mirrorlag_agent {

namespace {

constexpr int kStartTries = 200;
constexpr auto kStartPause = std::chrono::milliseconds(50);
constexpr int kExecFailed = 127;

std::string fileText(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

}  // namespace

const char* const AgentFixture::kConfig = R"({
  "members": [ {"id": 1, "selector": 10}, {"id": 2, "selector": 11}, {"id": 3, "selector": 12} ],
  "groups":  [ {"id": 100, "size": 8,
                "members": [ {"id": 1}, {"id": 2}, {"id": 3, "active": false} ]} ],
  "entries": [ {"session": 5, "group": 100}, {"session": 6, "member": 1} ],
  "default": {"member": 1}
})";

void AgentFixture::SetUp() {
  const std::string tag = "agent-test-" + std::to_string(getpid());
  chipName = tag + "-chip";
  shadowName = "/" + tag;
  socketPath = "/tmp/" + tag + ".sock";
  statePath = "/tmp/" + tag + ".state";
  configPath = "/tmp/" + tag + ".json";
  logPath = "/tmp/" + tag + ".log";
  writeConfig(kConfig);
  std::remove(statePath.c_str());
  std::remove(logPath.c_str());
}

void AgentFixture::TearDown() {
  stopAgent(SIGTERM);
  chipsim_test::chipsim().unlink(chipName.c_str());
  MbbVaultKey::VaultKeyManager::unlink(shadowName);
  MbbVaultKey::VaultKeyManager::unlink(shadowName + "-other");
  shm_unlink(("/" + chipName + "-agent").c_str());
  for (const std::string& path : {statePath, configPath, logPath, logPath + ".err", socketPath})
    std::remove(path.c_str());
}

std::vector<std::string> AgentFixture::agentArguments(const std::vector<std::string>& extra) const {
  std::vector<std::string> arguments = {MIRRORLAG_AGENT, "--chip",   chipName,   "--shadow",
                                        shadowName,      "--config", configPath, "--socket",
                                        socketPath,      "--state",  statePath};
  // An option given again in `extra` replaces the fixture's value.
  for (std::size_t i = 0; i < extra.size(); ++i) {
    const auto given = std::find(arguments.begin(), arguments.end(), extra[i]);
    if (given != arguments.end() && given + 1 != arguments.end() && i + 1 < extra.size()) {
      *(given + 1) = extra[++i];
    } else {
      arguments.push_back(extra[i]);
    }
  }
  return arguments;
}

pid_t AgentFixture::spawnAgent(const std::vector<std::string>& extra,
                               const std::string& errors) const {
  const std::vector<std::string> arguments = agentArguments(extra);
  const pid_t child = fork();
  if (child == 0) {
    const int out = open(logPath.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    dup2(out, STDOUT_FILENO);
    const int err = open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    dup2(err, STDERR_FILENO);
    std::vector<char*> argv;
    for (const std::string& argument : arguments)
      argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    execv(argv[0], argv.data());
    _exit(kExecFailed);
  }
  return child;
}

void AgentFixture::startAgent(const std::vector<std::string>& extra) {
  // A killed agent leaves its socket file behind.
  unlink(socketPath.c_str());
  const std::string errors = logPath + ".err";
  agent = spawnAgent(extra, errors);
  for (int tries = 0; tries < kStartTries; ++tries) {
    struct stat status {};
    if (stat(socketPath.c_str(), &status) == 0) {
      EXPECT_EQ(status.st_mode & 0777, 0600u);
      return;
    }
    std::this_thread::sleep_for(kStartPause);
  }
  FAIL() << "the agent did not start: " << fileText(errors);
}

Outcome AgentFixture::runAgentToEnd(const std::vector<std::string>& extra) {
  const std::string errors = logPath + ".err";
  const pid_t child = spawnAgent(extra, errors);
  int status = 0;
  waitpid(child, &status, 0);
  Outcome outcome{WIFEXITED(status) ? WEXITSTATUS(status) : -1, fileText(errors)};
  std::remove(errors.c_str());
  return outcome;
}

void AgentFixture::stopAgent(int signal) {
  if (agent <= 0)
    return;
  kill(agent, signal);
  int status = 0;
  waitpid(agent, &status, 0);
  agent = 0;
}

Outcome AgentFixture::run(const std::string& command) {
  Outcome result{0, ""};
  FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  char buffer[4096];
  std::size_t got;
  while ((got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0)
    result.output.append(buffer, got);
  result.status = WEXITSTATUS(pclose(pipe));
  return result;
}

Outcome AgentFixture::ctl(const std::string& arguments) const {
  return run(std::string(MIRRORLAGCTL) + " --socket " + socketPath + " " + arguments);
}

Outcome AgentFixture::chipTool(const std::string& arguments) const {
  return run(std::string(CHIPSIM_TOOL) + " --chip " + chipName + " " + arguments);
}

std::vector<std::string> AgentFixture::chipLog() const {
  std::vector<std::string> lines;
  std::istringstream log(chipTool("log").output);
  for (std::string line; std::getline(log, line);)
    lines.push_back(line);
  return lines;
}

std::string AgentFixture::chipDump() const {
  return chipTool("dump").output;
}

std::string AgentFixture::shadowBytes() const {
  std::string bytes;
  for (const std::string& table : {MbbVaultKey::VaultKeyManager::mbbTableName(shadowName),
                                   MbbVaultKey::VaultKeyManager::adtTableName(shadowName),
                                   MbbVaultKey::VaultKeyManager::selGrpTableName(shadowName)})
    bytes += fileText("/dev/shm" + table);
  return bytes;
}

std::string AgentFixture::agentLog() const {
  return fileText(logPath);
}

void AgentFixture::writeConfig(const std::string& text) const {
  std::ofstream(configPath) << text;
}

}  // namespace mirrorlag_agent
