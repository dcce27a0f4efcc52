#pragma once

namespace shadow_test {

// Where a process of a kill-loop test is killed.
enum class Killer {
  chipChange,    // at its n-th change of the chip's state, in the midst of a PD call
  recordedCall,  // at the n-th point of its recorded calls: after an intent or after the chip
  shadowWrite,   // at the n-th step of its shadow-table writes, in the midst of a write
  timer,         // by its parent, after a random time
};

}  // namespace shadow_test
