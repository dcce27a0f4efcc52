#include "ChipLock.h"

#include "LockWait.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fstream>
#include <string>

namespace chipsim {

namespace {

timespec deadlineAfter(unsigned milliseconds) {
  constexpr long kNanosecondsPerMillisecond = 1000000;
  constexpr long kNanosecondsPerSecond = 1000000000;
  timespec deadline{};
  clock_gettime(CLOCK_REALTIME, &deadline);
  deadline.tv_sec += milliseconds / 1000;
  deadline.tv_nsec += static_cast<long>(milliseconds % 1000) * kNanosecondsPerMillisecond;
  if (deadline.tv_nsec >= kNanosecondsPerSecond) {
    deadline.tv_sec += 1;
    deadline.tv_nsec -= kNanosecondsPerSecond;
  }
  return deadline;
}

}  // namespace

ChipLock::ChipLock(Chip& chip) noexcept
    : chip_(chip), error_(0), waited_(LockWait::milliseconds()) {
  pthread_mutex_t& mutex = chip.header().mutex;
  // Most calls find the lock free; only a wait needs its deadline.
  error_ = pthread_mutex_trylock(&mutex);
  if (error_ == EBUSY) {
    const timespec deadline = deadlineAfter(waited_);
    error_ = pthread_mutex_timedlock(&mutex, &deadline);
  }
  if (error_ == EOWNERDEAD) {
    chip_.recover();
    error_ = pthread_mutex_consistent(&mutex);
    if (error_ != 0) {
      pthread_mutex_unlock(&mutex);
    }
  }
}

ChipLock::~ChipLock() {
  if (error_ == 0) {
    if (!untouched_) {
      chip_.journal().commit();
    }
    pthread_mutex_unlock(&chip_.header().mutex);
  }
}

std::string ChipLock::fault() const {
  if (error_ == ETIMEDOUT) {
    return "the chip's lock is held by " + holder() + ": waited " + std::to_string(waited_) + " ms";
  }
  return std::string("cannot take the chip's lock: ") + std::strerror(error_);
}

std::string ChipLock::holder() const {
#ifdef __GLIBC__
  // The owner's thread id, as the C library keeps it in the mutex.
  const pid_t thread = chip_.header().mutex.__data.__owner;
  std::ifstream status("/proc/" + std::to_string(thread) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.rfind("Tgid:", 0) == 0)
      return "process " + std::to_string(std::strtol(line.c_str() + 5, nullptr, 10));
  }
  return "thread " + std::to_string(thread);
#else
  return "another process";
#endif
}

}  // namespace chipsim
