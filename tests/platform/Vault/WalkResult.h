#pragma once

#include <string>
#include <vector>

#include "Quill/CorruptionDetectedException.h"
#include "Vault/IterHint.h"

// What a full walk of a table gave: the records in order and, when the walk
// stopped at damage, the corruption message.
template <class R>
struct WalkResult {
  std::vector<R> records;
  std::string corruption;
};

template <class R, class Table>
WalkResult<R> walk(Table& table) {
  WalkResult<R> result;
  R record{};
  Vault::IterHint hint;
  try {
    for (bool more = table.first(record, hint); more; more = table.next(record, hint)) {
      result.records.push_back(record);
    }
  } catch (const Quill::CorruptionDetectedException& e) {
    result.corruption = e.msg();
  }
  return result;
}
