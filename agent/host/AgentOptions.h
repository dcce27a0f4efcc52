#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "Pd/KestroSwitchPd.h"

namespace mirrorlag_agent {

// The agent's command line:
//   mirrorlag-agent --chip NAME --shadow NAME --config FILE --socket PATH
//                   [--state FILE] [--discard-state] [--pd-lib FILE] [--device N]
//                   [--pipe N] [--session N] [--trace NAME=LEVEL]...
struct AgentOptions {
  std::string chip = "mirrorlag";
  std::string shadow = "mirrorlag";
  std::string config;
  std::string socket = "/tmp/mirrorlag.sock";
  std::string state;
  bool discardState = false;
  std::string pdLib = "libchipsim.so";
  std::uint8_t device = 0;
  std::uint16_t pipe = P4_PD_ALL_PIPES;
  std::uint32_t session = 1;
  std::vector<std::string> traces;
  // Where the agent logs its changes; none when null.
  std::FILE* log = stdout;

  // Parses the command line; prints help or version and exits for --help and
  // --version, prints the fault and exits with status 2 for a bad one.
  static AgentOptions parse(int argc, char** argv);
};

}  // namespace mirrorlag_agent
