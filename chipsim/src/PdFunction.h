#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "Pd/KestroSwitchPdFunctions.h"

namespace chipsim {

// The PD functions of the chip, for call counts, faults and the call log.
enum class PdFunction : unsigned {
#define CHIPSIM_PD_FUNCTION(name, shortName) shortName,
  KESTRO_SWITCH_PD_FUNCTIONS(CHIPSIM_PD_FUNCTION)
#undef CHIPSIM_PD_FUNCTION
};

inline constexpr std::size_t kPdFunctionCount = 0
#define CHIPSIM_PD_FUNCTION(name, shortName) +1
    KESTRO_SWITCH_PD_FUNCTIONS(CHIPSIM_PD_FUNCTION)
#undef CHIPSIM_PD_FUNCTION
    ;

// The exported C name of a PD function.
std::string_view pdFunctionName(PdFunction function) noexcept;

// The PD function of an exported C name.
std::optional<PdFunction> pdFunctionNamed(std::string_view name) noexcept;

}  // namespace chipsim
