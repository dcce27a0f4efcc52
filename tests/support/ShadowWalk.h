#pragma once

#include <string>
#include <vector>

#include "Quill/CorruptionDetectedException.h"
#include "Vault/IterHint.h"
#include "Vault/VaultBase.h"
#include "Vel/Ptr.h"

namespace shadow_test {

// What a reader got from a shadow table: the records in order and, when the
// walk stopped at damage, the corruption message.
template <class R>
struct ShadowWalk {
  std::vector<R> records;
  std::string corruption;
};

// Walks a shadow table as a plug-in's factory does: from the first record
// into a search record (a zero key, a zero OpId and all numbers 0), with an
// IterHint; damage ends the walk and is handed to corruptionDetected().
template <class R>
ShadowWalk<R> walkShadow(const Vel::Ptr<Vault::VaultBase<R>>& table) {
  ShadowWalk<R> result;
  R record{};
  Vault::IterHint hint;
  try {
    for (bool more = table->first(record, hint); more; more = table->next(record, hint)) {
      result.records.push_back(record);
    }
  } catch (const Quill::CorruptionDetectedException& e) {
    result.corruption = e.msg();
    table->corruptionDetected(e.msg());
  }
  return result;
}

}  // namespace shadow_test
