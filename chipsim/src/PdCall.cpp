#include "PdCall.h"

#include <cstdarg>
#include <cstdio>

namespace chipsim {

PdCall::PdCall(PdFunction function) noexcept
    : function_(function), argumentCount_(0), outputs_{}, outputCount_(0) {}

void PdCall::argument(const char* label, const char* format, ...) noexcept {
  char value[64];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(value, sizeof value, format, arguments);
  va_end(arguments);
  arguments_.append("%s%s=%s", argumentCount_++ == 0 ? "" : ", ", label, value);
}

PdCall& PdCall::session(p4_pd_session_handle_t session) noexcept {
  argument("sess", "%u", session);
  return *this;
}

PdCall& PdCall::device(p4_pd_device_id_t deviceId) noexcept {
  argument("dev", "%d", deviceId);
  return *this;
}

PdCall& PdCall::target(p4_pd_device_target_t target) noexcept {
  device(target.device_id);
  argument("pipe", "0x%x", target.pipe_id);
  return *this;
}

PdCall& PdCall::handle(const char* label, uint32_t handle) noexcept {
  argument(label, "%u", handle);
  return *this;
}

PdCall& PdCall::number(const char* label, uint32_t value) noexcept {
  argument(label, "%u", value);
  return *this;
}

PdCall& PdCall::state(int32_t state) noexcept {
  argument("state", "%d", state);
  return *this;
}

PdCall& PdCall::flag(const char* label, bool value) noexcept {
  argument(label, "%s", value ? "true" : "false");
  return *this;
}

PdCall& PdCall::matchSpec(const MatchSpec* match) noexcept {
  if (match == nullptr) {
    argument("mirror_session", "NULL");
  } else {
    argument("mirror_session", "%u", unsigned{match->ingMirrorMdMirrorSession});
  }
  return *this;
}

PdCall& PdCall::actionSpec(const ActionSpec* action) noexcept {
  if (action == nullptr) {
    argument("selector", "NULL");
  } else {
    argument("selector", "%u", unsigned{action->lagMemberSelector});
  }
  return *this;
}

PdCall& PdCall::output(Output::Kind kind, const char* label, const void* pointer) noexcept {
  if (outputCount_ < kMaxOutputs) {
    outputs_[outputCount_++] = {kind, label, pointer};
  }
  return *this;
}

PdCall& PdCall::handleOut(const char* label, const uint32_t* handle) noexcept {
  return output(Output::handleValue, label, handle);
}

PdCall& PdCall::flagOut(const char* label, const bool* value) noexcept {
  return output(Output::flagValue, label, value);
}

PdCall& PdCall::matchSpecOut(const MatchSpec* match) noexcept {
  return output(Output::matchSpecValue, "mirror_session", match);
}

void PdCall::writeOutput(LineBuilder& line, const Output& output, bool written) const noexcept {
  if (output.pointer == nullptr) {
    line.append(" %s=NULL", output.label);
    return;
  }
  if (!written) {
    return;
  }
  switch (output.kind) {
    case Output::handleValue:
      line.append(" %s=%u", output.label, *static_cast<const uint32_t*>(output.pointer));
      break;
    case Output::flagValue:
      line.append(" %s=%s", output.label,
                  *static_cast<const bool*>(output.pointer) ? "true" : "false");
      break;
    case Output::matchSpecValue:
      line.append(
          " %s=%u", output.label,
          unsigned{static_cast<const MatchSpec*>(output.pointer)->ingMirrorMdMirrorSession});
      break;
  }
}

void PdCall::record(Chip& chip, pipe_status status, bool injected) const noexcept {
  LineBuilder line;
  line.append("%s(%s) = %d%s", pdFunctionName(function_), arguments_.text(), status,
              injected ? " (injected)" : "");
  bool written = status == kSuccess && !injected;
  for (std::size_t i = 0; i < outputCount_; ++i) {
    writeOutput(line, outputs_[i], written);
  }
  chip.log().append(line.text());
}

}  // namespace chipsim
