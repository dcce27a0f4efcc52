#include "Chip.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <string>
#include <tuple>

#include "EntryRecord.h"
#include "GroupRecord.h"
#include "GroupSlot.h"
#include "JournalRecord.h"
#include "KillSwitch.h"
#include "LogRecord.h"
#include "MemberRecord.h"

namespace chipsim {

namespace {

// The layout of a chip whose header has been checked by isChip() or written by format().
SegmentLayout layoutOf(const ChipHeader& header) noexcept {
  return SegmentLayout::of(header.config).value_or(SegmentLayout{});
}

void initMutex(pthread_mutex_t& mutex) noexcept {
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
  pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
  pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ERRORCHECK);
  pthread_mutex_init(&mutex, &attributes);
  pthread_mutexattr_destroy(&attributes);
}

}  // namespace

Chip::Chip(std::byte* base) noexcept
    : base_(base),
      header_(*reinterpret_cast<ChipHeader*>(base)),
      config_(header_.config),
      layout_(layoutOf(header_)),
      journal_(base, layout_.size, header_.journalCount, at<JournalRecord>(layout_.journal),
               layout_.journalCapacity),
      members_(header_, journal_, at<MemberRecord>(layout_.members)),
      groups_(header_, journal_, at<GroupRecord>(layout_.groups), at<GroupSlot>(layout_.groupSlots),
              members_),
      table_(header_, journal_, damage_, at<EntryRecord>(layout_.entries),
             at<uint32_t>(layout_.keyIndex), members_, groups_),
      log_(header_, journal_, at<LogRecord>(layout_.logRecords)),
      calls_(header_, journal_) {}

void Chip::format(std::byte* base, const chipsim_config& config) noexcept {
  auto& header = *reinterpret_cast<ChipHeader*>(base);
  std::memset(&header, 0, sizeof header);
  header.version = ChipHeader::kVersion;
  header.headerSize = sizeof(ChipHeader);
  header.config = config;
  header.segmentSize = layoutOf(header).size;
  initMutex(header.mutex);
  Chip(base).clear();
  std::atomic_ref<uint64_t>(header.magic).store(ChipHeader::kMagic, std::memory_order_release);
}

bool Chip::isChip(const std::byte* base, uint64_t size) noexcept {
  if (size < sizeof(ChipHeader)) {
    return false;
  }
  const auto& header = *reinterpret_cast<const ChipHeader*>(base);
  std::optional<SegmentLayout> layout = SegmentLayout::of(header.config);
  return header.magic == ChipHeader::kMagic && header.version == ChipHeader::kVersion &&
         header.headerSize == sizeof(ChipHeader) && layout && layout->size == size &&
         header.segmentSize == size;
}

std::optional<std::string> Chip::segmentFault(const std::byte* base, uint64_t size) {
  if (size < sizeof(ChipHeader)) {
    return "the segment holds " + std::to_string(size) + " bytes, less than a chip's header";
  }
  const auto& header = *reinterpret_cast<const ChipHeader*>(base);
  if (header.version != ChipHeader::kVersion || header.headerSize != sizeof(ChipHeader)) {
    return "its header is of version " + std::to_string(header.version) + ", not " +
           std::to_string(ChipHeader::kVersion);
  }
  std::optional<SegmentLayout> layout = SegmentLayout::of(header.config);
  if (!layout) {
    return "its header holds a make-up out of range";
  }
  if (header.segmentSize != layout->size || size != layout->size) {
    return "the segment holds " + std::to_string(size) + " bytes, its header says " +
           std::to_string(header.segmentSize) + " and its make-up " + std::to_string(layout->size);
  }
  return std::nullopt;
}

void Chip::clear() noexcept {
  std::atomic_ref<uint32_t>(header_.resetting).store(1, std::memory_order_seq_cst);
  header_.journalCount = 0;
  header_.entryScope = P4_PD_ENTRY_SCOPE_ALL_PIPES;
  header_.entries = {};
  header_.members = {};
  header_.groups = {};
  header_.logHead = 0;
  header_.logCount = 0;
  std::memset(header_.functions, 0, sizeof header_.functions);
  KillSwitch::change();
  std::memset(at<uint32_t>(layout_.keyIndex), 0, SegmentLayout::kKeys * sizeof(uint32_t));
  table_.clearDefault();
  std::atomic_ref<uint32_t>(header_.resetting).store(0, std::memory_order_seq_cst);
}

void Chip::recover() noexcept {
  if (header_.resetting) {
    clear();
  } else {
    journal_.rollback();
  }
}

namespace {

// The first fault of a pool's counts, whose slots number `capacity`.
std::optional<std::string> poolFault(const char* what, const ChipHeader::Pool& pool,
                                     uint32_t capacity) {
  const std::string name = what;
  if (pool.watermark > capacity || pool.used > pool.watermark) {
    return name + ": " + std::to_string(pool.used) + " used of " + std::to_string(pool.watermark) +
           " handed out, " + std::to_string(capacity) + " slots";
  }
  if (pool.freeHead > pool.watermark || pool.freeTail > pool.watermark ||
      (pool.freeHead == 0) != (pool.freeTail == 0)) {
    return name + ": free list from slot " + std::to_string(pool.freeHead) + " to " +
           std::to_string(pool.freeTail) + " of " + std::to_string(pool.watermark);
  }
  return std::nullopt;
}

// Calls of a PD function counted past this many come from outside.
constexpr uint64_t kMostCalls = uint64_t{1} << 62;

}  // namespace

std::optional<std::string> Chip::headerFault() const {
  if (header_.magic != ChipHeader::kMagic || header_.version != ChipHeader::kVersion ||
      header_.headerSize != sizeof(ChipHeader) || header_.segmentSize != layout_.size) {
    return "its header is not a chip's";
  }
  if (std::memcmp(&header_.config, &config_, sizeof config_) != 0) {
    return "its make-up changed since it was made";
  }
  for (auto [what, pool, capacity] : {std::tuple("entries", &header_.entries, config_.entries),
                                      std::tuple("members", &header_.members, config_.members),
                                      std::tuple("groups", &header_.groups, config_.groups)}) {
    if (auto fault = poolFault(what, *pool, capacity)) {
      return fault;
    }
  }
  if (header_.logCount > config_.log_lines || header_.logHead > config_.log_lines) {
    return "the call log holds " + std::to_string(header_.logCount) + " lines from line " +
           std::to_string(header_.logHead) + ", of " + std::to_string(config_.log_lines);
  }
  if (header_.journalCount != 0 || header_.resetting > 1) {
    return "a call left " + std::to_string(header_.journalCount) + " changes unfinished";
  }
  if (header_.entryScope != P4_PD_ENTRY_SCOPE_ALL_PIPES &&
      header_.entryScope != P4_PD_ENTRY_SCOPE_SINGLE_PIPE) {
    return "bad entry scope " + std::to_string(header_.entryScope);
  }
  for (std::size_t i = 0; i < kPdFunctionCount; ++i) {
    const ChipHeader::FunctionStats& stats = header_.functions[i];
    // An injected fault answers a status, and 0 is none: such a "fault" would
    // make calls succeed without doing anything.
    if (stats.calls > kMostCalls || (stats.faultsLeft != 0 && stats.faultStatus == 0)) {
      const std::string function(pdFunctionName(static_cast<PdFunction>(i)));
      return stats.calls > kMostCalls
                 ? function + " counted " + std::to_string(stats.calls) + " calls"
                 : function + " has " + std::to_string(stats.faultsLeft) + " faults of status 0";
    }
  }
  return std::nullopt;
}

bool Chip::selectorOf(const EntryRecord& entry, uint32_t hash, uint16_t* selector) const noexcept {
  uint32_t member = entry.target;
  if (entry.isGroup) {
    const GroupRecord* group = groups_.find(entry.target);
    std::optional<uint32_t> picked = group ? groups_.pick(*group, hash) : std::nullopt;
    if (!picked) {
      return false;
    }
    member = *picked;
  }
  const MemberRecord* record = members_.find(member);
  if (record == nullptr) {
    return false;
  }
  *selector = record->selector;
  return true;
}

const EntryRecord* Chip::matchEntry(uint32_t pipe, uint16_t key) const noexcept {
  if (pipe != P4_PD_ALL_PIPES) {
    return table_.covering(pipe, key);
  }
  for (uint32_t each = 0; each < header_.config.pipes; ++each) {
    if (const EntryRecord* entry = table_.covering(each, key)) {
      return entry;
    }
  }
  return nullptr;
}

int Chip::lookup(uint32_t pipe, uint16_t key, uint32_t hash, uint16_t* selector) const noexcept {
  if (selector == nullptr || !header_.acceptsPipe(pipe)) {
    return EINVAL;
  }
  if (const EntryRecord* entry = matchEntry(pipe, key)) {
    return selectorOf(*entry, hash, selector) ? 0 : CHIPSIM_MISS;
  }
  const EntryRecord& fallback = table_.defaultEntry();
  if (fallback.inUse && selectorOf(fallback, hash, selector)) {
    return CHIPSIM_DEFAULT_HIT;
  }
  return CHIPSIM_MISS;
}

}  // namespace chipsim
