#include "LogLabel.h"

#include <array>

namespace chipsim {

namespace {

// In the order of the enumeration.
constexpr std::array<std::string_view, 15> kTexts = {
    "sess",       "dev",          "pipe",     "mirror_session", "selector", "entry", "mbr",   "grp",
    "mbr_or_grp", "read_from_hw", "is_group", "property",       "value",    "size",  "state",
};

}  // namespace

std::string_view logLabelText(LogLabel label) noexcept {
  const auto index = static_cast<std::size_t>(label);
  return index < kTexts.size() ? kTexts[index] : "?";
}

}  // namespace chipsim
