#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "chipsim/chipsim.h"

namespace chipsim {

// The memory a chip lives in: a private mapping, or a named POSIX
// shared-memory segment (mode 0600) that other processes map too.
// A segment shorter than its chip is refused when it is opened, and the calls
// that start a walk over the chip's tables look again (cutShort()), so that a
// segment another process cut short since is reported rather than read past
// its end. Other PD calls do not look: checking the size on every call would
// cost a system call per call, and only a process that may write the segment
// (its owner, mode 0600) can cut it.
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
  // Why the chip can no longer be read whole: its segment now holds fewer
  // bytes than when it was opened, or cannot be looked at; nothing for a
  // whole segment or a private chip.
  std::optional<std::string> cutShort() const;

 private:
  Segment(std::byte* base, uint64_t size, std::string name, bool isPrivate, int fd) noexcept;

  std::byte* base_;
  uint64_t size_;
  std::string name_;
  bool private_;
  // The segment's file, kept open to look at its size; -1 for a private chip.
  int fd_;
};

}  // namespace chipsim
