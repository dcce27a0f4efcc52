#pragma once

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

// A function of the chip model's library (CHIPSIM_LIBRARY), found by name on
// its dynamic-load handle. A benchmark cannot run without it: a missing
// symbol stops the program with its name.
template <class F>
F chipSymbol(void* handle, const char* name) {
  void* symbol = dlsym(handle, name);
  if (symbol == nullptr) {
    std::fprintf(stderr, "%s has no %s\n", CHIPSIM_LIBRARY, name);
    std::abort();
  }
  return reinterpret_cast<F>(symbol);
}
