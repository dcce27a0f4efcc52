// What the match table adds to the chip's own cost: one match entry added and
// deleted with the raw PD functions of the chip model, against the same entry
// written with entryIs and removed with entryDel through the table, in tables
// already holding 1, 4096 and 65535 other entries (the mirror session is a
// 16-bit key, so 65535 others and the measured one fill the key space), with
// the plug-in's tracing off and on (level 9, into a sink that drops records).
// A summary of table time over raw time per table size, and of traced time
// over untraced, ends the run.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "BfIngressMirrorLagGroup/BfIngressMirrorLagGroup.h"
#include "BfIngressMirrorLagGroup/hw/PluginTrace.h"
#include "RatioArguments.h"
#include "TimesReporter.h"
#include "Vel/Allocate.h"
#include "Vel/TraceSink.h"
#include "chipsim/chipsim.h"
#include "support/ChipsimLibrary.h"

namespace {

using BfIngressMirrorLagGroup::IngressMirrorLagGroupMatchSpec;
using BfIngressMirrorLagGroup::IngressMirrorLagGroupTable;
using BfIngressMirrorLagGroup::IngressMirrorLagGroupTableEntry;
using PdMatchSpec = p4_pd_kestro_switch_ingressMirrorLagGroup_match_spec_t;

constexpr std::uint8_t kDevice = 0;
constexpr std::uint16_t kPipe = P4_PD_ALL_PIPES;
constexpr p4_pd_device_target_t kTarget{kDevice, kPipe};
constexpr std::uint32_t kSession = 1;
constexpr std::uint32_t kMemberId = 1;
// The measured entry's key; the table's other entries take the keys after it.
constexpr std::uint16_t kMeasuredKey = 0;
// The most the table may cost over the raw calls with tracing off, and the
// most tracing at its highest level may cost over tracing off.
constexpr double kTableOverRawTarget = 1.3;
constexpr double kTraceOnOverOffTarget = 3.0;

// The chip model's library, loaded as a host loads a PD library. Its chips
// hold 65536 entries.
const chipsim_test::ChipsimLibrary& chip() {
  static const chipsim_test::ChipsimLibrary& lib = []() -> const chipsim_test::ChipsimLibrary& {
    const chipsim_test::ChipsimLibrary& loaded = chipsim_test::chipsim();
    chipsim_config config{};
    loaded.configDefault(&config);
    config.entries = 65536;
    loaded.configure(&config);
    return loaded;
  }();
  return lib;
}

// Takes trace records and drops them, so that tracing itself is measured.
class DiscardingSink : public Vel::TraceSink {
 public:
  void write(const Vel::TraceRecord& record) override { benchmark::DoNotOptimize(&record); }
};

// A fresh chip holding one member, and a table on it whose registry knows the
// member; `others` entries are programmed through the table before measuring.
struct Setup {
  explicit Setup(std::int64_t others) {
    chip().reset();
    const p4_pd_kestro_switch_setLagMemberSelector_action_spec_t action{500};
    chip().addMember(kSession, kTarget, &action, &memberHandle);
    auto helper = ingressMirrorLagGroupTableHelperFactory(kDevice, kPipe);
    helper->pdLibIs(CHIPSIM_LIBRARY, chip().handle, kSession);
    helper->sdkHandlesIs()->memberIs(kMemberId, memberHandle);
    table = Vel::allocate<IngressMirrorLagGroupTable>(helper, nullptr, nullptr);
    for (std::int64_t i = 0; i < others; ++i) {
      auto match = Vel::allocate<IngressMirrorLagGroupMatchSpec>();
      match->ingMirrorMdMirrorSessionIs(static_cast<std::uint16_t>(kMeasuredKey + 1 + i));
      table->entryIs(IngressMirrorLagGroupTableEntry(match, {kMemberId, true}));
      others_.push_back(match);
    }
  }

  std::uint32_t memberHandle = 0;
  Vel::Ptr<IngressMirrorLagGroupTable> table;

 private:
  std::vector<Vel::Ptr<const IngressMirrorLagGroupMatchSpec>> others_;
};

void rawPdAddDelete(benchmark::State& state) {
  Setup setup(state.range(0));
  const PdMatchSpec spec{kMeasuredKey};
  for (auto _ : state) {
    std::uint32_t entry = 0;
    if (chip().addEntry(kSession, kTarget, &spec, setup.memberHandle, &entry) != 0 ||
        chip().tableDelete(kSession, kDevice, entry) != 0) {
      state.SkipWithError("raw PD call failed");
      break;
    }
  }
  state.counters["entries"] = static_cast<double>(chip().entries());
}

void tableEntryIsEntryDel(benchmark::State& state) {
  Setup setup(state.range(0));
  const bool tracing = state.range(1) != 0;
  DiscardingSink sink;
  if (tracing) {
    Vel::TraceSink::sinkIs(&sink);
    BfIngressMirrorLagGroup::pluginTrace().levelIs(Vel::TraceHandle::maxLevel);
  }
  auto match = Vel::allocate<IngressMirrorLagGroupMatchSpec>();
  match->ingMirrorMdMirrorSessionIs(kMeasuredKey);
  const IngressMirrorLagGroupTableEntry entry(match, {kMemberId, true});
  Vel::Ptr<const IngressMirrorLagGroupMatchSpec> key = match;
  for (auto _ : state) {
    setup.table->entryIs(entry);
    benchmark::DoNotOptimize(setup.table->entryDel(key));
  }
  BfIngressMirrorLagGroup::pluginTrace().levelIs(Vel::TraceHandle::off);
  Vel::TraceSink::sinkIs(nullptr);
  state.counters["entries"] = static_cast<double>(chip().entries());
}

BENCHMARK(rawPdAddDelete)->ArgName("others")->Arg(1)->Arg(4096)->Arg(65535);
BENCHMARK(tableEntryIsEntryDel)
    ->ArgNames({"others", "trace"})
    ->ArgsProduct({{1, 4096, 65535}, {0, 1}});

// The console report, followed by the time of each table run over the raw run
// of the same table size, in real and in CPU time (on a loaded machine the CPU
// time is the steadier of the two).
class RatioReporter : public TimesReporter {
 public:
  void Finalize() override {
    ConsoleReporter::Finalize();
    std::printf(
        "\ntable entryIs+entryDel over raw PD add+delete (target: at most %.1f with trace off), "
        "and trace on over trace off (target: at most %.1f)\n",
        kTableOverRawTarget, kTraceOnOverOffTarget);
    for (const char* others : {"1", "4096", "65535"}) {
      const Times raw = times("rawPdAddDelete/others:" + std::string(others));
      const std::string table = "tableEntryIsEntryDel/others:" + std::string(others) + "/trace:";
      const Times off = times(table + "0");
      const Times on = times(table + "1");
      for (const Times* traced : {&off, &on}) {
        std::printf(
            "  others=%-6s trace=%s  real: raw %7.1f ns table %7.1f ns ratio %.2f   "
            "cpu: raw %7.1f ns table %7.1f ns ratio %.2f\n",
            others, traced == &on ? "on " : "off", raw.real, traced->real,
            ratio(traced->real, raw.real), raw.cpu, traced->cpu, ratio(traced->cpu, raw.cpu));
      }
      std::printf("  others=%-6s trace on over off: real ratio %.2f   cpu ratio %.2f\n", others,
                  ratio(on.real, off.real), ratio(on.cpu, off.cpu));
    }
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
