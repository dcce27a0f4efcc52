#include "support/ChipsimLibrary.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace chipsim_test {

namespace {

class Loader {
 public:
  Loader() : handle_(dlopen(CHIPSIM_LIBRARY, RTLD_NOW | RTLD_LOCAL)) {
    if (handle_ == nullptr) {
      std::fprintf(stderr, "cannot load %s: %s\n", CHIPSIM_LIBRARY, dlerror());
      std::abort();
    }
  }

  void* handle() const noexcept { return handle_; }

  template <class F>
  void resolve(F& function, const char* name) {
    function = reinterpret_cast<F>(dlsym(handle_, name));
    if (function == nullptr) {
      std::fprintf(stderr, "%s has no %s\n", CHIPSIM_LIBRARY, name);
      std::abort();
    }
  }

 private:
  void* handle_;
};

ChipsimLibrary load() {
  Loader loader;
  ChipsimLibrary lib{};
  lib.path = CHIPSIM_LIBRARY;
  lib.handle = loader.handle();
#define CHIPSIM_LIBRARY_RESOLVE(name, shortName) loader.resolve(lib.shortName, #name);
  KESTRO_SWITCH_PD_FUNCTIONS(CHIPSIM_LIBRARY_RESOLVE)
  CHIPSIM_CONTROL_FUNCTIONS(CHIPSIM_LIBRARY_RESOLVE)
#undef CHIPSIM_LIBRARY_RESOLVE
  return lib;
}

}  // namespace

const ChipsimLibrary& chipsim() {
  static const ChipsimLibrary lib = load();
  return lib;
}

}  // namespace chipsim_test
