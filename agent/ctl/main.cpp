// mirrorlagctl --socket PATH COMMAND...: sends one command to the agent and
// prints its answer ("apply FILE" sends the file's text); `mirrorlagctl shell`
// takes the commands at a prompt. Exit status: 0 done, 1 refused or failed,
// 2 bad command line or no agent.

#include <cstdio>
#include <string>
#include <vector>

#include "ctl/ControlClient.h"
#include "ctl/Shell.h"

namespace {

constexpr int usageStatus = 2;

}  // namespace

int main(int argc, char** argv) {
  std::string socketPath = "/tmp/mirrorlag.sock";
  std::vector<std::string> words;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--socket" && i + 1 < argc)
      socketPath = argv[++i];
    else
      words.push_back(arg);
  }
  if (words.empty()) {
    std::fprintf(stderr, "usage: mirrorlagctl --socket PATH COMMAND [ARG...] | shell\n");
    return usageStatus;
  }
  if (words.size() == 1 && (words[0] == "--help" || words[0] == "help")) {
    std::printf("usage: mirrorlagctl --socket PATH COMMAND [ARG...] | shell\n%s",
                mirrorlag_agent::Shell::helpText().c_str());
    return 0;
  }
  const mirrorlag_agent::ControlClient client(socketPath);
  if (words.size() == 1 && words[0] == "shell")
    return mirrorlag_agent::Shell(client).run();
  const mirrorlag_agent::ControlClient::Answer answer = client.run(words);
  std::fputs(answer.output.c_str(), answer.status == 0 ? stdout : stderr);
  return answer.status;
}
