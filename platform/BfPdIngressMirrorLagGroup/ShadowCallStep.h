#pragma once

namespace BfPdIngressMirrorLagGroup {

// The points of a recorded PD call at which the recorder calls its probe: a
// test stops the process there (even kills it) to show what a call cut short
// leaves behind.
enum class ShadowCallStep {
  intentWritten,  // the intent is in the table, the chip not yet called
  chipCalled,     // the chip has answered, the record not yet finished
};

}  // namespace BfPdIngressMirrorLagGroup
