#pragma once

#include <dlfcn.h>

namespace mirrorlag_agent {

// Sets `function` to the function `name` of the dlopen'ed `library`, as the
// type F points to; null when the library has none (the agent's optional
// functions of the PD library).
template <class F>
void findSymbol(void* library, const char* name, F& function) {
  function = reinterpret_cast<F>(dlsym(library, name));
}

}  // namespace mirrorlag_agent
