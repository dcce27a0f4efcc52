#include "Quill/Assert.h"

#include <cstdio>
#include <cstdlib>

namespace Quill {

void assertionFailed(const char* text, const char* file, unsigned line,
                     const char* function) noexcept {
  std::fprintf(stderr, "%s:%u: %s: Assertion '%s' failed.\n", file, line, function, text);
  std::fflush(stderr);
  std::abort();
}

}  // namespace Quill
