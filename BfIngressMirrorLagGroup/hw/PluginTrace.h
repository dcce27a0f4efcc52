#pragma once

#include <string_view>

#include "BfIngressMirrorLagGroup/hw/TableSourcePath.h"
#include "Vel/TraceHandle.h"
#include "Vel/TraceHelper.h"

namespace BfIngressMirrorLagGroup {

// The plug-in's one trace handle, named "BfIngressMirrorLagGroup", made on first
// use and shared by the match table and the action-profile reactors.
const Vel::TraceHandle& pluginTrace();

// Writes `message` at `level`, reported at `line` of the table description under
// `label`; for tracePoint(), which has checked that the level is on.
void writeTracePoint(unsigned level, unsigned line, const char* label, std::string_view message);

// Writes `message` at `level`, reported at `line` of the table description under
// `label`, when that level is on; otherwise costs one check, made inline.
inline void tracePoint(unsigned level, unsigned line, const char* label, std::string_view message) {
  if (pluginTrace().enabled(level)) [[unlikely]] {
    writeTracePoint(level, line, label, message);
  }
}

}  // namespace BfIngressMirrorLagGroup
