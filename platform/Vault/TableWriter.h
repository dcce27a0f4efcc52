#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "Vault/FlatIndex.h"
#include "Vault/FreeSlots.h"
#include "Vault/SharedSegment.h"
#include "Vault/SlotEntry.h"
#include "Vault/TableLayout.h"
#include "Vault/TableView.h"
#include "Vault/WriteStep.h"

namespace Vault {

// The one writer of a table: makes the table's segment, or re-attaches to the
// one an earlier process left, and inserts, replaces and removes records by
// key. Every change is safe against the writer being killed at any point:
// a new record is written into a free slot (or into the copy of its slot that
// is not live) and published by one atomic store of the slot's control word.
//
// A table has one writer at a time: the writer holds its segment's lock for
// its whole life, and a second writer is refused at once with
// TableInUseException (naming the process that holds it).
//
// Errors: a bad name, a segment that cannot be opened, dimensions out of range,
// a table of another capacity under the name, or a full table raise
// Vel::RangeException; a damaged header, or one that says the table holds
// another kind of record, raises Quill::CorruptionDetectedException.
class TableWriter {
 public:
  using WriteProbe = void (*)(WriteStep);

  TableWriter(const std::string& name, std::uint32_t recordType, std::uint32_t recordSize,
              std::uint32_t capacity);
  ~TableWriter();
  TableWriter(const TableWriter&) = delete;
  TableWriter& operator=(const TableWriter&) = delete;

  // Removes a table's name; true when it existed.
  static bool unlink(const std::string& name) { return SharedSegment::unlink(name); }

  const std::string& name() const noexcept { return segment_->name(); }
  const TableLayout& layout() const noexcept { return layout_; }
  const TableView& view() const noexcept { return view_; }
  // Slots in use or holding an intent.
  std::uint32_t recordCount() const noexcept { return header().recordCount; }
  std::uint64_t writeSequence() const noexcept { return header().writeSequence; }

  // Inserts or replaces the record of `key` in `state` (InUse or Intent);
  // returns its slot.
  std::uint32_t write(std::uint64_t key, const void* record, SlotState state);
  // Frees the slot of `key`; false when there is none.
  bool remove(std::uint64_t key);
  // The slot of `key` (in use or holding an intent), or nothing.
  std::optional<std::uint32_t> slotOf(std::uint64_t key) const noexcept {
    const std::uint32_t* slot = slotOfKey_.find(key);
    if (slot == nullptr) {
      return std::nullopt;
    }
    return *slot;
  }
  // Raises Quill::CorruptionDetectedException when another process has cut the
  // segment short since it was mapped: a walk over it would die of SIGBUS.
  // Every walk of the writer's (first(), validate(), cleanup()) starts here.
  void checkWhole() const;
  // Checks every slot; raises at the first damaged one. Returns the records.
  std::uint32_t validate() const;
  // Frees every damaged slot; returns how many.
  std::uint32_t cleanup();
  // Slots found damaged when attaching (or at the last cleanup), not yet freed.
  std::uint32_t damagedSlotCount() const noexcept {
    return static_cast<std::uint32_t>(damagedSlots_.size());
  }

  // Lets a test stop the writer at a given point of every write.
  void writeProbeIs(WriteProbe probe) noexcept { probe_ = probe; }

 private:
  TableHeader& header() const noexcept { return *reinterpret_cast<TableHeader*>(bytes()); }
  std::byte* bytes() const noexcept { return segment_->writableBytes(); }
  std::byte* slotBytes(std::uint32_t slot) const noexcept {
    return bytes() + layout_.slotOffset(slot);
  }
  std::uint32_t controlWord(std::uint32_t slot) const noexcept;

  void attach(const class SegmentFile& file, std::uint32_t recordType, std::uint32_t capacity);
  void format(const class SegmentFile& file, std::uint32_t recordType);
  void checkDimensions(std::uint32_t recordType, std::uint32_t capacity) const;
  // Raises CorruptionDetectedException when `size` is short of the table's.
  void refuseShorter(std::uint64_t size) const;
  // Learns which slots are free and which key each used slot holds, and puts
  // the header's count right after a writer died between a publish and a count.
  void recover();
  void indexSlot(std::uint32_t slot, std::byte* scratch);

  std::uint32_t takeFreeSlot();
  void writeCopy(std::uint32_t slot, unsigned copy, std::uint64_t key, const void* record,
                 SlotState state);
  void publish(std::uint32_t slot, SlotState state, unsigned copy);
  void freeSlot(std::uint32_t slot);
  void countIs(std::uint32_t count) noexcept;
  void probe(WriteStep step) const {
    if (probe_ != nullptr) {
      probe_(step);
    }
  }

  // Held for the writer's life: its lock keeps other writers out.
  std::unique_ptr<class SegmentFile> file_;
  std::unique_ptr<SharedSegment> segment_;
  TableLayout layout_{};
  TableView view_;
  FlatIndex<std::uint64_t, std::uint32_t> slotOfKey_;
  FreeSlots freeSlots_;
  std::set<std::uint32_t> damagedSlots_;
  WriteProbe probe_ = nullptr;
};

}  // namespace Vault
