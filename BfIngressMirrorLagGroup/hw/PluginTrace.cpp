#include "BfIngressMirrorLagGroup/hw/PluginTrace.h"

namespace BfIngressMirrorLagGroup {

const Vel::TraceHandle& pluginTrace() {
  static const Vel::TraceHandle handle("BfIngressMirrorLagGroup");
  return handle;
}

void writeTracePoint(unsigned level, unsigned line, const char* label, std::string_view message) {
  if (auto trace = Vel::TraceHelper::createIfEnabled(pluginTrace(), level)) {
    *trace << message;
    trace->trace(tableSourcePath, line, label);
  }
}

}  // namespace BfIngressMirrorLagGroup
