#include "Vel/TraceCapture.h"

namespace Vel {

TraceCapture::TraceCapture() : previous_(sink()) {
  sinkIs(this);
}

TraceCapture::~TraceCapture() {
  sinkIs(previous_);
}

void TraceCapture::write(const TraceRecord& record) {
  std::lock_guard<std::mutex> lock(mutex_);
  records_.push_back(record);
}

std::vector<TraceRecord> TraceCapture::records() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return records_;
}

std::vector<String> TraceCapture::lines() const {
  std::vector<String> result;
  for (const TraceRecord& record : records())
    result.push_back(line(record));
  return result;
}

void TraceCapture::clear() {
  std::lock_guard<std::mutex> lock(mutex_);
  records_.clear();
}

}  // namespace Vel
