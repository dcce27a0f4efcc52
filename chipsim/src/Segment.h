#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "chipsim/chipsim.h"

namespace chipsim {

// The memory a chip lives in: a private mapping, or a named POSIX
// shared-memory segment (mode 0600) that other processes map too.
// A segment shorter than its chip is refused when it is opened. A segment that
// another process cuts short after that is not looked for again: checking its
// size on every PD call would cost a system call per call, and only a process
// that may write the segment (its owner, mode 0600) can cut it.
class Segment {
 public:
  ~Segment();
  Segment(const Segment&) = delete;
  Segment& operator=(const Segment&) = delete;

  // A new private chip of `config`. 0 or an errno value.
  static int makePrivate(const chipsim_config& config, std::unique_ptr<Segment>& segment);

  // The chip in the segment `name`. A segment that does not exist, or whose
  // maker died before the chip was made, gets a new chip of `config` when
  // `create` is set, and is ENOENT otherwise. EINVAL for a bad name or a
  // segment that holds something else; EUCLEAN for a chip that is damaged,
  // ETIMEDOUT when another process kept the segment's lock too long; `fault`
  // then tells how.
  static int open(const char* name, bool create, const chipsim_config& config,
                  std::unique_ptr<Segment>& segment, std::string& fault);

  static int unlink(const char* name);

  std::byte* base() const noexcept { return base_; }
  bool isPrivate() const noexcept { return private_; }
  // "/name", or "(private)".
  const std::string& name() const noexcept { return name_; }

 private:
  Segment(std::byte* base, uint64_t size, std::string name, bool isPrivate) noexcept;

  std::byte* base_;
  uint64_t size_;
  std::string name_;
  bool private_;
};

}  // namespace chipsim
