#include "Vel/TraceSink.h"

#include <cstdio>
#include <mutex>
#include <string>

namespace Vel {

namespace {

// The sink in use and the lock that serialises writes and sink changes.
struct SinkState {
  std::mutex mutex;
  TraceSink defaultSink;
  TraceSink* current = &defaultSink;
};

SinkState& sinkState() {
  static SinkState* instance = new SinkState;  // traces may come during static destruction
  return *instance;
}

}  // namespace

void TraceSink::write(const TraceRecord& record) {
  const String text = line(record) + '\n';
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fflush(stderr);
}

void TraceSink::sinkIs(TraceSink* sink) {
  SinkState& s = sinkState();
  std::lock_guard<std::mutex> lock(s.mutex);
  s.current = sink != nullptr ? sink : &s.defaultSink;
}

TraceSink* TraceSink::sink() {
  SinkState& s = sinkState();
  std::lock_guard<std::mutex> lock(s.mutex);
  return s.current;
}

void TraceSink::writeToSink(const TraceRecord& record) {
  SinkState& s = sinkState();
  std::lock_guard<std::mutex> lock(s.mutex);
  s.current->write(record);
}

String TraceSink::line(const TraceRecord& record) {
  // Built piece by piece so that a message is kept whole, whatever it holds.
  return record.handleName + '[' + std::to_string(record.level) + "] " + record.file + ':' +
         std::to_string(record.line) + ' ' + record.function + ": " + record.message;
}

}  // namespace Vel
