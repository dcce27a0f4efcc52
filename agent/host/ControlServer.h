#pragma once

#include <string>

#include "host/AgentHost.h"

namespace mirrorlag_agent {

// The agent's event loop: one thread that polls its UNIX control socket
// (mode 0600) and answers one command per connection, drains the framework's
// deferred notifications after each, and ends on SIGTERM or SIGINT.
//
// A request is one line of JSON, {"words": [...], "body": "..."}; the answer
// one line, {"status": 0 or 1, "output": "..."}.
class ControlServer {
 public:
  ControlServer(AgentHost& host, std::string path);
  ~ControlServer();
  ControlServer(const ControlServer&) = delete;
  ControlServer& operator=(const ControlServer&) = delete;

  // Serves until a stop signal arrives.
  void run();

 private:
  void serve(int connection);

  AgentHost& host_;
  std::string path_;
  int listener_ = -1;
};

}  // namespace mirrorlag_agent
