#include "Journal.h"

#include <atomic>
#include <cstring>

namespace chipsim {

Journal::Journal(std::byte* base, uint64_t size, uint32_t& count, JournalRecord* records,
                 uint32_t capacity) noexcept
    : base_(base), size_(size), count_(count), records_(records), capacity_(capacity) {}

// Keeps the compiler from moving a store across this point: a process may be
// killed between any two stores, and the order in the program is the order in
// which they reach the chip's memory.
void Journal::published() noexcept {
  std::atomic_signal_fence(std::memory_order_seq_cst);
}

void Journal::remember(const void* field, std::size_t size) noexcept {
  if (count_ >= capacity_) {
    // The capacity covers the largest change any call makes; a change past it
    // could not be taken back, but is still made.
    return;
  }
  JournalRecord& record = records_[count_];
  record.offset = static_cast<uint64_t>(static_cast<const std::byte*>(field) - base_);
  record.size = static_cast<uint32_t>(size);
  record.oldValue = 0;
  std::memcpy(&record.oldValue, field, size);
  published();
  count_ = count_ + 1;
  published();
}

void Journal::commit() noexcept {
  published();
  count_ = 0;
  published();
}

void Journal::rollback() noexcept {
  // Stops short of records that do not fit the chip's memory: they can only
  // come from a chip overwritten from outside.
  uint32_t count = count_ <= capacity_ ? count_ : 0;
  while (count > 0) {
    const JournalRecord& record = records_[--count];
    if (record.size <= sizeof(record.oldValue) && record.offset <= size_ &&
        record.size <= size_ - record.offset) {
      std::memcpy(base_ + record.offset, &record.oldValue, record.size);
    }
  }
  commit();
}

}  // namespace chipsim
