// Fuzzes the agent's configuration reader: any text is taken or refused with
// a ConfigError; a configuration taken writes back to JSON that reads to the
// same configuration.

#include <cstddef>
#include <cstdint>
#include <string>

#include "config/AgentConfig.h"
#include "config/ConfigError.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using mirrorlag_agent::AgentConfig;
  AgentConfig config;
  try {
    config = AgentConfig::fromText(std::string(reinterpret_cast<const char*>(data), size));
  } catch (const mirrorlag_agent::ConfigError&) {
    return 0;
  }
  try {
    if (!(AgentConfig::fromJson(config.toJson()) == config))
      __builtin_trap();
  } catch (const mirrorlag_agent::ConfigError&) {
    __builtin_trap();  // the running configuration must apply again
  }
  return 0;
}
