#pragma once

#include <cstdint>

namespace chipsim {

// What a match entry points at: an action-profile member or a selector group.
struct ActionRef {
  uint32_t handle;
  bool isGroup;

  static ActionRef member(uint32_t handle) noexcept { return {handle, false}; }
  static ActionRef group(uint32_t handle) noexcept { return {handle, true}; }
};

}  // namespace chipsim
