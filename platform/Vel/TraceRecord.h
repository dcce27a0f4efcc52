#pragma once

#include "Vel/String.h"

namespace Vel {

// One trace as it reaches a sink: the trace handle's name and the level it was
// written at, the source position given by the code that traced, and the text.
struct TraceRecord {
  String handleName;
  unsigned level = 0;
  String file;
  unsigned line = 0;
  String function;
  String message;

  bool operator==(const TraceRecord&) const = default;
};

}  // namespace Vel
