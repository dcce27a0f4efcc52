#pragma once

#include "Vel/String.h"
#include "Vel/TraceRecord.h"

namespace Vel {

// Where the process's traces go. There is one sink in use at a time; writes to
// it are serialised, so a sink need not guard itself against threads that
// trace at once. This base class is also the default sink: it writes each
// record as one line on stderr.
class TraceSink {
 public:
  TraceSink() = default;
  virtual ~TraceSink() = default;
  TraceSink(const TraceSink&) = delete;
  TraceSink& operator=(const TraceSink&) = delete;

  // Takes one record. Called with the trace lock held: must not trace itself.
  virtual void write(const TraceRecord& record);

  // Installs the sink that takes every trace from now on; null restores the
  // default. The caller keeps ownership and must uninstall it before it dies.
  static void sinkIs(TraceSink* sink);
  // The sink in use (the default one unless another was installed).
  static TraceSink* sink();
  // Hands a record to the sink in use, one writer at a time.
  static void writeToSink(const TraceRecord& record);

  // The text of a record as the default sink writes it, without the newline:
  // "<handle>[<level>] <file>:<line> <function>: <message>".
  static String line(const TraceRecord& record);
};

}  // namespace Vel
