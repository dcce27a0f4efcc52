#pragma once

#include <memory>
#include <string>

#include "Vault/RecordWalk.h"
#include "Vault/SharedSegment.h"
#include "Vault/Unsupported.h"
#include "Vault/VaultBase.h"
#include "Vault/VaultRecord.h"

namespace Vault {

// The read-only adapter through which a plug-in reads a shadow table that the
// platform writes. Each first() maps the table's segment afresh, read-only
// (PROT_READ), as large as it is then; a table that does not exist is empty.
// Every writing or housekeeping operation throws
// Vel::OperationNotSupportedException with a fixed message.
template <VaultRecord R>
class ReadOnlyVaultTable : public VaultBase<R> {
 public:
  explicit ReadOnlyVaultTable(const std::string& name)
      : name_(SharedSegment::fullName(name)), view_(nullptr, 0, name_) {}

  const std::string& name() const noexcept { return name_; }

  bool first(R& record, IterHint& hint) override {
    hint.reset();
    open();
    return seek(0, record, hint);
  }
  bool next(R& record, IterHint& hint) override {
    if (segment_ == nullptr) {
      open();
    }
    return seek(RecordWalk<R>::after(hint), record, hint);
  }

  void write(const R&) override { throwUnsupported("write to read-only Vault table"); }
  bool remove(const R&) override { throwUnsupported("remove to read-only Vault table"); }
  std::uint32_t cleanup() override { throwUnsupported("cleanup to read-only Vault table"); }
  void validateFiles() override { throwUnsupported("validateFiles to read-only Vault table"); }
  void validate() override { throwUnsupported("validate to read-only Vault table"); }
  std::uint64_t getCacheVersionAnchor() override {
    throwUnsupported("getCacheVersionAnchor() not implemented");
  }
  void clientQuiesced() override { throwUnsupported("clientQuiesced() not implemented"); }
  Counters writerCounters() override { throwUnsupported("writerCounters() not implemented"); }
  Counters readerCounters() override { throwUnsupported("readerCounters() not implemented"); }

 private:
  // Maps the segment as it is now; the view of it serves every step of a walk.
  void open() {
    segment_ = SharedSegment::openReadOnly(name_);
    if (segment_ != nullptr) {
      view_ = TableView(segment_->bytes(), segment_->size(), name_);
    }
  }
  bool seek(std::uint32_t from, R& record, IterHint& hint) {
    if (segment_ == nullptr) {
      return false;
    }
    TableLayout layout = view_.checkHeader(recordTypeOf<R>(), sizeof(R));
    return RecordWalk<R>::seek(view_, layout, from, SlotState::InUse, record, hint);
  }

  std::string name_;
  std::unique_ptr<SharedSegment> segment_;
  TableView view_;  // of segment_, while there is one
};

}  // namespace Vault
