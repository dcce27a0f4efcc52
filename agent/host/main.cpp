// mirrorlag-agent: the reference host of the plug-in (see AgentHost).

#include <cstdio>
#include <exception>

#include "Vel/Exception.h"
#include "Vel/TraceHandle.h"
#include "host/AgentHost.h"
#include "host/AgentOptions.h"
#include "host/ControlServer.h"

int main(int argc, char** argv) {
  using namespace mirrorlag_agent;
  const AgentOptions options = AgentOptions::parse(argc, argv);
  try {
    Vel::TraceHandle::levelsIsFromEnvironment();
    for (const std::string& setting : options.traces)
      Vel::TraceHandle::levelsIs(setting);
    AgentHost host(options);
    ControlServer server(host, options.socket);
    std::printf("mirrorlag-agent: serving %s\n", options.socket.c_str());
    std::fflush(stdout);
    server.run();
    std::printf("mirrorlag-agent: stopped\n");
    return 0;
  } catch (const Vel::Exception& e) {
    std::fprintf(stderr, "mirrorlag-agent: %s\n", e.message().c_str());
    return 1;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "mirrorlag-agent: %s\n", e.what());
    return 1;
  }
}
