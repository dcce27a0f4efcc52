#include "ChipLock.h"

#include <cerrno>

namespace chipsim {

ChipLock::ChipLock(Chip& chip) noexcept : chip_(chip), error_(0) {
  pthread_mutex_t& mutex = chip.header().mutex;
  error_ = pthread_mutex_lock(&mutex);
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
    chip_.journal().commit();
    pthread_mutex_unlock(&chip_.header().mutex);
  }
}

}  // namespace chipsim
