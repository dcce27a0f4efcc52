#pragma once

#include <optional>
#include <string>

#include "config/AgentConfig.h"

namespace mirrorlag_agent {

// The file that keeps the agent's running configuration across restarts,
// written atomically: a temporary file beside it, fsync, rename. A damaged
// file is refused with an std::runtime_error naming the file and the fault.
class StateFile {
 public:
  explicit StateFile(std::string path) : path_(std::move(path)) {}

  const std::string& path() const noexcept { return path_; }
  // The configuration kept; none when there is no file (or no path).
  std::optional<AgentConfig> read() const;
  void write(const AgentConfig& config) const;

 private:
  std::string path_;
};

}  // namespace mirrorlag_agent
