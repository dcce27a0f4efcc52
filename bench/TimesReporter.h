#pragma once

// The console report of a benchmark program that ends with a summary: it keeps
// the real and CPU time per iteration of every run by the run's name, for the
// summary that a program's own reporter prints in Finalize(). A run repeated
// (--benchmark_repetitions) gives the summary its median repetition, so that a
// moment of load on the machine does not decide a ratio.

#include <benchmark/benchmark.h>

#include <algorithm>
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
        repetitions_[run.benchmark_name()].push_back(
            {run.GetAdjustedRealTime(), run.GetAdjustedCPUTime()});
    }
  }

 protected:
  // The times of a run by name (the median of its repetitions in real and in
  // CPU time); zero for a run that did not happen.
  Times times(const std::string& name) const {
    const auto found = repetitions_.find(name);
    if (found == repetitions_.end())
      return Times{};
    return {median(found->second, &Times::real), median(found->second, &Times::cpu)};
  }

  // `measured` over `base`; 0 when there is no base time.
  static double ratio(double measured, double base) { return base > 0 ? measured / base : 0.0; }

 private:
  static double median(std::vector<Times> runs, double Times::*time) {
    std::sort(runs.begin(), runs.end(),
              [time](const Times& a, const Times& b) { return a.*time < b.*time; });
    const std::size_t middle = runs.size() / 2;
    return runs.size() % 2 == 1 ? runs[middle].*time
                                : (runs[middle - 1].*time + runs[middle].*time) / 2;
  }

  std::map<std::string, std::vector<Times>> repetitions_;
};
