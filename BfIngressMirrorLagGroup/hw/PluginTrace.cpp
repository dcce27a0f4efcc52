#include "BfIngressMirrorLagGroup/hw/PluginTrace.h"

namespace BfIngressMirrorLagGroup {

const Vel::TraceHandle& pluginTrace() {
  static const Vel::TraceHandle handle("BfIngressMirrorLagGroup");
  return handle;
}

}  // namespace BfIngressMirrorLagGroup
