// What recording in the shadow tables adds to a PD call: a member, and a match
// entry, added and deleted through the PD interface object of the chip model,
// without a key manager and with one whose full-size shadow tables record
// every call (an intent before the chip call, the record after it). Also the
// default entry set and reset beside 1 and 65535 recorded entries, and the
// time a restarted process takes to re-attach to full-size tables. A summary
// of recorded time over unrecorded time ends the run.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "BfPdIngressMirrorLagGroup/BfPdIngressMirrorLagGroupIntf.h"
#include "MbbVaultKey/VaultKeyManager.h"
#include "RatioArguments.h"
#include "TimesReporter.h"
#include "Vel/Allocate.h"
#include "chipsim/chipsim.h"
#include "support/ChipsimLibrary.h"

namespace {

using BfPdIngressMirrorLagGroup::BfPdIngressMirrorLagGroupIntf;
using MbbVaultKey::VaultKeyManager;

constexpr p4_pd_device_target_t kTarget{0, P4_PD_ALL_PIPES};
constexpr std::uint32_t kSession = 1;
// The most that recording may add to a call: recorded over unrecorded time.
constexpr double kRecordedOverUnrecordedTarget = 1.5;

// The chip model's library, loaded as a host loads a PD library, on a new
// private chip.
void* chipLibrary() {
  const chipsim_test::ChipsimLibrary& chip = chipsim_test::chipsim();
  chip.attach(nullptr);
  return chip.handle;
}

std::string tablesName() {
  return "/shadow-bench-" + std::to_string(getpid());
}

// A PD interface object on a new chip; with `recording`, a key manager with
// full-size shadow tables records its calls.
struct Setup {
  explicit Setup(bool recording)
      : pd(Vel::allocate<BfPdIngressMirrorLagGroupIntf>("libchipsim.so", chipLibrary(), kSession)) {
    VaultKeyManager::unlink(tablesName());
    keys =
        recording ? Vel::allocate<VaultKeyManager>(tablesName()) : Vel::allocate<VaultKeyManager>();
    pd->vaultKeyManagerIs(keys);
  }
  ~Setup() {
    pd = nullptr;
    keys = nullptr;
    VaultKeyManager::unlink(tablesName());
  }

  std::uint32_t addMember(std::uint32_t id) {
    keys->allocAnon(id);
    p4_pd_kestro_switch_setLagMemberSelector_action_spec_t spec{1};
    std::uint32_t member = 0;
    pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_add_member_with_setLagMemberSelector(
        kSession, kTarget, &spec, &member);
    return member;
  }

  Vel::Ptr<VaultKeyManager> keys;
  Vel::Ptr<BfPdIngressMirrorLagGroupIntf> pd;
};

void memberAddDelete(benchmark::State& state) {
  Setup setup(state.range(0) != 0);
  for (auto _ : state) {
    std::uint32_t member = setup.addMember(7);
    setup.pd->p4_pd_kestro_switch_mirrorLagPortActionProfile_del_member(kSession, 0, member);
  }
}
BENCHMARK(memberAddDelete)->ArgName("recording")->Arg(0)->Arg(1);

void entryAddDelete(benchmark::State& state) {
  Setup setup(state.range(0) != 0);
  std::uint32_t member = setup.addMember(1);
  auto match = Vel::allocate<BfnTable::MatchSpecBase>();
  p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t spec{5};
  for (auto _ : state) {
    setup.keys->alloc(match, false);
    std::uint32_t entry = 0;
    setup.pd->p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry(kSession, kTarget, &spec, member,
                                                                  &entry);
    setup.pd->p4_pd_kestro_switch_ingressMirrorLagGroup_table_delete(kSession, 0, entry);
  }
}
BENCHMARK(entryAddDelete)->ArgName("recording")->Arg(0)->Arg(1);

// The default entry set and reset, recorded, with `others` recorded entries
// beside it: the recorder finds the default entry's record without a walk of
// the others, so the time is flat in their number.
void defaultEntrySetReset(benchmark::State& state) {
  Setup setup(state.range(1) != 0);
  std::uint32_t member = setup.addMember(1);
  for (std::int64_t other = 0; other < state.range(0); ++other) {
    setup.keys->alloc(Vel::allocate<BfnTable::MatchSpecBase>(), false);
    p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t spec{
        static_cast<std::uint16_t>(other + 1)};
    std::uint32_t entry = 0;
    setup.pd->p4_pd_kestro_switch_ingressMirrorLagGroup_add_entry(kSession, kTarget, &spec, member,
                                                                  &entry);
  }
  for (auto _ : state) {
    std::uint32_t entry = 0;
    setup.pd->p4_pd_kestro_switch_ingressMirrorLagGroup_set_default_entry(kSession, kTarget, member,
                                                                          &entry);
    setup.pd->p4_pd_kestro_switch_ingressMirrorLagGroup_table_reset_default_entry(kSession,
                                                                                  kTarget);
  }
  if (setup.keys->hasShadowTables())
    state.counters["records"] = static_cast<double>(setup.keys->entryShadow()->size());
}
BENCHMARK(defaultEntrySetReset)
    ->ArgNames({"others", "recording"})
    ->ArgsProduct({{1, 65535}, {0, 1}});

void attachFullSizeTables(benchmark::State& state) {
  VaultKeyManager::unlink(tablesName());
  Vel::allocate<VaultKeyManager>(tablesName());
  for (auto _ : state) {
    benchmark::DoNotOptimize(Vel::allocate<VaultKeyManager>(tablesName()));
  }
  VaultKeyManager::unlink(tablesName());
}
BENCHMARK(attachFullSizeTables)->Unit(benchmark::kMillisecond);

// The console report, then each call's recorded time over its unrecorded time
// (real and CPU time; on a loaded machine the CPU time is the steadier).
class RatioReporter : public TimesReporter {
 public:
  void Finalize() override {
    ConsoleReporter::Finalize();
    std::printf("\nrecorded over unrecorded add+delete (target: at most %.1f)\n",
                kRecordedOverUnrecordedTarget);
    for (const char* call : {"memberAddDelete", "entryAddDelete"}) {
      const Times plain = times(std::string(call) + "/recording:0");
      const Times recorded = times(std::string(call) + "/recording:1");
      std::printf(
          "  %-16s real: %7.1f ns -> %7.1f ns ratio %.2f   cpu: %7.1f ns -> %7.1f ns ratio "
          "%.2f\n",
          call, plain.real, recorded.real, ratio(recorded.real, plain.real), plain.cpu,
          recorded.cpu, ratio(recorded.cpu, plain.cpu));
    }
    const Times few = times("defaultEntrySetReset/others:1/recording:1");
    const Times full = times("defaultEntrySetReset/others:65535/recording:1");
    std::printf(
        "default entry set+reset, recorded, beside 65535 entries over beside 1 (flat: the "
        "record is found without a walk)\n"
        "  real: %7.1f ns -> %7.1f ns ratio %.2f   cpu: %7.1f ns -> %7.1f ns ratio %.2f\n",
        few.real, full.real, ratio(full.real, few.real), few.cpu, full.cpu,
        ratio(full.cpu, few.cpu));
  }
};

}  // namespace

int main(int argc, char** argv) {
  std::vector<char*> arguments = ratioArguments(argc, argv);
  int count = static_cast<int>(arguments.size()) - 1;
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
    return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
