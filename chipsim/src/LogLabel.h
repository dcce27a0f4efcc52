#pragma once

#include <cstdint>
#include <string_view>

namespace chipsim {

// The label of an argument or out-parameter in a call-log line.
enum class LogLabel : std::uint8_t {
  sess,
  dev,
  pipe,
  mirrorSession,
  selector,
  entry,
  mbr,
  grp,
  mbrOrGrp,
  readFromHw,
  isGroup,
  property,
  value,
  size,
  state,
};

// The label as the line shows it: "sess", "mirror_session", "mbr_or_grp"...
std::string_view logLabelText(LogLabel label) noexcept;

}  // namespace chipsim
