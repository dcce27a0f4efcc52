#pragma once

#include <Pd/KestroSwitchPd.h>

#include <cerrno>
#include <cstddef>

#include "Attachment.h"
#include "Chip.h"
#include "LineBuilder.h"
#include "PdFunction.h"
#include "Status.h"

namespace chipsim {

// One call of a PD function, as every PD function makes it: describe the
// arguments and out-parameters, then run() the operation on the chip under
// its lock. run() counts the call, returns an injected fault instead of
// running the operation when one is waiting, and writes the call-log line
// (its format is that of chipsim.h).
class PdCall {
 public:
  using MatchSpec = p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t;
  using ActionSpec = p4_pd_kestro_switch_setLagMemberSelector_action_spec_t;

  explicit PdCall(PdFunction function) noexcept;

  PdCall& session(p4_pd_session_handle_t session) noexcept;
  PdCall& device(p4_pd_device_id_t deviceId) noexcept;
  PdCall& target(p4_pd_device_target_t target) noexcept;
  PdCall& handle(const char* label, uint32_t handle) noexcept;
  PdCall& number(const char* label, uint32_t value) noexcept;
  PdCall& state(int32_t state) noexcept;
  PdCall& flag(const char* label, bool value) noexcept;
  PdCall& matchSpec(const MatchSpec* match) noexcept;
  PdCall& actionSpec(const ActionSpec* action) noexcept;

  PdCall& handleOut(const char* label, const uint32_t* handle) noexcept;
  PdCall& flagOut(const char* label, const bool* value) noexcept;
  PdCall& matchSpecOut(const MatchSpec* match) noexcept;

  // Runs operation(chip), which returns the call's status.
  template <class Operation>
  pipe_status run(Operation&& operation) noexcept {
    pipe_status status = kUnexpected;
    int error = Attachment::instance().use([&](Chip& chip) {
      bool injected = chip.calls().countCall(function_, status);
      if (!injected) {
        status = operation(chip);
      }
      record(chip, status, injected);
    });
    if (error != 0) {
      return error == ENOMEM ? kNoSystemResources : kUnexpected;
    }
    return status;
  }

 private:
  struct Output {
    enum Kind { handleValue, flagValue, matchSpecValue };
    Kind kind;
    const char* label;
    const void* pointer;
  };
  static constexpr std::size_t kMaxOutputs = 3;

  // Starts the next argument: separator, label and "=".
  void label(const char* label) noexcept;
  void unsignedArgument(const char* label, std::uint32_t value) noexcept;
  void signedArgument(const char* label, std::int32_t value) noexcept;
  void textArgument(const char* label, const char* text) noexcept;
  PdCall& output(Output::Kind kind, const char* label, const void* pointer) noexcept;
  void writeOutput(LineBuilder& line, const Output& output, bool written) const noexcept;
  void record(Chip& chip, pipe_status status, bool injected) const noexcept;

  PdFunction function_;
  LineBuilder arguments_;
  std::size_t argumentCount_;
  Output outputs_[kMaxOutputs];
  std::size_t outputCount_;
};

}  // namespace chipsim
