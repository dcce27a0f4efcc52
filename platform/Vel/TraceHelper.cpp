#include "Vel/TraceHelper.h"

#include "Vel/TraceRecord.h"
#include "Vel/TraceSink.h"

namespace Vel {

namespace {

String textOf(const char* text) {
  return text != nullptr ? String(text) : String();
}

}  // namespace

TraceHelper::TraceHelper(const TraceHandle& handle, unsigned level)
    : handleName_(&handle.name()), level_(level) {}

void TraceHelper::trace(const char* file, unsigned line, const char* function) const {
  TraceSink::writeToSink(
      TraceRecord{*handleName_, level_, textOf(file), line, textOf(function), message_.str()});
}

}  // namespace Vel
