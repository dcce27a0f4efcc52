#include "host/StateFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "config/ConfigError.h"

namespace mirrorlag_agent {

std::optional<AgentConfig> StateFile::read() const {
  if (path_.empty())
    return std::nullopt;
  std::ifstream in(path_);
  if (!in)
    return std::nullopt;
  std::stringstream text;
  text << in.rdbuf();
  try {
    return AgentConfig::fromText(text.str());
  } catch (const ConfigError& e) {
    throw std::runtime_error("state file " + path_ + " is damaged: " + e.what() +
                             " (start with --discard-state to apply --config instead)");
  }
}

void StateFile::write(const AgentConfig& config) const {
  if (path_.empty())
    return;
  const std::string temporary = path_ + ".tmp";
  const std::string text = config.toJson().dump(2) + "\n";
  const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  if (fd < 0)
    throw std::runtime_error("cannot write " + temporary + ": " + std::strerror(errno));
  const bool written = ::write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  const bool synced = ::fsync(fd) == 0;
  ::close(fd);
  if (!written || !synced || std::rename(temporary.c_str(), path_.c_str()) != 0)
    throw std::runtime_error("cannot write " + path_ + ": " + std::strerror(errno));
}

}  // namespace mirrorlag_agent
