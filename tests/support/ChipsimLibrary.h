#pragma once

#include <Pd/KestroSwitchPd.h>
#include <Pd/KestroSwitchPdFunctions.h>

#include "chipsim/chipsim.h"

namespace chipsim_test {

// The chip's shared library, loaded with dlopen from its build path and
// reached through dlsym'd function pointers, as a host reaches a PD library.
struct ChipsimLibrary {
  // The library's file (CHIPSIM_LIBRARY) and its dlopen handle, which a table's
  // PD interface object is given as a host gives it a PD library's.
  const char* path;
  void* handle;

#define CHIPSIM_LIBRARY_PD_FIELD(name, shortName) name##_fn shortName;
  KESTRO_SWITCH_PD_FUNCTIONS(CHIPSIM_LIBRARY_PD_FIELD)
#undef CHIPSIM_LIBRARY_PD_FIELD

#define CHIPSIM_LIBRARY_CONTROL_FIELD(name, shortName) decltype(&name) shortName;
  CHIPSIM_CONTROL_FUNCTIONS(CHIPSIM_LIBRARY_CONTROL_FIELD)
#undef CHIPSIM_LIBRARY_CONTROL_FIELD
};

// The library, loaded on first use; a missing symbol fails the test run.
const ChipsimLibrary& chipsim();

}  // namespace chipsim_test
