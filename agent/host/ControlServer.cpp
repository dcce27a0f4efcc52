#include "host/ControlServer.h"

#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "Vel/ActivityManager.h"

namespace mirrorlag_agent {

namespace {

volatile std::sig_atomic_t stopRequested = 0;

void requestStop(int) {
  stopRequested = 1;
}

constexpr int pollMillis = 200;
constexpr std::size_t maxRequest = 64 * 1024 * 1024;

// Reads one line; an empty string when the peer closed first.
std::string readLine(int fd) {
  std::string line;
  char buffer[4096];
  while (line.size() < maxRequest) {
    const ssize_t got = ::read(fd, buffer, sizeof buffer);
    if (got <= 0)
      break;
    line.append(buffer, static_cast<std::size_t>(got));
    if (line.back() == '\n')
      break;
  }
  return line;
}

void writeAll(int fd, const std::string& text) {
  std::size_t done = 0;
  while (done < text.size()) {
    const ssize_t wrote = ::write(fd, text.data() + done, text.size() - done);
    if (wrote <= 0)
      return;
    done += static_cast<std::size_t>(wrote);
  }
}

}  // namespace

ControlServer::ControlServer(AgentHost& host, std::string path)
    : host_(host), path_(std::move(path)) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path_.size() >= sizeof address.sun_path)
    throw std::runtime_error("socket path too long: " + path_);
  std::strcpy(address.sun_path, path_.c_str());
  listener_ = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  ::unlink(path_.c_str());
  const mode_t mask = ::umask(0177);
  const bool bound = ::bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  ::umask(mask);
  if (!bound || ::listen(listener_, 8) != 0)
    throw std::runtime_error("cannot listen on " + path_ + ": " + std::strerror(errno));
  struct sigaction action {};
  action.sa_handler = &requestStop;
  ::sigaction(SIGTERM, &action, nullptr);
  ::sigaction(SIGINT, &action, nullptr);
  ::signal(SIGPIPE, SIG_IGN);
}

ControlServer::~ControlServer() {
  if (listener_ >= 0)
    ::close(listener_);
  ::unlink(path_.c_str());
}

void ControlServer::run() {
  while (stopRequested == 0) {
    pollfd watched{listener_, POLLIN, 0};
    const int ready = ::poll(&watched, 1, pollMillis);
    if (ready > 0 && (watched.revents & POLLIN) != 0) {
      const int connection = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
      if (connection >= 0) {
        serve(connection);
        ::close(connection);
      }
    }
    Vel::ActivityManager::instance().drain();
  }
}

void ControlServer::serve(int connection) {
  nlohmann::json answer;
  try {
    const nlohmann::json request = nlohmann::json::parse(readLine(connection));
    const AgentHost::Answer result = host_.run(request.at("words").get<std::vector<std::string>>(),
                                               request.value("body", std::string()));
    answer = {{"status", result.status}, {"output", result.output}};
  } catch (const std::exception& e) {
    answer = {{"status", 1}, {"output", std::string("bad request: ") + e.what() + "\n"}};
  }
  writeAll(connection, answer.dump() + "\n");
}

}  // namespace mirrorlag_agent
