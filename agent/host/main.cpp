// mirrorlag-agent: the reference host of the plug-in (see AgentHost).

#include <cstdio>
#include <exception>

#include "Vel/TraceHandle.h"
#include "host/AgentHost.h"
#include "host/AgentOptions.h"
#include "host/ControlServer.h"

int main(int argc, char** argv) {
  using namespace mirrorlag_agent;
  const AgentOptions options = AgentOptions::parse(argc, argv);
  try {
    Vel::TraceHandle::levelsIsFromEnvironment();
    AgentHost host(options);
    for (const std::string& line : host.startLog())
      std::printf("mirrorlag-agent: %s\n", line.c_str());
    ControlServer server(host, options.socket);
    std::printf("mirrorlag-agent: serving %s\n", options.socket.c_str());
    std::fflush(stdout);
    server.run();
    std::printf("mirrorlag-agent: stopped\n");
    return 0;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "mirrorlag-agent: %s\n", e.what());
    return 1;
  }
}
