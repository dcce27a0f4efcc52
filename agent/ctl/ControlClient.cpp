#include "ctl/ControlClient.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <sstream>

#include <nlohmann/json.hpp>

namespace mirrorlag_agent {

namespace {

constexpr int unreachable = 2;

}  // namespace

ControlClient::Answer ControlClient::run(std::vector<std::string> words) const {
  std::string body;
  if (!words.empty() && words[0] == "apply") {
    if (words.size() != 2)
      return {unreachable, "usage: apply FILE\n"};
    std::ifstream in(words[1]);
    if (!in)
      return {unreachable, "cannot read " + words[1] + "\n"};
    std::stringstream text;
    text << in.rdbuf();
    body = text.str();
    words.resize(1);
  }
  return send(words, body);
}

ControlClient::Answer ControlClient::send(const std::vector<std::string>& words,
                                          const std::string& body) const {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, socketPath_.c_str(), sizeof address.sun_path - 1);
  const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (fd < 0 || ::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
    if (fd >= 0)
      ::close(fd);
    return {unreachable, "no agent on " + socketPath_ + "\n"};
  }
  const std::string request = nlohmann::json{{"words", words}, {"body", body}}.dump() + "\n";
  std::size_t sent = 0;
  while (sent < request.size()) {
    const ssize_t wrote = ::write(fd, request.data() + sent, request.size() - sent);
    if (wrote <= 0)
      break;
    sent += static_cast<std::size_t>(wrote);
  }
  std::string reply;
  char buffer[4096];
  ssize_t got;
  while ((got = ::read(fd, buffer, sizeof buffer)) > 0)
    reply.append(buffer, static_cast<std::size_t>(got));
  ::close(fd);
  try {
    const nlohmann::json answer = nlohmann::json::parse(reply);
    return {answer.at("status").get<int>(), answer.at("output").get<std::string>()};
  } catch (const std::exception&) {
    return {unreachable, "bad answer from the agent\n"};
  }
}

}  // namespace mirrorlag_agent
