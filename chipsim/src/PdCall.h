#pragma once

#include <Pd/KestroSwitchPd.h>

#include <cerrno>
#include <cstddef>

#include "Attachment.h"
#include "Chip.h"
#include "LogRecord.h"
#include "PdFunction.h"
#include "Status.h"

namespace chipsim {

// One call of a PD function, as every PD function makes it: describe the
// arguments and out-parameters, then run() the operation on the chip under
// its lock. run() counts the call, returns an injected fault instead of
// running the operation when one is waiting, and adds the call to the call
// log: its numbers only, the line's text being made when the log is read.
class PdCall {
 public:
  using MatchSpec = p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t;
  using ActionSpec = p4_pd_kestro_switch_setLagMemberSelector_action_spec_t;

  explicit PdCall(PdFunction function) noexcept;

  PdCall& session(p4_pd_session_handle_t session) noexcept;
  PdCall& device(p4_pd_device_id_t deviceId) noexcept;
  PdCall& target(p4_pd_device_target_t target) noexcept;
  PdCall& handle(LogLabel label, uint32_t handle) noexcept;
  PdCall& number(LogLabel label, uint32_t value) noexcept;
  PdCall& state(int32_t state) noexcept;
  PdCall& flag(LogLabel label, bool value) noexcept;
  PdCall& matchSpec(const MatchSpec* match) noexcept;
  PdCall& actionSpec(const ActionSpec* action) noexcept;

  // The call starts a walk over the chip's tables: it first checks that the
  // chip's segment was not cut short (Attachment::useWhole()).
  PdCall& startsWalk() noexcept {
    startsWalk_ = true;
    return *this;
  }

  PdCall& handleOut(LogLabel label, const uint32_t* handle) noexcept;
  PdCall& flagOut(LogLabel label, const bool* value) noexcept;
  PdCall& matchSpecOut(const MatchSpec* match) noexcept;

  // Runs operation(chip), which returns the call's status.
  template <class Operation>
  pipe_status run(Operation&& operation) noexcept {
    pipe_status status = kUnexpected;
    auto call = [&](Chip& chip) {
      bool injected = chip.calls().countCall(function(), status);
      if (!injected) {
        status = operation(chip);
      }
      record(chip, status, injected);
    };
    Attachment& attachment = Attachment::instance();
    int error = startsWalk_ ? attachment.useWhole(call) : attachment.use(call);
    if (error != 0) {
      return error == ENOMEM ? kNoSystemResources : kUnexpected;
    }
    return status;
  }

 private:
  // Where an out-parameter's value is read once the call is over.
  struct Output {
    enum Kind { handleValue, flagValue, matchSpecValue };
    Kind kind;
    LogLabel label;
    const void* pointer;
  };

  PdFunction function() const noexcept { return static_cast<PdFunction>(record_.function); }
  PdCall& argument(LogLabel label, LogField::Kind kind, uint32_t value) noexcept;
  PdCall& output(Output::Kind kind, LogLabel label, const void* pointer) noexcept;
  static LogField outputField(const Output& output, bool written) noexcept;
  void record(Chip& chip, pipe_status status, bool injected) noexcept;

  LogRecord record_;
  Output outputs_[LogRecord::kMaxOutputs];
  bool startsWalk_ = false;
};

}  // namespace chipsim
