// Fuzzes the shadow-table reader with segment bytes: a walk of the match-entry,
// member and group records over any bytes ends, or raises the corruption or
// range exception, and never reads outside the bytes.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "BfnMbbShared/AdtEntryConfig.h"
#include "BfnMbbShared/SelGrpEntryConfig.h"
#include "Quill/CorruptionDetectedException.h"
#include "Vault/IterHint.h"
#include "Vault/MbbPostcodef/EntryConfig.h"
#include "Vault/RecordWalk.h"
#include "Vault/TableView.h"
#include "Vault/VaultRecord.h"
#include "Vel/Exception.h"

namespace {

// Walks every finished record of type R in `view`, as the plug-ins' readers do.
template <class R>
void walk(const Vault::TableView& view) {
  try {
    const Vault::TableLayout layout = view.checkHeader(Vault::recordTypeOf<R>(), sizeof(R));
    R record{};
    Vault::IterHint hint;
    std::uint32_t from = 0;
    while (Vault::RecordWalk<R>::seek(view, layout, from, Vault::SlotState::InUse, record, hint))
      from = Vault::RecordWalk<R>::after(hint);
  } catch (const Quill::CorruptionDetectedException&) {
  } catch (const Vel::Exception&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // A copy of exactly `size` bytes, so that a read past them is caught.
  std::unique_ptr<std::byte[]> bytes(new std::byte[size]);
  std::memcpy(bytes.get(), data, size);
  const Vault::TableView view(bytes.get(), size, "/fuzz");
  walk<Vault::MbbPostcodef::EntryConfig>(view);
  walk<BfnMbbShared::AdtEntryConfig>(view);
  walk<BfnMbbShared::SelGrpEntryConfig>(view);
  return 0;
}
