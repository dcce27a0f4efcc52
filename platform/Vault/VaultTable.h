#pragma once

#include <string>

#include "Quill/CorruptionDetectedException.h"
#include "Vault/RecordWalk.h"
#include "Vault/TableWriter.h"
#include "Vault/VaultBase.h"
#include "Vault/VaultRecord.h"

namespace Vault {

// A shadow table of records R as its writer (the platform) sees it: made or
// re-attached by name, its record type id and sizeof(R) telling what it holds.
// Besides the map interface it keeps intents: a record written with
// intentIs() before the chip call that makes its object, and completed with
// write() after it; a later process walks the unfinished ones with
// firstIntent()/nextIntent() to reconcile them with the chip.
template <VaultRecord R>
class VaultTable : public VaultBase<R> {
 public:
  VaultTable(const std::string& name, std::uint32_t capacity)
      : writer_(name, recordTypeOf<R>(), sizeof(R), capacity) {}

  static bool unlink(const std::string& name) { return TableWriter::unlink(name); }

  const std::string& name() const noexcept { return writer_.name(); }
  std::uint32_t capacity() const noexcept { return writer_.layout().capacity; }
  std::uint32_t recordCount() const noexcept { return writer_.recordCount(); }
  TableWriter& writer() noexcept { return writer_; }

  bool first(R& record, IterHint& hint) override {
    hint.reset();
    writer_.checkWhole();
    return seek(0, SlotState::InUse, record, hint);
  }
  bool next(R& record, IterHint& hint) override {
    return seek(RecordWalk<R>::after(hint), SlotState::InUse, record, hint);
  }
  bool firstIntent(R& record, IterHint& hint) {
    hint.reset();
    writer_.checkWhole();
    return seek(0, SlotState::Intent, record, hint);
  }
  bool nextIntent(R& record, IterHint& hint) {
    return seek(RecordWalk<R>::after(hint), SlotState::Intent, record, hint);
  }

  void write(const R& record) override { store(record, SlotState::InUse); }
  // Writes `record` finished, as write() does; returns the slot it is in.
  std::uint32_t writeInSlot(const R& record) { return store(record, SlotState::InUse); }
  // Writes the intent of `record`; returns the slot it is in.
  std::uint32_t intentIs(const R& record) { return store(record, SlotState::Intent); }
  bool remove(const R& record) override {
    bool removed = writer_.remove(record.vaultKey());
    counters_.removes += removed ? 1 : 0;
    return removed;
  }
  std::uint32_t cleanup() override { return writer_.cleanup(); }
  void validateFiles() override {
    std::unique_ptr<SharedSegment> segment = SharedSegment::openReadOnly(name());
    if (segment == nullptr) {
      throw Quill::CorruptionDetectedException("Vault table " + name() + ": segment is missing");
    }
    TableView view(segment->bytes(), segment->size(), name());
    view.checkHeader(recordTypeOf<R>(), sizeof(R));
  }
  void validate() override { writer_.validate(); }
  std::uint64_t getCacheVersionAnchor() override { return writer_.writeSequence(); }
  // Every write is in the shared segment when it returns: nothing to flush.
  void clientQuiesced() override {}
  Counters writerCounters() override { return counters_; }
  Counters readerCounters() override { return counters_; }

 private:
  std::uint32_t store(const R& record, SlotState state) {
    const std::uint32_t slot = writer_.write(record.vaultKey(), &record, state);
    ++counters_.writes;
    return slot;
  }
  bool seek(std::uint32_t from, SlotState wanted, R& record, IterHint& hint) {
    const TableView& view = writer_.view();
    TableLayout layout = view.checkHeader(recordTypeOf<R>(), sizeof(R));
    bool found = RecordWalk<R>::seek(view, layout, from, wanted, record, hint);
    counters_.reads += found ? 1 : 0;
    return found;
  }

  TableWriter writer_;
  Counters counters_;
};

}  // namespace Vault
