// What a trace point costs: nothing but a branch when its level is off, and the
// message plus one record handed to the sink when it is on; and how many
// allocations an enabled trace makes once its thread has traced before
// (target: none).

#include <benchmark/benchmark.h>

#include "HeapCount.h"
#include "Vel/TraceHandle.h"
#include "Vel/TraceHelper.h"
#include "Vel/TraceSink.h"

namespace {

constexpr const char* sourcePath =
    "bf_kestro_switch/vel/BfIngressMirrorLagGroup/BfIngressMirrorLagGroup";

// Takes records and drops them, so that only the tracing itself is measured.
class DiscardingSink : public Vel::TraceSink {
 public:
  void write(const Vel::TraceRecord& record) override { benchmark::DoNotOptimize(&record); }
};

// One trace point as product code writes it, inlined into the loop as it would
// be into a handler.
[[gnu::always_inline]] inline void tracePoint(const Vel::TraceHandle& handle, unsigned counter) {
  if (auto t = Vel::TraceHelper::createIfEnabled(handle, 9)) {
    *t << "entryByHandle: sdkHandle=" << counter;
    t->trace(sourcePath, 146, "entryByHandle");
  }
}

void emptyLoop(benchmark::State& state) {
  unsigned counter = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(++counter);
  }
}
BENCHMARK(emptyLoop);

void disabledTrace(benchmark::State& state) {
  const Vel::TraceHandle handle("TraceBench.disabled", Vel::TraceHandle::off);
  unsigned counter = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(++counter);
    tracePoint(handle, counter);
  }
}
BENCHMARK(disabledTrace);

void enabledTraceIntoDiscardingSink(benchmark::State& state) {
  const Vel::TraceHandle handle("TraceBench.enabled", Vel::TraceHandle::maxLevel);
  DiscardingSink sink;
  Vel::TraceSink::sinkIs(&sink);
  unsigned counter = 0;
  tracePoint(handle, counter);
  const std::size_t allocationsBefore = HeapCount::allocations();
  for (auto _ : state) {
    benchmark::DoNotOptimize(++counter);
    tracePoint(handle, counter);
  }
  state.counters["allocsPerTrace"] =
      static_cast<double>(HeapCount::allocations() - allocationsBefore) /
      static_cast<double>(state.iterations());
  Vel::TraceSink::sinkIs(nullptr);
}
BENCHMARK(enabledTraceIntoDiscardingSink);

}  // namespace

BENCHMARK_MAIN();
