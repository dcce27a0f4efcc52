#pragma once

// The command line of a benchmark program whose summary compares runs as
// ratios: unless the user says otherwise, each run is repeated five times and
// the repetitions of all runs are interleaved in random order, so that the
// ratios compare medians of runs made side by side, not runs made at
// different moments of the machine's load.

#include <vector>

inline std::vector<char*> ratioArguments(int argc, char** argv) {
  static char repetitions[] = "--benchmark_repetitions=5";
  static char interleaving[] = "--benchmark_enable_random_interleaving=true";
  std::vector<char*> arguments{argv[0], repetitions, interleaving};
  // The user's own arguments come last, so that they win.
  arguments.insert(arguments.end(), argv + 1, argv + argc);
  arguments.push_back(nullptr);
  return arguments;
}
