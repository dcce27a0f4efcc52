// mirrorlagctl --socket PATH COMMAND...: sends one command to the agent and
// prints its answer. "apply FILE" sends the file's text. Exit status: 0 done,
// 1 refused or failed, 2 bad command line or no agent.

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace {

constexpr int usageStatus = 2;

int usage() {
  std::fprintf(stderr, "usage: mirrorlagctl --socket PATH COMMAND [ARG...]\n");
  return usageStatus;
}

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
  if (words.empty())
    return usage();
  std::string body;
  if (words[0] == "apply") {
    if (words.size() != 2)
      return usage();
    std::ifstream in(words[1]);
    if (!in) {
      std::fprintf(stderr, "mirrorlagctl: cannot read %s\n", words[1].c_str());
      return usageStatus;
    }
    std::stringstream text;
    text << in.rdbuf();
    body = text.str();
    words.resize(1);
  }
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, socketPath.c_str(), sizeof address.sun_path - 1);
  const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
  if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
    std::fprintf(stderr, "mirrorlagctl: no agent on %s\n", socketPath.c_str());
    return usageStatus;
  }
  const std::string request = nlohmann::json{{"words", words}, {"body", body}}.dump() + "\n";
  if (::write(fd, request.data(), request.size()) != static_cast<ssize_t>(request.size()))
    return usageStatus;
  std::string reply;
  char buffer[4096];
  ssize_t got;
  while ((got = ::read(fd, buffer, sizeof buffer)) > 0)
    reply.append(buffer, static_cast<std::size_t>(got));
  ::close(fd);
  try {
    const nlohmann::json answer = nlohmann::json::parse(reply);
    const std::string output = answer.at("output").get<std::string>();
    const int status = answer.at("status").get<int>();
    std::fputs(output.c_str(), status == 0 ? stdout : stderr);
    return status;
  } catch (const std::exception&) {
    std::fprintf(stderr, "mirrorlagctl: bad answer from the agent\n");
    return usageStatus;
  }
}
