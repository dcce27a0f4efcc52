#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "TableInstance.h"
#include "WantedConfig.h"
#include "support/ChipsimLibrary.h"
#include "support/ScratchShadowBase.h"

namespace BfIngressMirrorLagGroup {

// Instances of a host that restart on one named chip and one base name of
// shadow tables, both this test's own and removed at its end. The chip holds
// 4096 entries on device 0; the process starts on a private chip.
class RestartFixture : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Moves this process to the named chip (making it when there is none).
  void attachNamedChip();
  // Starts an instance as a restarted host does.
  std::unique_ptr<TableInstance> start(const TableInstance::Attached& attached = {}) const;

  // Runs `body` in a child process that ends with _exit(body()); gives its pid.
  static pid_t fork(const std::function<int()>& body);
  // Waits for `child`: minus the signal that ended it, or its exit status.
  static int wait(pid_t child);

  // Checks that the chip holds exactly the entries of `config` (each session
  // once, no other entry) and its default entry, and that `instance`'s
  // registry holds each of them once, with the chip's handle.
  static void expectProgrammed(const WantedConfig& config, const TableInstance& instance);
  // Checks that the chip holds exactly the members of `config`, each under
  // `instance`'s registry handle, and that each group of `config` is, under
  // its registry handle, a chip group of exactly its members in their active
  // states. Gives the number of other groups in the chip: those that earlier
  // instances made (a restarted instance creates its groups anew).
  static std::size_t expectActionProfileProgrammed(const WantedConfig& config,
                                                   const TableInstance& instance);

  // Lines of the chip's call log, oldest first.
  static std::vector<std::string> logLines();
  // Mirror sessions of the entry adds among `lines`.
  static std::set<std::uint16_t> addedSessions(const std::vector<std::string>& lines);
  // Mirror sessions of the chip's entries.
  static std::set<std::uint16_t> chipSessions();

  const chipsim_test::ChipsimLibrary& chip = chipsim_test::chipsim();
  shadow_test::ScratchShadowBase base{"restart"};
  MbbVaultKey::ShadowCapacity capacity{4097, 256, 64};
  std::string chipName;
  void* chipHandle = nullptr;
};

}  // namespace BfIngressMirrorLagGroup
