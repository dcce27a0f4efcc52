#include "SegmentLayout.h"

#include "ChipHeader.h"
#include "EntryRecord.h"
#include "GroupRecord.h"
#include "GroupSlot.h"
#include "JournalRecord.h"
#include "LogRecord.h"
#include "MemberRecord.h"

namespace chipsim {

namespace {

constexpr uint64_t kMaxSize = uint64_t{1} << 30;

bool inRange(uint32_t value, uint32_t max) noexcept {
  return value >= 1 && value <= max;
}

bool validConfig(const chipsim_config& config) noexcept {
  return config.device_id >= 0 && inRange(config.pipes, 64) && inRange(config.entries, 1u << 24) &&
         inRange(config.members, 1u << 24) && inRange(config.groups, 1u << 20) &&
         inRange(config.max_group_size, 4096) && inRange(config.log_lines, 1u << 20);
}

// Appends an array of `count` records of type T at the end of `size`, aligned.
template <class T>
uint64_t place(uint64_t& size, uint64_t count) noexcept {
  constexpr uint64_t alignment = 64;
  uint64_t offset = (size + alignment - 1) / alignment * alignment;
  size = offset + count * sizeof(T);
  return offset;
}

}  // namespace

std::optional<SegmentLayout> SegmentLayout::of(const chipsim_config& config) noexcept {
  if (!validConfig(config)) {
    return std::nullopt;
  }
  SegmentLayout layout{};
  // The largest change of one call: deleting a member from a full group moves
  // every slot behind it, and a reset is not journaled.
  layout.journalCapacity = 2 * config.max_group_size + 64;
  uint64_t size = sizeof(ChipHeader);
  layout.journal = place<JournalRecord>(size, layout.journalCapacity);
  layout.entries = place<EntryRecord>(size, uint64_t{config.entries} + 1);
  layout.keyIndex = place<uint32_t>(size, kKeys);
  layout.members = place<MemberRecord>(size, config.members);
  layout.groups = place<GroupRecord>(size, config.groups);
  layout.groupSlots = place<GroupSlot>(size, uint64_t{config.groups} * config.max_group_size);
  layout.logRecords = place<LogRecord>(size, uint64_t{config.log_lines} + 1);
  layout.size = place<char>(size, 0);
  if (layout.size > kMaxSize) {
    return std::nullopt;
  }
  return layout;
}

}  // namespace chipsim
