#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "JournalRecord.h"
#include "KillSwitch.h"

namespace chipsim {

// The undo log of the running call. Every change to the chip's state goes
// through set(), which records the field's old value before it writes the new
// one, so that a process killed in the middle of a call leaves a change the
// next holder of the lock can take back whole (rollback()). commit() ends the
// call and forgets the old values.
class Journal {
 public:
  // `count` and `records` live in the chip's memory that starts at `base`.
  Journal(std::byte* base, uint64_t size, uint32_t& count, JournalRecord* records,
          uint32_t capacity) noexcept;

  template <class T>
  void set(T& field, T value) noexcept {
    static_assert(std::is_trivially_copyable_v<T> && sizeof(T) <= sizeof(uint64_t));
    if (field == value) {
      return;
    }
    KillSwitch::change();
    remember(&field, sizeof(T));
    field = value;
    published();
  }

  void commit() noexcept;
  void rollback() noexcept;

  uint32_t pending() const noexcept { return count_; }

 private:
  void remember(const void* field, std::size_t size) noexcept;
  static void published() noexcept;

  std::byte* base_;
  uint64_t size_;
  uint32_t& count_;
  JournalRecord* records_;
  uint32_t capacity_;
};

}  // namespace chipsim
