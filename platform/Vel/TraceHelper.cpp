#include "Vel/TraceHelper.h"

#include "Vel/TraceRecord.h"
#include "Vel/TraceSink.h"

namespace Vel {

namespace {

// The record that a thread hands to the sink, kept from one trace to the
// next so that its text keeps its storage: a trace copies into it without
// allocating once the thread has traced a message as long.
TraceRecord& threadRecord() {
  thread_local TraceRecord record;
  return record;
}

void assignText(String& field, const char* text) {
  if (text != nullptr)
    field.assign(text);
  else
    field.clear();
}

}  // namespace

TraceHelper::TraceHelper(const TraceHandle& handle, unsigned level)
    : handleName_(&handle.name()), level_(level) {}

TraceHelper::TraceHelper(const TraceHelper& other)
    : handleName_(other.handleName_), level_(other.level_), text_(other.text_) {
  if (other.stream_ != nullptr) {
    stream_ = std::make_unique<std::ostringstream>(other.stream_->str(), std::ios_base::ate);
    stream_->copyfmt(*other.stream_);
  }
}

TraceHelper::~TraceHelper() = default;

std::ostream& TraceHelper::stream() {
  if (stream_ == nullptr) {
    stream_ = std::make_unique<std::ostringstream>();
    stream_->write(text_.view().data(), static_cast<std::streamsize>(text_.view().size()));
  }
  return *stream_;
}

void TraceHelper::appendText(const char* text) {
  if (text != nullptr)
    text_.append(std::string_view(text));
  else
    stream() << text;
}

void TraceHelper::trace(const char* file, unsigned line, const char* function) const {
  TraceRecord& record = threadRecord();
  record.handleName.assign(*handleName_);
  record.level = level_;
  assignText(record.file, file);
  record.line = line;
  assignText(record.function, function);
  if (stream_ != nullptr)
    record.message.assign(stream_->str());
  else
    record.message.assign(text_.view());
  TraceSink::writeToSink(record);
}

}  // namespace Vel
