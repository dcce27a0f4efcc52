#pragma once

#include <string>
#include <vector>

namespace mirrorlag_agent {

// One command sent to the agent over its control socket, and its answer.
class ControlClient {
 public:
  struct Answer {
    int status = 0;  // 0 done, 1 refused or failed, 2 no agent or a bad answer
    std::string output;
  };

  explicit ControlClient(std::string socketPath) : socketPath_(std::move(socketPath)) {}

  // `apply FILE` sends the file's text; every other command its words.
  Answer run(std::vector<std::string> words) const;

 private:
  Answer send(const std::vector<std::string>& words, const std::string& body) const;

  std::string socketPath_;
};

}  // namespace mirrorlag_agent
