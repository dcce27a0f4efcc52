#include "PdCall.h"

namespace chipsim {

PdCall::PdCall(PdFunction function) noexcept : record_{}, outputs_{} {
  record_.function = static_cast<uint8_t>(function);
}

PdCall& PdCall::argument(LogLabel label, LogField::Kind kind, uint32_t value) noexcept {
  if (record_.argumentCount < LogRecord::kMaxArguments) {
    record_.arguments[record_.argumentCount++] = LogField{label, kind, 0, value};
  }
  return *this;
}

PdCall& PdCall::session(p4_pd_session_handle_t session) noexcept {
  return argument(LogLabel::sess, LogField::Kind::unsignedValue, session);
}

PdCall& PdCall::device(p4_pd_device_id_t deviceId) noexcept {
  return argument(LogLabel::dev, LogField::Kind::signedValue, static_cast<uint32_t>(deviceId));
}

PdCall& PdCall::target(p4_pd_device_target_t target) noexcept {
  device(target.device_id);
  return argument(LogLabel::pipe, LogField::Kind::hexValue, target.pipe_id);
}

PdCall& PdCall::handle(LogLabel label, uint32_t handle) noexcept {
  return argument(label, LogField::Kind::unsignedValue, handle);
}

PdCall& PdCall::number(LogLabel label, uint32_t value) noexcept {
  return argument(label, LogField::Kind::unsignedValue, value);
}

PdCall& PdCall::state(int32_t state) noexcept {
  return argument(LogLabel::state, LogField::Kind::signedValue, static_cast<uint32_t>(state));
}

PdCall& PdCall::flag(LogLabel label, bool value) noexcept {
  return argument(label, LogField::Kind::flagValue, value ? 1u : 0u);
}

PdCall& PdCall::matchSpec(const MatchSpec* match) noexcept {
  if (match == nullptr) {
    return argument(LogLabel::mirrorSession, LogField::Kind::nullPointer, 0);
  }
  return argument(LogLabel::mirrorSession, LogField::Kind::unsignedValue,
                  match->ingMirrorMdMirrorSession);
}

PdCall& PdCall::actionSpec(const ActionSpec* action) noexcept {
  if (action == nullptr) {
    return argument(LogLabel::selector, LogField::Kind::nullPointer, 0);
  }
  return argument(LogLabel::selector, LogField::Kind::unsignedValue, action->lagMemberSelector);
}

PdCall& PdCall::output(Output::Kind kind, LogLabel label, const void* pointer) noexcept {
  if (record_.outputCount < LogRecord::kMaxOutputs) {
    outputs_[record_.outputCount++] = {kind, label, pointer};
  }
  return *this;
}

PdCall& PdCall::handleOut(LogLabel label, const uint32_t* handle) noexcept {
  return output(Output::handleValue, label, handle);
}

PdCall& PdCall::flagOut(LogLabel label, const bool* value) noexcept {
  return output(Output::flagValue, label, value);
}

PdCall& PdCall::matchSpecOut(const MatchSpec* match) noexcept {
  return output(Output::matchSpecValue, LogLabel::mirrorSession, match);
}

LogField PdCall::outputField(const Output& output, bool written) noexcept {
  if (output.pointer == nullptr) {
    return {output.label, LogField::Kind::nullPointer, 0, 0};
  }
  if (!written) {
    return {output.label, LogField::Kind::unwritten, 0, 0};
  }
  switch (output.kind) {
    case Output::handleValue:
      return {output.label, LogField::Kind::unsignedValue, 0,
              *static_cast<const uint32_t*>(output.pointer)};
    case Output::flagValue:
      return {output.label, LogField::Kind::flagValue, 0,
              *static_cast<const bool*>(output.pointer) ? 1u : 0u};
    case Output::matchSpecValue:
      return {output.label, LogField::Kind::unsignedValue, 0,
              static_cast<const MatchSpec*>(output.pointer)->ingMirrorMdMirrorSession};
  }
  return {output.label, LogField::Kind::unwritten, 0, 0};
}

void PdCall::record(Chip& chip, pipe_status status, bool injected) noexcept {
  record_.status = status;
  record_.injected = injected ? 1 : 0;
  const bool written = status == kSuccess && !injected;
  for (uint8_t i = 0; i < record_.outputCount; ++i) {
    record_.outputs[i] = outputField(outputs_[i], written);
  }
  chip.log().append(record_);
}

}  // namespace chipsim
