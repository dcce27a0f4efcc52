#pragma once

namespace Vault {

// The points of a write at which a writer calls its write probe: a test stops
// a writer there (even kills it) to show what a write cut short leaves behind.
enum class WriteStep {
  CopyStarted,    // nothing of the new copy written yet
  CopyHalfDone,   // the copy header and half of the record bytes written
  CopyWritten,    // the copy complete, the slot not yet switched to it
  SlotPublished,  // the slot switched to the new copy, the header count not yet updated
};

}  // namespace Vault
