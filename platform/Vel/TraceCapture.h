#pragma once

#include <mutex>
#include <vector>

#include "Vel/String.h"
#include "Vel/TraceRecord.h"
#include "Vel/TraceSink.h"

namespace Vel {

// A trace sink for tests: installed for its lifetime, it keeps every record
// instead of writing it, and puts back the sink that was in use before when it
// goes. Captures nest when they end in the reverse order of their start.
class TraceCapture : public TraceSink {
 public:
  TraceCapture();
  ~TraceCapture() override;

  void write(const TraceRecord& record) override;

  // The records taken so far, oldest first.
  std::vector<TraceRecord> records() const;
  // The same records as the default sink writes them, without newlines.
  std::vector<String> lines() const;
  void clear();

 private:
  TraceSink* previous_;
  mutable std::mutex mutex_;
  std::vector<TraceRecord> records_;
};

}  // namespace Vel
