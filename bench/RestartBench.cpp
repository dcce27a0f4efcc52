// A hitless restart on a full chip: 65,536 match entries, 16,384 action-profile
// members and 4,096 selector groups of four members each (every fourth entry
// on a group, the others on members), all recorded in full-size shadow tables
// by an earlier instance through the platform's recording PD object.
//
// Each restart runs in a new process, forked from the one that filled the
// chip, as a restarted host is: it re-attaches the shadow tables, settles them
// against the chip (reconciler), then runs the table factory and the
// action-profile factory, which adopt every entry, member and group. Each
// phase is timed on its own, and the heap taken with operator new is counted:
// what the adopted objects hold when the factories are done, and the most
// held at once during the restart. Last comes the reference agent's re-apply
// of the same configuration over what was adopted (agent/core's RestartApply):
// the plug-in makes every group anew, and as the chip has no room for one more
// group, each group's entries are moved to a member while its old group makes
// way. A summary against the targets ends the run (the factories together
// under 100 ms, the peak heap of the adoption under 32 MB).

#include <benchmark/benchmark.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "BfPdIngressMirrorLagGroup/BfPdIngressMirrorLagGroupIntf.h"
#include "BfPdIngressMirrorLagGroup/ShadowReconciler.h"
#include "HeapCount.h"
#include "MbbVaultKey/VaultKeyManager.h"
#include "Vel/Allocate.h"
#include "chipsim/chipsim.h"
#include "config/AgentConfig.h"
#include "core/AgentTable.h"
#include "core/ConfigApplier.h"
#include "core/RestartApply.h"
#include "support/ChipsimLibrary.h"

namespace {

using BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec;
using BfPdIngressMirrorLagGroup::BfPdIngressMirrorLagGroupIntf;
using MbbVaultKey::VaultKeyManager;

constexpr std::uint8_t kDevice = 0;
constexpr std::uint16_t kPipe = P4_PD_ALL_PIPES;
constexpr p4_pd_device_target_t kTarget{kDevice, kPipe};
constexpr std::uint32_t kSession = 1;
constexpr std::uint32_t kEntries = 65536;
constexpr std::uint32_t kMembers = 16384;
constexpr std::uint32_t kGroups = 4096;
constexpr std::uint32_t kGroupSize = kMembers / kGroups;
constexpr std::uint32_t kEntriesPerGroupEntry = 4;
constexpr double kFactoriesTargetMs = 100.0;
constexpr double kPeakHeapTargetMiB = 32.0;
constexpr double kMiB = 1024.0 * 1024.0;
constexpr int kRestarts = 5;

// The phases of one restart, in the order they run.
enum Phase : std::size_t {
  attachShadowTables,
  reconcile,
  tableFactory,
  actionProfileFactory,
  agentReapply,
  phaseCount
};
constexpr std::array<const char*, phaseCount> kPhaseNames{
    "attachShadowTables", "reconcile", "tableFactory", "actionProfileFactory", "agentReapply"};

// What one restart reports back to the process that runs the benchmark.
struct RestartReport {
  std::array<double, phaseCount> ms{};
  double adoptedHeapBytes = 0;
  double peakHeapBytes = 0;
  std::uint32_t entries = 0;
  std::uint32_t members = 0;
  std::uint32_t groups = 0;
  std::uint32_t reapplyChanges = 0;
  bool reapplied = false;
};

// The chip model's library, loaded as a host loads a PD library, on a chip
// filled as above, and the name of that chip and base name of the shadow
// tables that record it.
struct FullChip {
  FullChip() : base("/bench-restart-" + std::to_string(getpid())) {
    const chipsim_test::ChipsimLibrary& chip = chipsim_test::chipsim();
    chipsim_config config{};
    chip.configDefault(&config);
    config.entries = kEntries;
    config.members = kMembers;
    config.groups = kGroups;
    chip.configure(&config);
    // A named chip, kept in shared memory as the shadow tables are: what one
    // restart changes (the re-apply makes the groups anew), the next finds.
    chip.attach(base.c_str());
    VaultKeyManager::unlink(base);
    fill();
  }
  ~FullChip() {
    VaultKeyManager::unlink(base);
    chipsim_test::chipsim().unlink(base.c_str());
  }

  // The configuration the chip was filled with, as the agent keeps it.
  static mirrorlag_agent::AgentConfig configuration() {
    mirrorlag_agent::AgentConfig config;
    for (std::uint32_t id = 0; id < kMembers; ++id)
      config.members[id + 1] = static_cast<std::uint16_t>(id);
    for (std::uint32_t id = 0; id < kGroups; ++id) {
      mirrorlag_agent::GroupConfig& group = config.groups[id + 1];
      group.size = kGroupSize;
      for (std::uint32_t slot = 0; slot < kGroupSize; ++slot)
        group.members.push_back({id * kGroupSize + slot + 1, true});
    }
    for (std::uint32_t session = 0; session < kEntries; ++session) {
      config.entries[static_cast<std::uint16_t>(session)] =
          session % kEntriesPerGroupEntry == 0
              ? mirrorlag_agent::ConfigTarget{false, session / kEntriesPerGroupEntry % kGroups + 1}
              : mirrorlag_agent::ConfigTarget{true, session % kMembers + 1};
    }
    return config;
  }

  void* handle = chipsim_test::chipsim().handle;
  std::string base;

 private:
  // Programs and records every object as an earlier instance of the host
  // would; its key manager goes at the end, as the instance dies.
  void fill() const {
    const auto keys = Vel::allocate<VaultKeyManager>(base);
    const auto pd = Vel::allocate<BfPdIngressMirrorLagGroupIntf>(CHIPSIM_LIBRARY, handle, kSession);
    pd->vaultKeyManagerIs(keys);
    std::vector<std::uint32_t> members(kMembers);
    for (std::uint32_t id = 0; id < kMembers; ++id) {
      keys->allocAnon(id + 1);
      const p4_pd_kestro_switch_setLagMemberSelector_action_spec_t action{
          static_cast<std::uint16_t>(id)};
      check(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector(
                kSession, kTarget, &action, &members[id]),
            "member add");
    }
    std::vector<std::uint32_t> groups(kGroups);
    for (std::uint32_t id = 0; id < kGroups; ++id) {
      keys->allocAnon(id + 1);
      check(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_create_group(
                kSession, kTarget, kGroupSize, &groups[id]),
            "group create");
      for (std::uint32_t slot = 0; slot < kGroupSize; ++slot) {
        check(pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_to_group(
                  kSession, kDevice, groups[id], members[id * kGroupSize + slot]),
              "member to group");
      }
    }
    for (std::uint32_t session = 0; session < kEntries; ++session) {
      auto match = Vel::allocate<IngressMirrorLagGroupMatchSpec>();
      match->ingMirrorMdMirrorSessionIs(static_cast<std::uint16_t>(session));
      keys->alloc(match, false);
      const p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t spec{
          static_cast<std::uint16_t>(session)};
      std::uint32_t entry = 0;
      if (session % kEntriesPerGroupEntry == 0) {
        check(pd->p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry_with_selector(
                  kSession, kTarget, &spec, groups[session / kEntriesPerGroupEntry % kGroups],
                  &entry),
              "entry add on a group");
      } else {
        check(pd->p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry(
                  kSession, kTarget, &spec, members[session % kMembers], &entry),
              "entry add on a member");
      }
    }
  }

  static void check(pipe_status status, const char* what) {
    if (status != 0) {
      std::fprintf(stderr, "%s failed: status %d\n", what, status);
      std::abort();
    }
  }
};

// Made on first use, gone (with its chip and shadow tables) at exit; the
// restarted processes leave with _exit and take nothing away.
FullChip& fullChip() {
  static FullChip instance;
  return instance;
}

double msSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
      .count();
}

// The agent's first apply after the restart; false (with its reason on
// stderr) when the chip refused it.
bool reapply(const Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupTable>& table,
             const Vel::Ptr<BfIngressMirrorLagGroup::IngressMirrorLagGroupActionProfile>& profile,
             const mirrorlag_agent::AgentConfig& wanted, std::uint32_t& changes) {
  mirrorlag_agent::AgentTable agentTable(table, profile);
  mirrorlag_agent::ConfigApplier applier(agentTable);
  mirrorlag_agent::RestartApply restart(agentTable, applier);
  mirrorlag_agent::AgentConfig running;
  try {
    restart.apply(wanted, running);
  } catch (const std::exception& e) {
    std::fprintf(stderr, "the agent's re-apply failed: %s\n", e.what());
    return false;
  }
  changes = static_cast<std::uint32_t>(restart.changes().size());
  return true;
}

// One restart, as the new process runs it.
RestartReport restart(const FullChip& chip) {
  RestartReport report;
  HeapCount::peakIsInUse();
  const std::size_t heapBefore = HeapCount::inUse();
  auto started = std::chrono::steady_clock::now();
  const auto keys = Vel::allocate<VaultKeyManager>(chip.base);
  report.ms[attachShadowTables] = msSince(started);

  started = std::chrono::steady_clock::now();
  {
    const auto pd =
        Vel::allocate<BfPdIngressMirrorLagGroupIntf>(CHIPSIM_LIBRARY, chip.handle, kSession);
    BfPdIngressMirrorLagGroup::ShadowReconciler(*keys, *pd, kDevice).reconcile();
  }
  report.ms[reconcile] = msSince(started);

  started = std::chrono::steady_clock::now();
  const auto table = ingressMirrorLagGroupTableFactory(keys, nullptr, chip.handle, kSession,
                                                       kDevice, kPipe, CHIPSIM_LIBRARY);
  report.ms[tableFactory] = msSince(started);

  started = std::chrono::steady_clock::now();
  const auto profile = ingressMirrorLagGroupActionProfileFactory(table);
  report.ms[actionProfileFactory] = msSince(started);

  report.adoptedHeapBytes = static_cast<double>(HeapCount::inUse() - heapBefore);
  report.peakHeapBytes = static_cast<double>(HeapCount::peak() - heapBefore);
  const auto& registry = *table->helper()->sdkHandles();
  report.entries = static_cast<std::uint32_t>(registry.entries().size());
  report.members = static_cast<std::uint32_t>(registry.members().size());
  report.groups = static_cast<std::uint32_t>(registry.groups().size());

  const mirrorlag_agent::AgentConfig wanted = FullChip::configuration();
  started = std::chrono::steady_clock::now();
  report.reapplied = reapply(table, profile, wanted, report.reapplyChanges);
  report.ms[agentReapply] = msSince(started);
  return report;
}

// Runs one restart in a child process and gives its report; false when the
// child did not report.
bool restartInChild(const FullChip& chip, RestartReport& report) {
  int pipeEnds[2];
  if (pipe(pipeEnds) != 0)
    return false;
  const pid_t child = fork();
  if (child == 0) {
    close(pipeEnds[0]);
    const RestartReport done = restart(chip);
    const bool written = write(pipeEnds[1], &done, sizeof done) == sizeof done;
    _exit(written ? 0 : 1);  // the restarted instance stays as it is: no teardown
  }
  close(pipeEnds[1]);
  const bool read = child > 0 && ::read(pipeEnds[0], &report, sizeof report) == sizeof report;
  close(pipeEnds[0]);
  int status = 0;
  if (child > 0)
    waitpid(child, &status, 0);
  return read && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// The restarts' mean phase times, largest heap figures and adopted counts.
RestartReport gSummary;

void fullChipRestart(benchmark::State& state) {
  const FullChip& chip = fullChip();
  RestartReport total;
  for (auto _ : state) {
    RestartReport report;
    if (!restartInChild(chip, report) || !report.reapplied) {
      state.SkipWithError("the restarted process did not report, or its re-apply failed");
      return;
    }
    double restartMs = 0;
    for (std::size_t phase = 0; phase < phaseCount; ++phase) {
      total.ms[phase] += report.ms[phase];
      restartMs += report.ms[phase];
    }
    total.adoptedHeapBytes = std::max(total.adoptedHeapBytes, report.adoptedHeapBytes);
    total.peakHeapBytes = std::max(total.peakHeapBytes, report.peakHeapBytes);
    total.entries = report.entries;
    total.members = report.members;
    total.groups = report.groups;
    total.reapplyChanges = report.reapplyChanges;
    state.SetIterationTime(restartMs / 1000.0);
  }
  gSummary = total;
  for (std::size_t phase = 0; phase < phaseCount; ++phase) {
    gSummary.ms[phase] /= static_cast<double>(state.iterations());
    state.counters[std::string(kPhaseNames[phase]) + "Ms"] = gSummary.ms[phase];
  }
  state.counters["entries"] = total.entries;
  state.counters["members"] = total.members;
  state.counters["groups"] = total.groups;
  state.counters["peakHeapMiB"] = total.peakHeapBytes / kMiB;
}
BENCHMARK(fullChipRestart)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(kRestarts);

// The console report, then each phase's mean time and the heap against the
// targets.
class SummaryReporter : public benchmark::ConsoleReporter {
 public:
  void Finalize() override {
    ConsoleReporter::Finalize();
    std::printf(
        "\nrestart of a full chip (%u entries, %u members, %u groups adopted), mean of %d:\n",
        gSummary.entries, gSummary.members, gSummary.groups, kRestarts);
    for (std::size_t phase = 0; phase < phaseCount; ++phase)
      std::printf("  %-22s %8.2f ms\n", kPhaseNames[phase], gSummary.ms[phase]);
    std::printf("  (agentReapply: the agent's first apply of the same configuration, %u changes)\n",
                gSummary.reapplyChanges);
    std::printf("  factories together     %8.2f ms (target: under %.0f ms)\n",
                gSummary.ms[tableFactory] + gSummary.ms[actionProfileFactory], kFactoriesTargetMs);
    std::printf(
        "  heap held by the adopted objects %.1f MiB, peak during the restart %.1f MiB "
        "(largest of the restarts; target: under %.0f MiB)\n",
        gSummary.adoptedHeapBytes / kMiB, gSummary.peakHeapBytes / kMiB, kPeakHeapTargetMiB);
  }
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv))
    return 1;
  SummaryReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
