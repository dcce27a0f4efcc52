#pragma once

#include <string>
#include <vector>

#include "ctl/ControlClient.h"

namespace mirrorlag_agent {

// `mirrorlagctl shell`: the client's commands at a prompt, for people at a
// terminal. Line editing and history come from readline, the history kept
// between runs in ~/.mirrorlagctl_history; Tab completes the commands, their
// words and the ids of the running configuration (members, groups, sessions).
// `help` lists the commands; `quit` or end of input ends the shell.
class Shell {
 public:
  // The commands with their usage and a line of help each.
  static std::string helpText();
  explicit Shell(const ControlClient& client) : client_(client) {}

  // Runs until the end; 0, or the status of the last failed command.
  int run();

  // The words that complete `text` as word number `index` of a line whose
  // words so far are `words`.
  std::vector<std::string> completions(const std::vector<std::string>& words,
                                       const std::string& text) const;

 private:
  // The ids of the running configuration, read from the agent.
  void refreshIds();

  const ControlClient& client_;
  std::vector<std::string> memberIds_;
  std::vector<std::string> groupIds_;
  std::vector<std::string> sessions_;
};

}  // namespace mirrorlag_agent
