#pragma once

// The console report of a benchmark program that ends with a summary: it keeps
// the real and CPU time per iteration of every run by the run's name, for the
// summary that a program's own reporter prints in Finalize().

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

class TimesReporter : public benchmark::ConsoleReporter {
 public:
  struct Times {
    double real = 0;
    double cpu = 0;
  };

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Iteration && !run.error_occurred)
        times_[run.benchmark_name()] = {run.GetAdjustedRealTime(), run.GetAdjustedCPUTime()};
    }
  }

 protected:
  // The times of a run by name; zero for a run that did not happen.
  Times times(const std::string& name) const {
    const auto found = times_.find(name);
    return found != times_.end() ? found->second : Times{};
  }

  // `measured` over `base`; 0 when there is no base time.
  static double ratio(double measured, double base) { return base > 0 ? measured / base : 0.0; }

 private:
  std::map<std::string, Times> times_;
};
