#include "PdFunction.h"

#include <array>

namespace chipsim {

namespace {

// In the order of the enumeration.
constexpr std::array<std::string_view, kPdFunctionCount> kNames = {
#define CHIPSIM_PD_FUNCTION_NAME(name, shortName) #name,
    KESTRO_SWITCH_PD_FUNCTIONS(CHIPSIM_PD_FUNCTION_NAME)
#undef CHIPSIM_PD_FUNCTION_NAME
};

}  // namespace

std::string_view pdFunctionName(PdFunction function) noexcept {
  return kNames[static_cast<std::size_t>(function)];
}

std::optional<PdFunction> pdFunctionNamed(std::string_view name) noexcept {
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    if (name == kNames[i]) {
      return static_cast<PdFunction>(i);
    }
  }
  return std::nullopt;
}

}  // namespace chipsim
