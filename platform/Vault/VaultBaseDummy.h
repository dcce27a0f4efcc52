#pragma once

#include <string>

#include "Vault/Unsupported.h"
#include "Vault/VaultBase.h"

namespace Vault {

// The table behind a shadow table that is not configured: every operation
// throws Vel::OperationNotSupportedException "VaultBaseDummy::<operation>()".
template <class R>
class VaultBaseDummy : public VaultBase<R> {
 public:
  bool first(R&, IterHint&) override { refuse("first"); }
  bool next(R&, IterHint&) override { refuse("next"); }
  void write(const R&) override { refuse("write"); }
  bool remove(const R&) override { refuse("remove"); }
  std::uint32_t cleanup() override { refuse("cleanup"); }
  void validateFiles() override { refuse("validateFiles"); }
  void validate() override { refuse("validate"); }
  std::uint64_t getCacheVersionAnchor() override { refuse("getCacheVersionAnchor"); }
  void clientQuiesced() override { refuse("clientQuiesced"); }
  Counters writerCounters() override { refuse("writerCounters"); }
  Counters readerCounters() override { refuse("readerCounters"); }

 private:
  [[noreturn]] static void refuse(const char* operation) {
    throwUnsupported(std::string("VaultBaseDummy::") + operation + "()");
  }
};

}  // namespace Vault
