#pragma once

#include <pthread.h>

#include <cstdint>

#include <Pd/KestroSwitchPd.h>

#include "PdFunction.h"
#include "chipsim/chipsim.h"

namespace chipsim {

// The start of the chip's memory: its make-up, its lock, and the small state
// that is not kept in the record arrays behind it (SegmentLayout).
struct ChipHeader {
  // Handing out the slots of one record array (SlotPool).
  struct Pool {
    uint32_t used;       // slots in use
    uint32_t watermark;  // slots ever handed out since the chip was made or reset
    uint32_t freeHead;   // free list of slots below the watermark: slot + 1, 0 when empty
    uint32_t freeTail;
  };

  // Calls of one PD function, and the faults waiting for it.
  struct FunctionStats {
    uint64_t calls;
    uint32_t faultsLeft;
    int32_t faultStatus;
  };

  static constexpr uint64_t kMagic = 0x314d495350494843ull;  // "CHIPSIM1"
  static constexpr uint32_t kVersion = 4;

  uint64_t magic;  // written last when the chip is made
  uint32_t version;
  uint32_t headerSize;
  uint64_t segmentSize;
  chipsim_config config;
  pthread_mutex_t mutex;

  uint32_t resetting;     // a reset was under way when its process died: finish it
  uint32_t journalCount;  // old values recorded by the running call
  uint32_t entryScope;    // P4_PD_ENTRY_SCOPE_ALL_PIPES or P4_PD_ENTRY_SCOPE_SINGLE_PIPE
  Pool entries;
  Pool members;
  Pool groups;
  uint32_t logHead;  // line of the oldest log line
  uint32_t logCount;
  FunctionStats functions[kPdFunctionCount];

  bool acceptsDevice(int32_t deviceId) const noexcept { return deviceId == config.device_id; }
  bool acceptsPipe(uint32_t pipe) const noexcept {
    return pipe == P4_PD_ALL_PIPES || pipe < config.pipes;
  }
  bool acceptsTarget(p4_pd_device_target_t target) const noexcept {
    return acceptsDevice(target.device_id) && acceptsPipe(target.pipe_id);
  }
};

}  // namespace chipsim
