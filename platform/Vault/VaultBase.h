#pragma once

#include <cstdint>
#include <string>

#include "Vault/CorruptionLog.h"
#include "Vault/Counters.h"
#include "Vault/IterHint.h"
#include "Vault/VaultRecord.h"
#include "Vel/PtrInterface.h"

namespace Vault {

// The map interface of a shadow table of records R, keyed by R::vaultKey().
//
// Walking: `first(record, hint)` puts the first record of the table into
// `record` (the caller's search record, made with a zero key) and returns
// true, or returns false for an empty table; `next(record, hint)` continues
// after the record `hint` stands on. Records come in slot order: a new key
// takes the lowest free slot and keeps it while it is replaced. A damaged
// table raises Quill::CorruptionDetectedException at the first damaged record,
// after the records before it were returned; the caller passes the message to
// corruptionDetected().
//
// Operations a kind of table does not offer throw
// Vel::OperationNotSupportedException.
template <VaultRecord R>
class VaultBase : public Vel::PtrInterface {
 public:
  using Record = R;

  virtual bool first(R& record, IterHint& hint) = 0;
  virtual bool next(R& record, IterHint& hint) = 0;

  // Inserts or replaces the record of record.vaultKey().
  virtual void write(const R& record) = 0;
  // Removes the record of record.vaultKey(); false when there is none.
  virtual bool remove(const R& record) = 0;
  // Frees damaged records; returns how many.
  virtual std::uint32_t cleanup() = 0;
  // Checks that the table's segment is there and holds this table.
  virtual void validateFiles() = 0;
  // Checks every record; raises at the first damaged one.
  virtual void validate() = 0;
  // A number that changes with every change of the table.
  virtual std::uint64_t getCacheVersionAnchor() = 0;
  // The table's user has stopped changing it for now.
  virtual void clientQuiesced() = 0;
  virtual Counters writerCounters() = 0;
  virtual Counters readerCounters() = 0;

  // Told by a reader that found the table damaged.
  virtual void corruptionDetected(const std::string& msg) { corruption_.reportIs(msg); }
  const CorruptionLog& corruption() const noexcept { return corruption_; }

 private:
  CorruptionLog corruption_;
};

}  // namespace Vault
