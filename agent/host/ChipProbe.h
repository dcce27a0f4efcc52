#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace mirrorlag_agent {

// The software chip's own functions beside the PD functions of its library,
// found by name: the coherence check, the object counts and the look-up of a
// mirrored packet. A real chip's PD library has none of them; then
// available() is false and the agent checks only its own view.
class ChipProbe {
 public:
  // What a look-up gave: the selector, and whether the default entry gave it.
  struct Lookup {
    std::uint16_t selector = 0;
    bool byDefault = false;
  };

  // `pdLib` is the dlopen handle of the PD library.
  explicit ChipProbe(void* pdLib);

  bool available() const noexcept { return check_ != nullptr; }
  // The chip's first incoherence, none when it is coherent.
  std::optional<std::string> fault() const;
  std::uint32_t entries() const { return entries_(); }
  std::uint32_t members() const { return members_(); }
  std::uint32_t groups() const { return groups_(); }
  // The selector a packet of `session` with `hash` goes to; none on a miss.
  std::optional<Lookup> lookup(std::uint16_t session, std::uint32_t hash) const;

 private:
  const char* (*check_)() = nullptr;
  std::uint32_t (*entries_)() = nullptr;
  std::uint32_t (*members_)() = nullptr;
  std::uint32_t (*groups_)() = nullptr;
  int (*lookup_)(std::uint16_t, std::uint32_t, std::uint16_t*) = nullptr;
};

}  // namespace mirrorlag_agent
