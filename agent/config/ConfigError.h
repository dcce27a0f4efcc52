#pragma once

#include <stdexcept>
#include <string>

namespace mirrorlag_agent {

// A configuration that the agent refuses, before it touches the chip: `path`
// is the JSON pointer of the fault ("/groups/0/members/1/id"; empty for the
// document itself) and the message says what is wrong there.
class ConfigError : public std::runtime_error {
 public:
  ConfigError(std::string path, const std::string& what)
      : std::runtime_error((path.empty() ? std::string("/") : path) + ": " + what),
        path_(std::move(path)) {}

  const std::string& path() const noexcept { return path_; }

 private:
  std::string path_;
};

}  // namespace mirrorlag_agent
