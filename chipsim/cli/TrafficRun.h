#pragma once

#include <cstdint>
#include <map>

// Forwards packets of a range of mirror sessions through the attached chip,
// one session after the other with changing hashes, as traffic that crosses
// the chip while its agent works: each second it prints the lookups of that
// second, and at the end the lookups, the misses (no entry, and no default
// entry, for the session) and the sessions that missed. On SIGUSR1 it prints
// the lookups and misses so far ("traffic: mark: ..."), so that a script can
// count those of a stretch of time. It ends after the given seconds (0: never)
// or on SIGINT or SIGTERM.
class TrafficRun {
 public:
  TrafficRun(std::uint16_t first, std::uint16_t last, std::uint64_t seconds) noexcept
      : first_(first), last_(last), seconds_(seconds) {}

  // Runs, prints the summary; 0 when nothing missed, 1 otherwise.
  int run();

 private:
  std::uint64_t missCount() const noexcept;

  std::uint16_t first_;
  std::uint16_t last_;
  std::uint64_t seconds_;
  std::uint64_t lookups_ = 0;
  std::map<std::uint16_t, std::uint64_t> misses_;
};
