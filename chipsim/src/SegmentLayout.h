#pragma once

#include <cstdint>
#include <optional>

#include "chipsim/chipsim.h"

namespace chipsim {

// Where the parts of a chip of a given make-up lie in its memory: the header,
// then the record arrays, each at an offset from the start.
struct SegmentLayout {
  static constexpr uint32_t kKeys = 65536;  // the key index has one chain per mirror session

  uint32_t journalCapacity;
  uint64_t journal;     // JournalRecord[journalCapacity]
  uint64_t entries;     // EntryRecord[entries + 1], the last one the default entry
  uint64_t keyIndex;    // uint32_t[kKeys]: slot + 1 of the first entry with the key
  uint64_t members;     // MemberRecord[members]
  uint64_t groups;      // GroupRecord[groups]
  uint64_t groupSlots;  // GroupSlot[groups * max_group_size]
  uint64_t logRecords;  // LogRecord[log_lines + 1], one always free for the next call
  uint64_t size;

  // The layout of a valid make-up; nothing for a make-up out of range.
  static std::optional<SegmentLayout> of(const chipsim_config& config) noexcept;
};

}  // namespace chipsim
