#include "TrafficRun.h"

#include <csignal>
#include <cstdio>
#include <ctime>

#include "chipsim/chipsim.h"

namespace {

volatile std::sig_atomic_t stopRequested = 0;
volatile std::sig_atomic_t markRequested = 0;

void requestStop(int) {
  stopRequested = 1;
}

void requestMark(int) {
  markRequested = 1;
}

double now() {
  timespec ts{};
  clock_gettime(CLOCK_MONOTONIC, &ts);
  return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) / 1e9;
}

}  // namespace

int TrafficRun::run() {
  std::signal(SIGINT, &requestStop);
  std::signal(SIGTERM, &requestStop);
  std::signal(SIGUSR1, &requestMark);
  const double start = now();
  double second = start + 1;
  std::uint64_t lookupsThisSecond = 0;
  std::uint32_t hash = 0;
  while (stopRequested == 0) {
    for (std::uint32_t session = first_; session <= last_; ++session) {
      std::uint16_t selector = 0;
      hash = hash * 1664525u + 1013904223u;
      const int result = chipsim_lookup(static_cast<std::uint16_t>(session), hash, &selector);
      ++lookups_;
      ++lookupsThisSecond;
      if (result != 0 && result != CHIPSIM_DEFAULT_HIT)
        ++misses_[static_cast<std::uint16_t>(session)];
    }
    if (markRequested != 0) {
      markRequested = 0;
      std::printf("traffic: mark: %llu lookups, %llu misses\n",
                  static_cast<unsigned long long>(lookups_),
                  static_cast<unsigned long long>(missCount()));
      std::fflush(stdout);
    }
    const double t = now();
    if (t >= second) {
      std::printf("traffic: %llu lookups/s, %zu sessions missing so far\n",
                  static_cast<unsigned long long>(lookupsThisSecond), misses_.size());
      std::fflush(stdout);
      lookupsThisSecond = 0;
      second += 1;
    }
    if (seconds_ != 0 && t - start >= static_cast<double>(seconds_))
      break;
  }
  const std::uint64_t misses = missCount();
  std::printf("traffic: %llu lookups, %llu misses", static_cast<unsigned long long>(lookups_),
              static_cast<unsigned long long>(misses));
  if (!misses_.empty()) {
    std::printf(", sessions missed:");
    for (const auto& [session, count] : misses_)
      std::printf(" %u (%llu)", unsigned{session}, static_cast<unsigned long long>(count));
  }
  std::printf("\n");
  return misses_.empty() ? 0 : 1;
}

std::uint64_t TrafficRun::missCount() const noexcept {
  std::uint64_t misses = 0;
  for (const auto& [session, count] : misses_)
    misses += count;
  return misses;
}
