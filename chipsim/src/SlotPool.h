#pragma once

#include <cstdint>

#include "ChipHeader.h"
#include "Journal.h"
#include "Status.h"

namespace chipsim {

// Hands out the slots of one record array and the handles that name them.
//
// A slot's handle is slot + 1 the first time it is used, and grows by
// `modulus` each time the slot is used again, so slot = (handle - 1) % modulus
// and a handle comes back only after the slot has gone round the 32-bit
// numbers. Free slots are reused oldest first, after every slot that was
// never used: a deleted object's handle stays unknown for as long as can be.
//
// Record must have the fields handle, nextFree and inUse.
template <class Record>
class SlotPool {
 public:
  static constexpr uint32_t kNone = UINT32_MAX;

  // `capacity` slots are handed out; `modulus` (at least `capacity`) leaves
  // room for slots the pool does not hand out, such as the default entry's.
  SlotPool(ChipHeader::Pool& state, Journal& journal, Record* records, uint32_t capacity,
           uint32_t modulus) noexcept
      : state_(state),
        journal_(journal),
        records_(records),
        capacity_(capacity),
        modulus_(modulus) {}

  uint32_t used() const noexcept { return state_.used; }
  uint32_t capacity() const noexcept { return capacity_; }
  bool full() const noexcept { return state_.used >= capacity_; }

  // The live record named by `handle`, or nullptr.
  Record* find(uint32_t handle) const noexcept {
    if (handle == 0) {
      return nullptr;
    }
    uint32_t slot = (handle - 1) % modulus_;
    if (slot >= state_.watermark || slot >= capacity_) {
      return nullptr;
    }
    Record& record = records_[slot];
    return record.inUse && record.handle == handle ? &record : nullptr;
  }

  Record& at(uint32_t slot) const noexcept { return records_[slot]; }
  uint32_t slotOf(const Record& record) const noexcept {
    return static_cast<uint32_t>(&record - records_);
  }

  // Takes a slot and gives it its next handle; the caller fills the rest of
  // the record. kNone when the pool is full.
  uint32_t allocate() noexcept {
    if (full()) {
      return kNone;
    }
    uint32_t slot;
    uint32_t handle;
    if (state_.watermark < capacity_) {
      slot = state_.watermark;
      handle = slot + 1;
      journal_.set(state_.watermark, slot + 1);
    } else {
      if (state_.freeHead == 0 || state_.freeHead > capacity_) {
        return kNone;  // a free list that lost its slots: only a chip damaged from outside
      }
      slot = state_.freeHead - 1;
      handle = nextHandle(records_[slot].handle, slot);
      journal_.set(state_.freeHead, records_[slot].nextFree);
      if (state_.freeHead == 0) {
        journal_.set(state_.freeTail, 0u);
      }
    }
    Record& record = records_[slot];
    journal_.set(record.handle, handle);
    journal_.set(record.nextFree, 0u);
    journal_.set(record.inUse, uint8_t{1});
    journal_.set(state_.used, state_.used + 1);
    return slot;
  }

  // Puts a slot at the end of the free list.
  void release(uint32_t slot) noexcept {
    journal_.set(records_[slot].inUse, uint8_t{0});
    if (state_.freeTail == 0) {
      journal_.set(state_.freeHead, slot + 1);
    } else {
      journal_.set(records_[state_.freeTail - 1].nextFree, slot + 1);
    }
    journal_.set(state_.freeTail, slot + 1);
    journal_.set(state_.used, state_.used - 1);
  }

  // The handle of the live record after the one `handle` names, in slot
  // order (0: the first live record). kNotFound at the end, and for a handle
  // that names no live record; kUnexpected for a record whose handle is not
  // of its slot (a damaged chip).
  Status next(uint32_t handle, uint32_t* next) const noexcept {
    uint32_t slot = 0;
    if (handle != 0) {
      const Record* record = find(handle);
      if (record == nullptr) {
        return kNotFound;
      }
      slot = slotOf(*record) + 1;
    }
    for (; slot < state_.watermark && slot < capacity_; ++slot) {
      if (records_[slot].inUse) {
        // A handle that does not name its own slot would lead the walk back.
        if (records_[slot].handle == 0 || (records_[slot].handle - 1) % modulus_ != slot) {
          return kUnexpected;
        }
        *next = records_[slot].handle;
        return kSuccess;
      }
    }
    return kNotFound;
  }

  // Calls f(record) for every live record, in slot order.
  template <class F>
  void forEach(F&& f) const {
    for (uint32_t slot = 0; slot < state_.watermark && slot < capacity_; ++slot) {
      if (records_[slot].inUse) {
        f(records_[slot]);
      }
    }
  }

  const ChipHeader::Pool& state() const noexcept { return state_; }

 private:
  uint32_t nextHandle(uint32_t handle, uint32_t slot) const noexcept {
    return handle <= UINT32_MAX - modulus_ ? handle + modulus_ : slot + 1;
  }

  ChipHeader::Pool& state_;
  Journal& journal_;
  Record* records_;
  uint32_t capacity_;
  uint32_t modulus_;
};

}  // namespace chipsim
