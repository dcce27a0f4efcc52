#include "host/AgentOptions.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <cstdlib>

namespace mirrorlag_agent {

AgentOptions AgentOptions::parse(int argc, char** argv) {
  AgentOptions options;
  CLI::App app("mirrorlag-agent: the reference host of the ingressMirrorLagGroup plug-in");
  app.set_version_flag("--version", "mirrorlag-agent 0.1.0");
  app.add_option("--chip", options.chip, "name of the chip to attach (made when absent)")
      ->capture_default_str();
  app.add_option("--shadow", options.shadow, "base name of the shadow tables")
      ->capture_default_str();
  app.add_option("--config", options.config, "JSON configuration to apply at start");
  app.add_option("--socket", options.socket, "control socket path")->capture_default_str();
  app.add_option("--state", options.state,
                 "file that keeps the running configuration across restarts");
  app.add_flag("--discard-state", options.discardState,
               "start from --config even when the state file exists");
  app.add_option("--pd-lib", options.pdLib, "PD library file")->capture_default_str();
  // Read as a number: CLI11 takes a byte for a character.
  unsigned device = options.device;
  app.add_option("--device", device, "device id")
      ->check(CLI::Range(0u, unsigned{UINT8_MAX}))
      ->capture_default_str();
  app.add_option("--pipe", options.pipe, "pipe id (65535: all pipes)")->capture_default_str();
  app.add_option("--session", options.session, "SDK session id")->capture_default_str();
  app.add_option("--trace", options.traces, "trace level, NAME=LEVEL (repeatable)");
  try {
    app.parse(argc, argv);
    options.device = static_cast<std::uint8_t>(device);
  } catch (const CLI::ParseError& e) {
    std::exit(app.exit(e) == 0 ? 0 : 2);
  }
  return options;
}

}  // namespace mirrorlag_agent
