#include "LogRecord.h"

#include <algorithm>

#include "PdFunction.h"

namespace chipsim {

namespace {

void appendValue(LineBuilder& line, const LogField& field) noexcept {
  switch (field.kind) {
    case LogField::Kind::unsignedValue:
      line.appendUnsigned(field.value);
      break;
    case LogField::Kind::signedValue:
      line.appendSigned(static_cast<std::int32_t>(field.value));
      break;
    case LogField::Kind::hexValue:
      line.appendHex(field.value);
      break;
    case LogField::Kind::flagValue:
      line.appendText(field.value != 0 ? "true" : "false");
      break;
    case LogField::Kind::nullPointer:
      line.appendText("NULL");
      break;
    case LogField::Kind::unwritten:  // skipped by formatInto
      break;
  }
}

void appendField(LineBuilder& line, const LogField& field) noexcept {
  line.appendText(logLabelText(field.label));
  line.appendText("=");
  appendValue(line, field);
}

}  // namespace

void LogRecord::formatInto(LineBuilder& line) const noexcept {
  line.appendText(function < kPdFunctionCount ? pdFunctionName(static_cast<PdFunction>(function))
                                              : "?");
  line.appendText("(");
  const std::uint8_t arguments = std::min(argumentCount, kMaxArguments);
  for (std::uint8_t i = 0; i < arguments; ++i) {
    line.appendText(i == 0 ? "" : ", ");
    appendField(line, this->arguments[i]);
  }
  line.appendText(") = ");
  line.appendSigned(status);
  line.appendText(injected != 0 ? " (injected)" : "");
  const std::uint8_t outputs = std::min(outputCount, kMaxOutputs);
  for (std::uint8_t i = 0; i < outputs; ++i) {
    if (this->outputs[i].kind == LogField::Kind::unwritten) {
      continue;
    }
    line.appendText(" ");
    appendField(line, this->outputs[i]);
  }
}

}  // namespace chipsim
