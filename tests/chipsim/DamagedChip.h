#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "chipsim/src/ChipHeader.h"
#include "chipsim/src/EntryRecord.h"
#include "chipsim/src/GroupRecord.h"
#include "chipsim/src/JournalRecord.h"
#include "chipsim/src/MemberRecord.h"
#include "chipsim/src/SegmentLayout.h"

namespace chipsim_test {

// The memory of a named chip, mapped read-write by a test that damages it
// from outside, as a stray writer would: its header, its records by slot and
// its key index.
class DamagedChip {
 public:
  explicit DamagedChip(const std::string& name);
  ~DamagedChip();
  DamagedChip(const DamagedChip&) = delete;
  DamagedChip& operator=(const DamagedChip&) = delete;

  chipsim::ChipHeader& header() const { return *reinterpret_cast<chipsim::ChipHeader*>(base_); }
  chipsim::EntryRecord& entry(std::uint32_t slot) const;
  chipsim::GroupRecord& group(std::uint32_t slot) const;
  chipsim::MemberRecord& member(std::uint32_t slot) const;
  chipsim::JournalRecord& journal(std::uint32_t index) const;
  std::uint32_t& keyChain(std::uint16_t key) const;
  // Cuts the segment to `size` bytes.
  void truncateTo(std::uint64_t size) const;

 private:
  template <class T>
  T& at(std::uint64_t offset) const {
    return *reinterpret_cast<T*>(base_ + offset);
  }

  std::string name_;
  std::byte* base_;
  std::uint64_t size_;
  chipsim::SegmentLayout layout_;
};

}  // namespace chipsim_test
