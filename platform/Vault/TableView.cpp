#include "Vault/TableView.h"

#include <bit>
#include <cstddef>
#include <cstring>

#include "Quill/CorruptionDetectedException.h"
#include "Vault/SlotControl.h"
#include "Vel/Format.h"

namespace Vault {

namespace {

using ull = unsigned long long;

// A writer switching a slot over while it is read makes the reader try again;
// a slot that keeps changing this often is not being written by a writer.
constexpr int kReadAttempts = 64;

std::uint32_t loadControl(const std::byte* slot) noexcept {
  return __atomic_load_n(reinterpret_cast<const std::uint32_t*>(slot), __ATOMIC_ACQUIRE);
}

}  // namespace

void TableView::corrupt(const std::string& what) const {
  throw Quill::CorruptionDetectedException("Vault table " + name_ + ": " + what);
}

void TableView::corruptSlot(std::uint32_t slot, const std::string& what) const {
  corrupt(Vel::format("slot %u: ", slot) + what);
}

TableHeader TableView::headerCopy() const noexcept {
  TableHeader header;
  std::memcpy(&header, bytes_, sizeof header);
  return header;
}

TableLayout TableView::checkHeader(std::uint32_t recordType, std::uint32_t recordSize) const {
  if (bytes_ == nullptr || size_ < sizeof(TableHeader)) {
    corrupt(Vel::format("segment of %llu bytes is shorter than its header (%zu bytes)", ull(size_),
                        sizeof(TableHeader)));
  }
  TableHeader header = headerCopy();
  checkIdentity(header, recordType, recordSize);
  return checkGeometry(header);
}

void TableView::checkIdentity(const TableHeader& header, std::uint32_t recordType,
                              std::uint32_t recordSize) const {
  if (header.magic != TableHeader::kMagic) {
    corrupt(Vel::format("bad magic 0x%016llx", ull(header.magic)));
  }
  if (header.version != TableHeader::kVersion) {
    corrupt(Vel::format("version %u, expected %u", header.version, TableHeader::kVersion));
  }
  if (header.headerSize != sizeof(TableHeader)) {
    corrupt(Vel::format("header size %u, expected %zu", header.headerSize, sizeof(TableHeader)));
  }
  if (header.headerChecksum != header.expectedChecksum()) {
    corrupt("header checksum mismatch");
  }
  if (header.recordType != recordType) {
    corrupt(Vel::format("record type %u, expected %u", header.recordType, recordType));
  }
  if (header.recordSize != recordSize) {
    corrupt(Vel::format("record size %u, expected %u", header.recordSize, recordSize));
  }
}

TableLayout TableView::checkGeometry(const TableHeader& header) const {
  std::optional<TableLayout> layout = TableLayout::of(header.recordSize, header.capacity);
  if (!layout) {
    corrupt(Vel::format("capacity %u out of range", header.capacity));
  }
  if (header.slotSize != layout->slotSize) {
    corrupt(Vel::format("slot size %u, expected %u", header.slotSize, layout->slotSize));
  }
  if (layout->segmentSize > header.segmentSize) {
    corrupt(Vel::format("capacity %u needs %llu bytes, past the segment size %llu", header.capacity,
                        ull(layout->segmentSize), ull(header.segmentSize)));
  }
  if (layout->segmentSize != header.segmentSize) {
    corrupt(Vel::format("segment size %llu, expected %llu for capacity %u", ull(header.segmentSize),
                        ull(layout->segmentSize), header.capacity));
  }
  if (header.recordCount > header.capacity) {
    corrupt(
        Vel::format("record count %u past the capacity %u", header.recordCount, header.capacity));
  }
  return *layout;
}

SlotEntry TableView::readSlot(const TableLayout& layout, std::uint32_t slot, void* record) const {
  if (slot >= layout.capacity) {
    corruptSlot(slot, Vel::format("past the capacity %u", layout.capacity));
  }
  if (layout.slotOffset(slot) + layout.slotSize > size_) {
    corruptSlot(slot, Vel::format("lies past the end of the segment (truncated to %llu of %llu "
                                  "bytes)",
                                  ull(size_), ull(layout.segmentSize)));
  }
  SlotEntry entry;
  for (int attempt = 0; attempt < kReadAttempts; ++attempt) {
    if (tryReadSlot(layout, slot, record, entry)) {
      return entry;
    }
  }
  corruptSlot(slot, "kept changing while it was read");
}

bool TableView::tryReadSlot(const TableLayout& layout, std::uint32_t slot, void* record,
                            SlotEntry& entry) const {
  const std::byte* slotBytes = bytes_ + layout.slotOffset(slot);
  SlotControl control(loadControl(slotBytes));
  if (!control.isValid()) {
    corruptSlot(slot, Vel::format("bad control word 0x%08x", control.word()));
  }
  entry = SlotEntry{control.state(), 0, 0};
  if (control.state() == SlotState::Free) {
    return true;
  }
  const std::byte* copyBytes = slotBytes + layout.copyOffset(control.copy());
  SlotCopy copy;
  std::memcpy(&copy, copyBytes, sizeof copy);
  std::memcpy(record, copyBytes + sizeof copy, layout.recordSize);
  if (loadControl(slotBytes) != control.word()) {
    return false;
  }
  checkCopy(layout, slot, copy, record, control.stateBits());
  entry.key = copy.key;
  entry.sequence = copy.sequence;
  return true;
}

void TableView::checkCopy(const TableLayout& layout, std::uint32_t slot, const SlotCopy& copy,
                          const void* record, std::uint32_t state) const {
  if (copy.recordSize != layout.recordSize) {
    corruptSlot(slot,
                Vel::format("record size %u, expected %u", copy.recordSize, layout.recordSize));
  }
  if (copy.state != state) {
    corruptSlot(slot,
                Vel::format("record written in state %u, slot in state %u", copy.state, state));
  }
  if (copy.checksum != copyChecksum(slot, copy, record)) {
    corruptSlot(slot, "checksum mismatch (torn or damaged record)");
  }
}

std::uint64_t TableView::copyChecksum(std::uint32_t slot, const SlotCopy& copy,
                                      const void* record) noexcept {
  return copyChecksum(slot, copy.key, copy.sequence, copy.state, copy.recordSize, record);
}

// The header's bytes before its checksum are three little-endian words: the
// key, the sequence, and the state with the record size above it. Taking them
// as words from the fields gives the checksum of those bytes without reading
// back, as wide words, fields that were just written narrow.
std::uint64_t TableView::copyChecksum(std::uint32_t slot, std::uint64_t key, std::uint64_t sequence,
                                      std::uint32_t state, std::uint32_t recordSize,
                                      const void* record) noexcept {
  static_assert(std::endian::native == std::endian::little);
  static_assert(offsetof(SlotCopy, key) == 0 && offsetof(SlotCopy, sequence) == 8 &&
                offsetof(SlotCopy, state) == 16 && offsetof(SlotCopy, recordSize) == 20 &&
                offsetof(SlotCopy, checksum) == 24);
  return Checksum()
      .add(slot)
      .add(key)
      .add(sequence)
      .add(std::uint64_t{state} | std::uint64_t{recordSize} << 32)
      .add(record, recordSize)
      .value();
}

}  // namespace Vault
