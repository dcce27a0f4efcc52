#include "PdCall.h"

namespace chipsim {

PdCall::PdCall(PdFunction function) noexcept
    : function_(function), argumentCount_(0), outputs_{}, outputCount_(0) {}

void PdCall::label(const char* label) noexcept {
  arguments_.appendText(argumentCount_++ == 0 ? "" : ", ");
  arguments_.appendText(label);
  arguments_.appendText("=");
}

void PdCall::unsignedArgument(const char* label, uint32_t value) noexcept {
  this->label(label);
  arguments_.appendUnsigned(value);
}

void PdCall::signedArgument(const char* label, int32_t value) noexcept {
  this->label(label);
  arguments_.appendSigned(value);
}

void PdCall::textArgument(const char* label, const char* text) noexcept {
  this->label(label);
  arguments_.appendText(text);
}

PdCall& PdCall::session(p4_pd_session_handle_t session) noexcept {
  unsignedArgument("sess", session);
  return *this;
}

PdCall& PdCall::device(p4_pd_device_id_t deviceId) noexcept {
  signedArgument("dev", deviceId);
  return *this;
}

PdCall& PdCall::target(p4_pd_device_target_t target) noexcept {
  device(target.device_id);
  label("pipe");
  arguments_.appendHex(target.pipe_id);
  return *this;
}

PdCall& PdCall::handle(const char* label, uint32_t handle) noexcept {
  unsignedArgument(label, handle);
  return *this;
}

PdCall& PdCall::number(const char* label, uint32_t value) noexcept {
  unsignedArgument(label, value);
  return *this;
}

PdCall& PdCall::state(int32_t state) noexcept {
  signedArgument("state", state);
  return *this;
}

PdCall& PdCall::flag(const char* label, bool value) noexcept {
  this->label(label);
  arguments_.appendText(value ? "true" : "false");
  return *this;
}

PdCall& PdCall::matchSpec(const MatchSpec* match) noexcept {
  if (match == nullptr) {
    textArgument("mirror_session", "NULL");
  } else {
    unsignedArgument("mirror_session", match->ingMirrorMdMirrorSession);
  }
  return *this;
}

PdCall& PdCall::actionSpec(const ActionSpec* action) noexcept {
  if (action == nullptr) {
    textArgument("selector", "NULL");
  } else {
    unsignedArgument("selector", action->lagMemberSelector);
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
  if (output.pointer != nullptr && !written) {
    return;
  }
  line.appendText(" ");
  line.appendText(output.label);
  line.appendText("=");
  if (output.pointer == nullptr) {
    line.appendText("NULL");
    return;
  }
  switch (output.kind) {
    case Output::handleValue:
      line.appendUnsigned(*static_cast<const uint32_t*>(output.pointer));
      break;
    case Output::flagValue:
      line.appendText(*static_cast<const bool*>(output.pointer) ? "true" : "false");
      break;
    case Output::matchSpecValue:
      line.appendUnsigned(static_cast<const MatchSpec*>(output.pointer)->ingMirrorMdMirrorSession);
      break;
  }
}

void PdCall::record(Chip& chip, pipe_status status, bool injected) const noexcept {
  LineBuilder line;
  line.appendText(pdFunctionName(function_));
  line.appendText("(");
  line.appendText(arguments_.view());
  line.appendText(") = ");
  line.appendSigned(status);
  line.appendText(injected ? " (injected)" : "");
  bool written = status == kSuccess && !injected;
  for (std::size_t i = 0; i < outputCount_; ++i) {
    writeOutput(line, outputs_[i], written);
  }
  chip.log().append(line.view());
}

}  // namespace chipsim
