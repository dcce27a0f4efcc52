#include "Vault/TableWriter.h"

#include <cstring>
#include <vector>

#include "Quill/CorruptionDetectedException.h"
#include "Vault/SegmentFile.h"
#include "Vault/SlotControl.h"
#include "Vault/SlotCopy.h"
#include "Vel/Format.h"
#include "Vel/RangeException.h"

namespace Vault {

TableWriter::TableWriter(const std::string& name, std::uint32_t recordType,
                         std::uint32_t recordSize, std::uint32_t capacity)
    : view_(nullptr, 0, SharedSegment::fullName(name)) {
  std::optional<TableLayout> layout = TableLayout::of(recordSize, capacity);
  if (!layout) {
    Vel::throwRangeException(Vel::format("Vault table %s: %u records of %u bytes are out of range",
                                         view_.name().c_str(), capacity, recordSize));
  }
  layout_ = *layout;
  freeSlots_.reset(layout_.capacity);
  file_ = std::make_unique<SegmentFile>(name);
  attach(*file_, recordType, capacity);
  recover();
}

// The mapping goes before the file, whose lock it then lets go.
TableWriter::~TableWriter() {
  segment_.reset();
}

void TableWriter::attach(const SegmentFile& file, std::uint32_t recordType,
                         std::uint32_t capacity) {
  if (file.size() >= sizeof(TableHeader)) {
    segment_ = file.map();
    view_ = TableView(segment_->bytes(), segment_->size(), segment_->name());
    if (header().magic != 0) {
      checkDimensions(recordType, capacity);
      return;
    }
  }
  // No table yet, or its maker died before it was finished.
  format(file, recordType);
}

void TableWriter::checkDimensions(std::uint32_t recordType, std::uint32_t capacity) const {
  const TableHeader found = header();
  view_.checkHeader(found.recordType, found.recordSize);
  // A table's name says what kind of record it holds: another kind under it is
  // damage (made anew by a restart), another capacity a table of another
  // configuration (kept, and refused).
  if (found.recordType != recordType || found.recordSize != layout_.recordSize) {
    throw Quill::CorruptionDetectedException(Vel::format(
        "Vault table %s: records of type %u and %u bytes, expected type %u and %u bytes",
        name().c_str(), found.recordType, found.recordSize, recordType, layout_.recordSize));
  }
  if (found.capacity != capacity) {
    Vel::throwRangeException(Vel::format(
        "Vault table %s holds %u records of type %u and %u bytes, not %u of type %u and %u bytes",
        name().c_str(), found.capacity, found.recordType, found.recordSize, capacity, recordType,
        layout_.recordSize));
  }
  refuseShorter(segment_->size());
}

void TableWriter::checkWhole() const {
  refuseShorter(file_->size());
}

void TableWriter::refuseShorter(std::uint64_t size) const {
  if (size < layout_.segmentSize) {
    throw Quill::CorruptionDetectedException(
        Vel::format("Vault table %s: segment truncated to %llu of %llu bytes", name().c_str(),
                    static_cast<unsigned long long>(size),
                    static_cast<unsigned long long>(layout_.segmentSize)));
  }
}

void TableWriter::format(const SegmentFile& file, std::uint32_t recordType) {
  segment_.reset();
  file.resetTo(layout_.segmentSize);
  segment_ = file.map();
  view_ = TableView(segment_->bytes(), segment_->size(), segment_->name());
  TableHeader fresh{};
  fresh.magic = TableHeader::kMagic;
  fresh.version = TableHeader::kVersion;
  fresh.headerSize = sizeof(TableHeader);
  fresh.recordType = recordType;
  fresh.recordSize = layout_.recordSize;
  fresh.capacity = layout_.capacity;
  fresh.slotSize = layout_.slotSize;
  fresh.segmentSize = layout_.segmentSize;
  fresh.headerChecksum = fresh.expectedChecksum();
  fresh.magic = 0;
  std::memcpy(&header(), &fresh, sizeof fresh);
  // Published last: until then a reader or a later writer sees no table.
  __atomic_store_n(&header().magic, TableHeader::kMagic, __ATOMIC_RELEASE);
}

std::uint32_t TableWriter::controlWord(std::uint32_t slot) const noexcept {
  return __atomic_load_n(reinterpret_cast<const std::uint32_t*>(slotBytes(slot)), __ATOMIC_ACQUIRE);
}

void TableWriter::recover() {
  std::vector<std::byte> scratch(layout_.recordSize);
  for (std::uint32_t slot = 0; slot < layout_.capacity; ++slot) {
    indexSlot(slot, scratch.data());
  }
  countIs(static_cast<std::uint32_t>(slotOfKey_.size() + damagedSlots_.size()));
}

void TableWriter::indexSlot(std::uint32_t slot, std::byte* scratch) {
  try {
    SlotEntry entry = view_.readSlot(layout_, slot, scratch);
    if (entry.state == SlotState::Free) {
      freeSlots_.add(slot);
    } else {
      slotOfKey_.assign(entry.key, slot);
    }
  } catch (const Quill::CorruptionDetectedException&) {
    // Kept out of use until cleanup() frees it; readers report it meanwhile.
    damagedSlots_.insert(slot);
  }
}

std::uint32_t TableWriter::write(std::uint64_t key, const void* record, SlotState state) {
  if (std::optional<std::uint32_t> slot = slotOf(key)) {
    // The copy that is not live takes the new record; the switch is one store.
    unsigned copy = 1u - SlotControl(controlWord(*slot)).copy();
    writeCopy(*slot, copy, key, record, state);
    publish(*slot, state, copy);
    return *slot;
  }
  std::uint32_t slot = takeFreeSlot();
  writeCopy(slot, 0, key, record, state);
  publish(slot, state, 0);
  slotOfKey_.assign(key, slot);
  countIs(header().recordCount + 1);
  return slot;
}

std::uint32_t TableWriter::takeFreeSlot() {
  if (freeSlots_.empty()) {
    Vel::throwRangeException(
        Vel::format("Vault table %s is full (%u records)", name().c_str(), layout_.capacity));
  }
  return freeSlots_.takeLowest();
}

void TableWriter::writeCopy(std::uint32_t slot, unsigned copy, std::uint64_t key,
                            const void* record, SlotState state) {
  // The header's fields go from registers to the segment one by one: a header
  // built in memory and copied whole would be read back wide right after its
  // narrow fields were written, which stalls the processor on every write.
  const std::uint64_t sequence = writeSequence() + 1;
  const auto stateWord = static_cast<std::uint32_t>(state);
  const std::uint32_t recordSize = layout_.recordSize;
  const std::uint64_t checksum =
      TableView::copyChecksum(slot, key, sequence, stateWord, recordSize, record);
  std::byte* target = slotBytes(slot) + layout_.copyOffset(copy);
  const auto* source = static_cast<const std::byte*>(record);
  const std::uint32_t half = recordSize / 2;
  probe(WriteStep::CopyStarted);
  auto& head = *reinterpret_cast<SlotCopy*>(target);
  head.key = key;
  head.sequence = sequence;
  head.state = stateWord;
  head.recordSize = recordSize;
  head.checksum = checksum;
  std::memcpy(target + sizeof(SlotCopy), source, half);
  probe(WriteStep::CopyHalfDone);
  std::memcpy(target + sizeof(SlotCopy) + half, source + half, recordSize - half);
  probe(WriteStep::CopyWritten);
  header().writeSequence = sequence;
}

void TableWriter::publish(std::uint32_t slot, SlotState state, unsigned copy) {
  __atomic_store_n(reinterpret_cast<std::uint32_t*>(slotBytes(slot)),
                   SlotControl(state, copy).word(), __ATOMIC_RELEASE);
  probe(WriteStep::SlotPublished);
}

bool TableWriter::remove(std::uint64_t key) {
  const std::optional<std::uint32_t> slot = slotOfKey_.take(key);
  if (!slot) {
    return false;
  }
  freeSlot(*slot);
  return true;
}

void TableWriter::freeSlot(std::uint32_t slot) {
  __atomic_store_n(reinterpret_cast<std::uint32_t*>(slotBytes(slot)),
                   SlotControl(SlotState::Free, 0).word(), __ATOMIC_RELEASE);
  freeSlots_.add(slot);
  countIs(header().recordCount - 1);
}

void TableWriter::countIs(std::uint32_t count) noexcept {
  __atomic_store_n(&header().recordCount, count, __ATOMIC_RELEASE);
}

std::uint32_t TableWriter::validate() const {
  checkWhole();
  view_.checkHeader(header().recordType, layout_.recordSize);
  std::vector<std::byte> scratch(layout_.recordSize);
  std::uint32_t records = 0;
  for (std::uint32_t slot = 0; slot < layout_.capacity; ++slot) {
    if (view_.readSlot(layout_, slot, scratch.data()).state != SlotState::Free) {
      ++records;
    }
  }
  return records;
}

std::uint32_t TableWriter::cleanup() {
  checkWhole();
  // Slots damaged since attaching are found by reading every slot again.
  slotOfKey_.clear();
  freeSlots_.clear();
  damagedSlots_.clear();
  recover();
  std::uint32_t freed = static_cast<std::uint32_t>(damagedSlots_.size());
  for (std::uint32_t slot : damagedSlots_) {
    freeSlot(slot);
  }
  damagedSlots_.clear();
  return freed;
}

}  // namespace Vault
