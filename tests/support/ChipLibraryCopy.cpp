#include "support/ChipLibraryCopy.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace chipsim_test {

ChipLibraryCopy::ChipLibraryCopy()
    : path_((std::filesystem::temp_directory_path() /
             ("libchipsim-copy-" + std::to_string(getpid()) + ".so"))
                .string()) {
  std::filesystem::copy_file(CHIPSIM_LIBRARY, path_,
                             std::filesystem::copy_options::overwrite_existing);
  handle_ = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (handle_ == nullptr) {
    std::fprintf(stderr, "cannot load %s: %s\n", path_.c_str(), dlerror());
    std::abort();
  }
}

ChipLibraryCopy::~ChipLibraryCopy() {
  dlclose(handle_);
  std::filesystem::remove(path_);
}

}  // namespace chipsim_test
